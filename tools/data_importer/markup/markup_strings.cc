#include "tools/data_importer/markup/markup_strings.h"

namespace markup {

wchar_t FoldASCII(wchar_t c) {
  return (c >= L'A' && c <= L'Z') ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}

bool EqualsIgnoreCase(std::wstring_view a, std::wstring_view b) {
  if (a.size() != b.size())
    return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (FoldASCII(a[i]) != FoldASCII(b[i]))
      return false;
  }
  return true;
}

bool MatchesStoredName(std::wstring_view stored, std::wstring_view query) {
  return query.size() >= stored.size() && EqualsIgnoreCase(stored, query.substr(0, stored.size()));
}

bool IsMarkupSpace(wchar_t c) {
  return c == L' ' || c == L'\t' || c == L'\r' || c == L'\n';
}

std::wstring_view TrimMarkupSpace(std::wstring_view text) {
  size_t begin = 0;
  size_t end = text.size();
  while (begin < end && IsMarkupSpace(text[begin]))
    ++begin;
  while (end > begin && IsMarkupSpace(text[end - 1]))
    --end;
  return text.substr(begin, end - begin);
}

}  // namespace markup
