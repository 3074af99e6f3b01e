#ifndef TOOLS_DATA_IMPORTER_MARKUP_MARKUP_NODE_H_
#define TOOLS_DATA_IMPORTER_MARKUP_MARKUP_NODE_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/data_importer/markup/markup_handle.h"

namespace data_importer {

namespace markup {

struct MarkupAttribute {
  std::wstring name;
  std::wstring value;
};

// One node of a markup tree: an element, the document container that holds
// the top-level items, or one of the other items kept in document order (a
// "<?name ...?>" declaration, a comment, a CDATA section, a DOCTYPE, a PRE
// block). Nodes live on the heap and are shared through MarkupHandle.
//
// An element owns its attributes (in document order, entities resolved), its
// text (the pieces of text between its tags, each without surrounding white
// space, joined) and its items. The other kinds keep their raw content as
// text; a declaration also keeps its name and pseudo-attributes.
//
// The shared null node (Null()) is empty and ignores every change, so a
// failed lookup can be used like any other node.
class MarkupNode {
 public:
  enum Kind : uint8_t {
    kDocument = 0,
    kElement = 1,
    kDeclaration = 2,
    kComment = 3,
    kCData = 4,
    kDocType = 5,
    kPre = 6,
  };

  // Trees deeper than this are refused by the parser and by CreateElement,
  // so that freeing and saving a tree never run out of stack.
  static constexpr int kMaxDepth = 256;

  MarkupNode(Kind kind, std::wstring name);
  ~MarkupNode();
  MarkupNode(const MarkupNode&) = delete;
  MarkupNode& operator=(const MarkupNode&) = delete;

  // The one shared empty node.
  static MarkupNode* Null();
  bool is_null() const { return this == Null(); }

  Kind kind() const { return m_kind; }
  bool is_element() const { return m_kind == kElement; }
  const std::wstring& name() const { return m_name; }
  // The node this one was appended to; not counted, and cleared when the
  // parent is freed. Null for a root.
  MarkupNode* parent() const { return m_parent; }
  // Number of parents above this node.
  int depth() const;

  // Child elements, in document order.
  int32_t child_count() const { return static_cast<int32_t>(m_children.size()); }
  // The child element at |index|, or the null node when out of range.
  MarkupHandle child_at(int32_t index) const;

  // Every child node (elements and other items) in document order.
  const std::vector<MarkupHandle>& items() const { return m_items; }
  // Number of items that are not elements.
  int32_t other_item_count() const { return m_other_item_count; }

  const std::vector<MarkupAttribute>& attributes() const { return m_attributes; }
  int32_t attribute_count() const { return static_cast<int32_t>(m_attributes.size()); }

  const std::wstring& text() const { return m_text; }
  // Number of text pieces joined into text().
  int32_t text_piece_count() const { return m_text_pieces; }

  // Changes. All of them do nothing on the null node.
  // Appends |child| as the last item (and, for an element, the last child
  // element) and makes this node its parent. A child that already has a
  // parent, the null node and this node itself are refused (false).
  bool AppendChild(const MarkupHandle& child);
  void AddAttribute(std::wstring name, std::wstring value);
  // Adds a piece of text after the existing text.
  void AppendText(std::wstring_view piece);
  // Replaces the whole text.
  void SetText(std::wstring text);

 private:
  friend class MarkupHandle;

  void AddRef();
  // True when the count reached zero and the node must be freed.
  bool ReleaseRef();

  std::wstring m_name;
  Kind m_kind;
  MarkupNode* m_parent = nullptr;
  std::vector<MarkupHandle> m_children;
  std::vector<MarkupHandle> m_items;
  int32_t m_other_item_count = 0;
  std::vector<MarkupAttribute> m_attributes;
  std::wstring m_text;
  int32_t m_text_pieces = 0;
  int32_t m_ref_count = 0;
};

}  // namespace markup

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_MARKUP_MARKUP_NODE_H_
