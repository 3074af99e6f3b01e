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

bool MatchWildcardPattern(std::wstring_view name,
                          std::wstring_view pattern,
                          wchar_t (*fold)(wchar_t)) {
  // Iterative match with backtracking to the last '*'.
  size_t n = 0, p = 0, star = std::wstring_view::npos, resume = 0;
  auto same = [fold](wchar_t a, wchar_t b) { return a == b || fold(a) == fold(b); };
  while (n < name.size()) {
    if (p < pattern.size() && (pattern[p] == L'?' || same(pattern[p], name[n]))) {
      ++n;
      ++p;
    } else if (p < pattern.size() && pattern[p] == L'*') {
      star = p++;
      resume = n;
    } else if (star != std::wstring_view::npos) {
      p = star + 1;
      n = ++resume;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == L'*')
    ++p;
  return p == pattern.size();
}

}  // namespace base
