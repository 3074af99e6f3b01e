#include "tools/data_importer/markup/markup_handle.h"

#include <utility>

#include "tools/data_importer/markup/markup_node.h"

namespace data_importer {

namespace markup {

MarkupHandle::MarkupHandle() : m_node(MarkupNode::Null()) {}

MarkupHandle::MarkupHandle(MarkupNode* node) : m_node(node ? node : MarkupNode::Null()) {
  m_node->AddRef();
}

MarkupHandle::MarkupHandle(const MarkupHandle& other) : m_node(other.m_node) {
  m_node->AddRef();
}

MarkupHandle::MarkupHandle(MarkupHandle&& other) noexcept : m_node(other.m_node) {
  other.m_node = MarkupNode::Null();
}

MarkupHandle& MarkupHandle::operator=(const MarkupHandle& other) {
  // Count first and keep the pointer: |other| may live inside the node this
  // handle releases.
  MarkupNode* node = other.m_node;
  node->AddRef();
  Release();
  m_node = node;
  return *this;
}

MarkupHandle& MarkupHandle::operator=(MarkupHandle&& other) noexcept {
  if (this != &other) {
    MarkupNode* taken = other.m_node;
    other.m_node = MarkupNode::Null();
    Release();
    m_node = taken;
  }
  return *this;
}

MarkupHandle::~MarkupHandle() {
  Release();
}

bool MarkupHandle::IsNull() const {
  return m_node->is_null();
}

void MarkupHandle::Release() {
  if (m_node->ReleaseRef())
    delete m_node;
  m_node = MarkupNode::Null();
}

}  // namespace markup

}  // namespace data_importer
