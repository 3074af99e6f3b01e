#include "base/string_util.h"

namespace base {

namespace {

template <typename View>
bool EqualsFolded(View a, View b) {
  if (a.size() != b.size())
    return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (ToLowerASCII(a[i]) != ToLowerASCII(b[i]))
      return false;
  }
  return true;
}

}  // namespace

std::wstring ToLowerASCII(std::wstring_view text) {
  std::wstring result(text);
  for (wchar_t& c : result)
    c = ToLowerASCII(c);
  return result;
}

bool EqualsCaseInsensitiveASCII(std::wstring_view a, std::wstring_view b) {
  return EqualsFolded(a, b);
}

bool EqualsCaseInsensitiveASCII(std::string_view a, std::string_view b) {
  return EqualsFolded(a, b);
}

}  // namespace base
