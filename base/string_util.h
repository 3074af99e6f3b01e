#ifndef BASE_STRING_UTIL_H_
#define BASE_STRING_UTIL_H_

#include <string>
#include <string_view>

namespace base {

// ASCII case folding: A-Z become a-z, every other character (including
// letters beyond ASCII) stays as it is, whatever the process locale. This is
// how names compare in the files of earlier generations (INI sections and
// keys, registry keys, markup tags, column names).
constexpr wchar_t ToLowerASCII(wchar_t c) {
  return (c >= L'A' && c <= L'Z') ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}
constexpr char ToLowerASCII(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}
std::wstring ToLowerASCII(std::wstring_view text);

// Whole-text comparison under ASCII case folding (equal lengths required).
[[nodiscard]] bool EqualsCaseInsensitiveASCII(std::wstring_view a, std::wstring_view b);
[[nodiscard]] bool EqualsCaseInsensitiveASCII(std::string_view a, std::string_view b);

// Whether |name| matches the file-name |pattern|, where '*' stands for any
// run of characters and '?' for any one character; two characters are the
// same when |fold| maps them to the same one (the file system's folding).
[[nodiscard]] bool MatchWildcardPattern(std::wstring_view name,
                                        std::wstring_view pattern,
                                        wchar_t (*fold)(wchar_t));

}  // namespace base

#endif  // BASE_STRING_UTIL_H_
