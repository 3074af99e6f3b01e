#include "tools/data_importer/markup/markup_strings.h"

#include "base/string_util.h"

namespace data_importer {

namespace markup {

bool MatchesStoredName(std::wstring_view stored, std::wstring_view query) {
  return query.size() >= stored.size() &&
         base::EqualsCaseInsensitiveASCII(stored, query.substr(0, stored.size()));
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

}  // namespace data_importer
