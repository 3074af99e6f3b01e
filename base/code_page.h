#ifndef BASE_CODE_PAGE_H_
#define BASE_CODE_PAGE_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace base {

// Windows code pages by number, the way 8-bit text files of a Windows user
// are written: in the system's ANSI code page.
inline constexpr uint32_t kCodePageWestern = 1252;
inline constexpr uint32_t kCodePageSimplifiedChinese = 936;
inline constexpr uint32_t kCodePageUTF8 = 65001;

// Whether the code page can be converted here (the C library's converter
// knows it as "CP<number>"; 65001 is UTF-8).
[[nodiscard]] bool IsKnownCodePage(uint32_t code_page);

// 8-bit text in |code_page| to wide text. A byte sequence the code page does
// not assign becomes U+FFFD, except the five unassigned bytes of code page
// 1252 (81 8D 8F 90 9D), which become the C1 control of the same value as
// Windows reads them, so that such a byte survives a round trip. A code page
// that cannot be converted is read as 1252.
std::wstring CodePageToWide(std::string_view bytes, uint32_t code_page);

// Wide text to 8-bit text in |code_page|; a character the code page cannot
// hold becomes '?', as Windows writes it. A code page that cannot be
// converted is written as 1252.
std::string WideToCodePage(std::wstring_view text, uint32_t code_page);

}  // namespace base

#endif  // BASE_CODE_PAGE_H_
