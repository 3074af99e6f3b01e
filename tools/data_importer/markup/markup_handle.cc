#include "tools/data_importer/markup/markup_handle.h"

#include <utility>

#include "tools/data_importer/markup/markup_node.h"

namespace markup {

MarkupHandle::MarkupHandle() : node_(MarkupNode::Null()) {}

MarkupHandle::MarkupHandle(MarkupNode* node) : node_(node ? node : MarkupNode::Null()) {
  node_->AddRef();
}

MarkupHandle::MarkupHandle(const MarkupHandle& other) : node_(other.node_) {
  node_->AddRef();
}

MarkupHandle::MarkupHandle(MarkupHandle&& other) noexcept : node_(other.node_) {
  other.node_ = MarkupNode::Null();
}

MarkupHandle& MarkupHandle::operator=(const MarkupHandle& other) {
  // Count first and keep the pointer: |other| may live inside the node this
  // handle releases.
  MarkupNode* node = other.node_;
  node->AddRef();
  Release();
  node_ = node;
  return *this;
}

MarkupHandle& MarkupHandle::operator=(MarkupHandle&& other) noexcept {
  if (this != &other) {
    MarkupNode* taken = other.node_;
    other.node_ = MarkupNode::Null();
    Release();
    node_ = taken;
  }
  return *this;
}

MarkupHandle::~MarkupHandle() {
  Release();
}

bool MarkupHandle::IsNull() const {
  return node_->is_null();
}

void MarkupHandle::Release() {
  if (node_->ReleaseRef())
    delete node_;
  node_ = MarkupNode::Null();
}

}  // namespace markup
