#ifndef TOOLS_DATA_IMPORTER_MARKUP_MARKUP_VALUES_H_
#define TOOLS_DATA_IMPORTER_MARKUP_MARKUP_VALUES_H_

#include <string>
#include <string_view>
#include <vector>

#include "tools/data_importer/markup/markup_handle.h"

namespace data_importer {

namespace markup {

// A decimal integer read from the start of |text| through a wide input
// stream (leading white space and a sign allowed, anything after the digits
// ignored); 0 when no number can be read or it does not fit an int.
int ParseInteger(std::wstring_view text);

// ParseInteger of an attribute's value (0 when the attribute is absent).
int AttributeInteger(const MarkupHandle& node, std::wstring_view name);

// The pieces of |text| between commas, each read with ParseInteger:
// "10,20,300,200" gives {10, 20, 300, 200} (a rectangle's x, y, width and
// height); "1,,x" gives {1, 0, 0}. An empty text gives no numbers.
std::vector<int> SplitIntegers(std::wstring_view text);

// The decimal text of |value| through a wide output stream.
std::wstring FormatInteger(int value);

}  // namespace markup

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_MARKUP_MARKUP_VALUES_H_
