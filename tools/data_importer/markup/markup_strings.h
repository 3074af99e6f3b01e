#ifndef TOOLS_DATA_IMPORTER_MARKUP_MARKUP_STRINGS_H_
#define TOOLS_DATA_IMPORTER_MARKUP_MARKUP_STRINGS_H_

#include <string_view>

namespace data_importer {

namespace markup {

// Names compare with letter case folded for A-Z only, as the C runtime's
// wide comparisons do in the "C" locale: base::EqualsCaseInsensitiveASCII.

// _wcsnicmp(stored, query, stored.size()) == 0: |query| begins with
// |stored|, ignoring case. An empty stored name matches every query.
bool MatchesStoredName(std::wstring_view stored, std::wstring_view query);

// Space, tab, carriage return and line feed.
bool IsMarkupSpace(wchar_t c);

// |text| without white space at either end.
std::wstring_view TrimMarkupSpace(std::wstring_view text);

}  // namespace markup

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_MARKUP_MARKUP_STRINGS_H_
