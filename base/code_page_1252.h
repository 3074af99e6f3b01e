#ifndef BASE_CODE_PAGE_1252_H_
#define BASE_CODE_PAGE_1252_H_

#include <string>
#include <string_view>

namespace base {

// Windows code page 1252, the Western ANSI code page, in which older 8-bit
// text files were written. The five bytes the code page leaves unassigned
// (81 8D 8F 90 9D) map to the C1 control of the same value, as Windows reads
// them, so every byte survives a round trip.
wchar_t Cp1252ToWide(unsigned char byte);
std::wstring Cp1252ToWide(std::string_view bytes);

// The byte of |c| in code page 1252, or '?' when it has none.
unsigned char WideToCp1252(wchar_t c);

}  // namespace base

#endif  // BASE_CODE_PAGE_1252_H_
