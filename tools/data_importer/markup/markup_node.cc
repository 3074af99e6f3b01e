#include "tools/data_importer/markup/markup_node.h"

#include <utility>

namespace data_importer {

namespace markup {

MarkupNode::MarkupNode(Kind kind, std::wstring name) : m_name(std::move(name)), m_kind(kind) {}

MarkupNode::~MarkupNode() {
  // Children may outlive this node through other handles: they must not
  // point back at freed memory.
  for (const MarkupHandle& item : m_items)
    item->m_parent = nullptr;
}

MarkupNode* MarkupNode::Null() {
  // Never freed, so handles held by static objects stay valid at exit.
  static MarkupNode* const null_node = new MarkupNode(kDocument, std::wstring());
  return null_node;
}

int MarkupNode::depth() const {
  int depth = 0;
  for (const MarkupNode* node = m_parent; node; node = node->m_parent)
    ++depth;
  return depth;
}

MarkupHandle MarkupNode::child_at(int32_t index) const {
  if (index < 0 || index >= child_count())
    return MarkupHandle();
  return m_children[index];
}

bool MarkupNode::AppendChild(const MarkupHandle& child) {
  if (is_null() || child.IsNull() || child.get() == this || child->m_parent)
    return false;
  if (child->m_kind == kDocument)
    return false;
  // A node that is an ancestor of this one would make a cycle.
  for (const MarkupNode* node = m_parent; node; node = node->m_parent) {
    if (node == child.get())
      return false;
  }
  child->m_parent = this;
  m_items.push_back(child);
  if (child->m_kind == kElement)
    m_children.push_back(child);
  else
    ++m_other_item_count;
  return true;
}

void MarkupNode::AddAttribute(std::wstring name, std::wstring value) {
  if (is_null())
    return;
  m_attributes.push_back({std::move(name), std::move(value)});
}

void MarkupNode::AppendText(std::wstring_view piece) {
  if (is_null())
    return;
  m_text.append(piece);
  ++m_text_pieces;
}

void MarkupNode::SetText(std::wstring text) {
  if (is_null())
    return;
  m_text = std::move(text);
  m_text_pieces = m_text.empty() ? 0 : 1;
}

void MarkupNode::AddRef() {
  if (!is_null())
    ++m_ref_count;
}

bool MarkupNode::ReleaseRef() {
  if (is_null())
    return false;
  return --m_ref_count == 0;
}

}  // namespace markup

}  // namespace data_importer
