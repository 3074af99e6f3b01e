#include "tools/data_importer/markup/markup_document.h"

#include "base/string_util.h"
#include "tools/data_importer/markup/markup_parser.h"
#include "tools/data_importer/markup/markup_strings.h"
#include "tools/data_importer/markup/markup_text_decoder.h"

namespace data_importer {

namespace markup {

namespace {

MarkupHandle AppendNew(const MarkupHandle& parent, MarkupNode::Kind kind, std::wstring_view name) {
  if (parent.IsNull() || (parent->kind() != MarkupNode::kDocument && !parent->is_element()))
    return MarkupHandle();
  if (parent->depth() + 1 > MarkupNode::kMaxDepth)
    return MarkupHandle();
  MarkupHandle node(new MarkupNode(kind, std::wstring(name)));
  if (!parent->AppendChild(node))
    return MarkupHandle();
  return node;
}

}  // namespace

MarkupHandle Load(const base::FilePath& path, std::wstring_view root_name) {
  std::wstring text;
  if (!ReadMarkupFile(path, &text))
    return MarkupHandle();
  return Parse(text, root_name);
}

MarkupHandle Parse(std::wstring_view text, std::wstring_view root_name) {
  MarkupParseResult result = ParseMarkup(text);
  if (result.error >= kFirstFatalError)
    return MarkupHandle();
  MarkupHandle root = result.document;
  if (result.single_root) {
    // The container goes; its one element becomes a parentless root.
    root = result.document->child_at(0);
    result.document = MarkupHandle();
  }
  if (root_name.empty())
    return root;
  if (base::EqualsCaseInsensitiveASCII(root->name(), root_name))
    return root;
  return Child(root, root_name);
}

MarkupHandle Child(const MarkupHandle& node, std::wstring_view name) {
  for (int32_t i = 0; i < node->child_count(); ++i) {
    MarkupHandle child = node->child_at(i);
    if (base::EqualsCaseInsensitiveASCII(child->name(), name))
      return child;
  }
  return MarkupHandle();
}

int32_t ChildCount(const MarkupHandle& node) {
  return node->child_count();
}

MarkupHandle ChildAt(const MarkupHandle& node, int32_t index) {
  return node->child_at(index);
}

std::vector<MarkupHandle> Children(const MarkupHandle& node, std::wstring_view name) {
  std::vector<MarkupHandle> found;
  for (int32_t i = 0; i < node->child_count(); ++i) {
    MarkupHandle child = node->child_at(i);
    if (base::EqualsCaseInsensitiveASCII(child->name(), name))
      found.push_back(child);
  }
  return found;
}

std::wstring Attribute(const MarkupHandle& node, std::wstring_view name) {
  for (const MarkupAttribute& attribute : node->attributes()) {
    if (MatchesStoredName(attribute.name, name))
      return attribute.value;
  }
  return std::wstring();
}

std::wstring Text(const MarkupHandle& node) {
  return node->text();
}

MarkupHandle NewDocument() {
  return MarkupHandle(new MarkupNode(MarkupNode::kDocument, std::wstring()));
}

MarkupHandle CreateElement(const MarkupHandle& parent, std::wstring_view name) {
  return AppendNew(parent, MarkupNode::kElement, name);
}

MarkupHandle CreateDeclaration(const MarkupHandle& parent, std::wstring_view name) {
  return AppendNew(parent, MarkupNode::kDeclaration, name);
}

void AddAttribute(const MarkupHandle& node, std::wstring_view name, std::wstring_view value) {
  node->AddAttribute(std::wstring(name), std::wstring(value));
}

void SetText(const MarkupHandle& node, std::wstring_view text) {
  node->SetText(std::wstring(text));
}

}  // namespace markup

}  // namespace data_importer
