#ifndef TOOLS_DATA_IMPORTER_MARKUP_MARKUP_STRINGS_H_
#define TOOLS_DATA_IMPORTER_MARKUP_MARKUP_STRINGS_H_

#include <string_view>

namespace markup {

// Letter case is folded for A-Z only, as the C runtime's wide comparisons do
// in the "C" locale.
wchar_t FoldASCII(wchar_t c);

// Whole-name comparison ignoring case (_wcsicmp(a, b) == 0).
bool EqualsIgnoreCase(std::wstring_view a, std::wstring_view b);

// _wcsnicmp(stored, query, stored.size()) == 0: |query| begins with
// |stored|, ignoring case. An empty stored name matches every query.
bool MatchesStoredName(std::wstring_view stored, std::wstring_view query);

// Space, tab, carriage return and line feed.
bool IsMarkupSpace(wchar_t c);

// |text| without white space at either end.
std::wstring_view TrimMarkupSpace(std::wstring_view text);

}  // namespace markup

#endif  // TOOLS_DATA_IMPORTER_MARKUP_MARKUP_STRINGS_H_
