#ifndef TOOLS_DATA_IMPORTER_MARKUP_MARKUP_DOCUMENT_H_
#define TOOLS_DATA_IMPORTER_MARKUP_MARKUP_DOCUMENT_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/file_path.h"
#include "tools/data_importer/markup/markup_handle.h"
#include "tools/data_importer/markup/markup_node.h"

namespace data_importer {

// Reading, querying and building markup documents. Nothing here throws or
// logs: every failure answers the null node (or an empty string), and every
// call accepts the null node, so lookups chain safely:
//   Attribute(Child(Child(Load(path, L"Skin"), L"Window"), L"Main"), L"Rect")
namespace markup {

// Loads the file at |path| (see markup_text_decoder.h for the encodings) and
// parses it. The document's root is its one top-level element when it has
// exactly one and nothing else at the top level, otherwise the document
// container (nameless). With an empty |root_name| the root is returned; else
// the root when its name equals |root_name| ignoring case, else the root's
// first child element of that name, else the null node. A missing, empty or
// unparsable file gives the null node. A text without any element is no
// error: its (empty) container comes back for an empty |root_name|.
MarkupHandle Load(const base::FilePath& path, std::wstring_view root_name);

// The same on text in memory.
MarkupHandle Parse(std::wstring_view text, std::wstring_view root_name);

// The first child element of |node| named |name| (ignoring case), or the
// null node.
MarkupHandle Child(const MarkupHandle& node, std::wstring_view name);

// Child elements by position, 0 ... ChildCount - 1; out of range gives the
// null node.
int32_t ChildCount(const MarkupHandle& node);
MarkupHandle ChildAt(const MarkupHandle& node, int32_t index);

// Every child element named |name| (ignoring case), in document order.
std::vector<MarkupHandle> Children(const MarkupHandle& node, std::wstring_view name);

// The value of the first attribute whose stored name matches |name| over the
// stored name's length, ignoring case (so a stored "Col" answers a query for
// "Color"); empty when there is none.
std::wstring Attribute(const MarkupHandle& node, std::wstring_view name);

// The element's text (see MarkupNode::text()).
std::wstring Text(const MarkupHandle& node);

// Building. A new document is an empty container; Save writes its items.
MarkupHandle NewDocument();
// Appends a new element named |name| as the last child of |parent| and
// returns it; the null node when |parent| is the null node or not a document
// or element, or the tree would grow deeper than MarkupNode::kMaxDepth.
MarkupHandle CreateElement(const MarkupHandle& parent, std::wstring_view name);
// Appends a "<?name ...?>" declaration to |parent|; attributes can be added
// to it like to an element.
MarkupHandle CreateDeclaration(const MarkupHandle& parent, std::wstring_view name);
// Adds an attribute after the existing ones. Nothing on the null node.
void AddAttribute(const MarkupHandle& node, std::wstring_view name, std::wstring_view value);
// Replaces the element's text. Nothing on the null node.
void SetText(const MarkupHandle& node, std::wstring_view text);

}  // namespace markup

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_MARKUP_MARKUP_DOCUMENT_H_
