#ifndef BASE_UTF_STRING_CONVERSIONS_H_
#define BASE_UTF_STRING_CONVERSIONS_H_

#include <string>
#include <string_view>

namespace base {

// Conversions between wide text (UTF-32 on POSIX, UTF-16 on Windows) and
// UTF-8. They never fail: invalid input (bad UTF-8, lone surrogates, values
// beyond U+10FFFF) comes out as U+FFFD for each bad piece, so text read from
// broken old files still converts.
std::string WideToUTF8(std::wstring_view wide);
std::wstring UTF8ToWide(std::string_view utf8);

// UTF-16 code units to wide text and back. Surrogate pairs are joined on
// POSIX; a lone surrogate becomes U+FFFD there.
std::wstring UTF16ToWide(std::u16string_view utf16);
std::u16string WideToUTF16(std::wstring_view wide);

// UTF-16 text as bytes of a file: each pair of bytes is one code unit,
// little-endian unless |big_endian|. An odd last byte is dropped. The units
// are answered as they are (no surrogate checks), for callers that keep them
// or hand them to UTF16ToWide.
std::u16string UTF16UnitsFromBytes(std::string_view bytes, bool big_endian);

// Appends one code point (at most U+10FFFF, not a surrogate) to wide text:
// one wchar_t on POSIX, a surrogate pair beyond U+FFFF on Windows.
void AppendCodePoint(char32_t code_point, std::wstring* out);

// Appends the UTF-8 form of |wide| to |out| (no temporary string).
void AppendWideAsUTF8(std::wstring_view wide, std::string* out);

}  // namespace base

#endif  // BASE_UTF_STRING_CONVERSIONS_H_
