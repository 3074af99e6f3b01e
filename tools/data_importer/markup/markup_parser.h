#ifndef TOOLS_DATA_IMPORTER_MARKUP_MARKUP_PARSER_H_
#define TOOLS_DATA_IMPORTER_MARKUP_MARKUP_PARSER_H_

#include <cstddef>
#include <string_view>

#include "tools/data_importer/markup/markup_handle.h"

namespace data_importer {

namespace markup {

// Parse results. Codes below kFirstFatalError are notes: the tree is whole.
// From kFirstFatalError on, the parse stopped at the fault and the tree must
// not be used.
enum MarkupError : int {
  kMarkupOk = 0,
  kMarkupNoElement = 1,      // the text holds no element (not an error)
  kMarkupKeptAmpersand = 2,  // an '&' that starts no reference was kept
  kFirstFatalError = 3,
  kMarkupBadTag = 3,        // malformed tag, attribute or stray '<'
  kMarkupBadEndTag = 4,     // an end tag that closes no open element
  kMarkupUnterminated = 5,  // the text ends inside a tag, section or element
  kMarkupBadReference = 6,  // malformed numeric character reference
  kMarkupTooDeep = 7,       // elements nested deeper than MarkupNode::kMaxDepth
};

struct MarkupParseResult {
  // The document container (kind kDocument) with every top-level item.
  MarkupHandle document;
  // The worst code met; the first fatal one stops the parse.
  int error = kMarkupOk;
  // Where a fatal error was found (index into the text).
  size_t error_position = 0;
  // True when the container holds exactly one element and no other item or
  // text: that element is then the document's root.
  bool single_root = false;
};

// Builds the tree of |text|. Tags are start tags with attributes in double
// or single quotes, end tags (names compared ignoring case) and "/>" empty
// elements; "<![CDATA[", "<!DOCTYPE", "<!--", "<PRE>" and "<?" sections run
// to their closing strings and become items of their own, never element
// text. Text outside tags is stored without surrounding white space;
// white-space-only text is dropped. Works in one pass without recursion, so
// any text, however hostile, costs time and memory in proportion to its
// length.
MarkupParseResult ParseMarkup(std::wstring_view text);

}  // namespace markup

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_MARKUP_MARKUP_PARSER_H_
