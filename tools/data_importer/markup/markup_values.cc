#include "tools/data_importer/markup/markup_values.h"

#include <sstream>

#include "tools/data_importer/markup/markup_document.h"

namespace data_importer {

namespace markup {

int ParseInteger(std::wstring_view text) {
  std::wistringstream stream{std::wstring(text)};
  int value = 0;
  if (!(stream >> value))
    return 0;
  return value;
}

int AttributeInteger(const MarkupHandle& node, std::wstring_view name) {
  return ParseInteger(Attribute(node, name));
}

std::vector<int> SplitIntegers(std::wstring_view text) {
  std::vector<int> values;
  if (text.empty())
    return values;
  size_t begin = 0;
  while (true) {
    const size_t comma = text.find(L',', begin);
    if (comma == std::wstring_view::npos) {
      values.push_back(ParseInteger(text.substr(begin)));
      return values;
    }
    values.push_back(ParseInteger(text.substr(begin, comma - begin)));
    begin = comma + 1;
  }
}

std::wstring FormatInteger(int value) {
  std::wostringstream stream;
  stream << value;
  return stream.str();
}

}  // namespace markup

}  // namespace data_importer
