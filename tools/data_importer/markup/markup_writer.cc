#include "tools/data_importer/markup/markup_writer.h"

#include <cstdio>
#include <string_view>

#include "base/file_util.h"
#include "base/utf_string_conversions.h"
#include "tools/data_importer/markup/markup_entities.h"
#include "tools/data_importer/markup/markup_node.h"
#include "tools/data_importer/markup/markup_strings.h"

namespace data_importer {

namespace markup {

namespace {

// Serialises in two passes: the first only counts the characters, the second
// fills a buffer of exactly that size, so a large tree is not built up by
// repeated reallocation.
class Serializer {
 public:
  // Counting pass.
  Serializer() = default;
  // Filling pass into |buffer|, which holds the counted size.
  explicit Serializer(std::wstring* buffer) : m_buffer(buffer) {}

  size_t length() const { return m_length; }

  void WriteNode(const MarkupNode& node, int depth);

 private:
  void Put(std::wstring_view text) {
    if (m_buffer && m_length + text.size() <= m_buffer->size())
      m_buffer->replace(m_length, text.size(), text);
    m_length += text.size();
  }
  void Indent(int depth) {
    for (int i = 0; i < depth; ++i)
      Put(L"\t");
  }
  void WriteAttributes(const MarkupNode& node);
  void WriteText(const std::wstring& text);
  void WriteItems(const MarkupNode& node, int depth);

  std::wstring* m_buffer = nullptr;
  size_t m_length = 0;
};

void Serializer::WriteAttributes(const MarkupNode& node) {
  std::wstring escaped;
  for (const MarkupAttribute& attribute : node.attributes()) {
    Put(L" ");
    Put(attribute.name);
    Put(L"=\"");
    escaped.clear();
    AppendEscaped(attribute.value, true, &escaped);
    Put(escaped);
    Put(L"\"");
  }
}

// The parser drops white space around text, so white space at the ends is
// written as numeric references.
void Serializer::WriteText(const std::wstring& text) {
  const std::wstring_view core = TrimMarkupSpace(text);
  const size_t begin = text.empty() ? 0 : (core.empty() ? text.size() : core.data() - text.data());
  std::wstring out;
  for (size_t i = 0; i < begin; ++i)
    out.append(L"&#" + std::to_wstring(static_cast<int>(text[i])) + L";");
  AppendEscaped(core, false, &out);
  for (size_t i = begin + core.size(); i < text.size(); ++i)
    out.append(L"&#" + std::to_wstring(static_cast<int>(text[i])) + L";");
  Put(out);
}

void Serializer::WriteItems(const MarkupNode& node, int depth) {
  for (const MarkupHandle& item : node.items()) {
    Put(L"\n");
    WriteNode(*item, depth);
  }
}

void Serializer::WriteNode(const MarkupNode& node, int depth) {
  switch (node.kind()) {
    case MarkupNode::kDocument: {
      WriteText(node.text());
      bool first = node.text().empty();
      for (const MarkupHandle& item : node.items()) {
        if (!first)
          Put(L"\n");
        first = false;
        WriteNode(*item, 0);
      }
      return;
    }
    case MarkupNode::kElement:
      Indent(depth);
      Put(L"<");
      Put(node.name());
      WriteAttributes(node);
      if (node.text().empty() && node.items().empty()) {
        Put(L"/>");
        return;
      }
      Put(L">");
      WriteText(node.text());
      if (!node.items().empty()) {
        WriteItems(node, depth + 1);
        Put(L"\n");
        Indent(depth);
      }
      Put(L"</");
      Put(node.name());
      Put(L">");
      return;
    case MarkupNode::kDeclaration:
      Indent(depth);
      Put(L"<?");
      Put(node.name());
      WriteAttributes(node);
      if (!node.text().empty()) {
        Put(L" ");
        Put(node.text());
      }
      Put(L"?>");
      return;
    case MarkupNode::kComment:
      Indent(depth);
      Put(L"<!--");
      Put(node.text());
      Put(L"-->");
      return;
    case MarkupNode::kCData:
      Indent(depth);
      Put(L"<![CDATA[");
      Put(node.text());
      Put(L"]]>");
      return;
    case MarkupNode::kDocType:
      Indent(depth);
      Put(L"<!DOCTYPE");
      Put(node.text());
      Put(L">");
      return;
    case MarkupNode::kPre:
      Indent(depth);
      Put(L"<PRE>");
      Put(node.text());
      Put(L"</PRE>");
      return;
  }
}

bool StartsWithDeclaration(const MarkupNode& document) {
  if (document.kind() != MarkupNode::kDocument || document.items().empty())
    return false;
  const MarkupNode& first = *document.items().front();
  return first.kind() == MarkupNode::kDeclaration && !first.name().empty();
}

bool WriteUnits(const std::u16string& units, FILE* file) {
  std::string bytes;
  bytes.reserve(units.size() * 2);
  for (char16_t unit : units) {
    bytes.push_back(static_cast<char>(unit & 0xFF));
    bytes.push_back(static_cast<char>(unit >> 8));
  }
  return fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
}

}  // namespace

std::wstring SerializeMarkup(const MarkupHandle& node) {
  Serializer measure;
  measure.WriteNode(*node, 0);
  std::wstring buffer(measure.length() + 1, L'\0');
  Serializer fill(&buffer);
  fill.WriteNode(*node, 0);
  buffer.resize(fill.length());
  return buffer;
}

int32_t Save(const MarkupHandle& document, const base::FilePath& path) {
  if (document.IsNull() || (document->kind() == MarkupNode::kDocument &&
                            document->items().empty() && document->text().empty())) {
    return kSaveOk;
  }
  FILE* file = base::OpenFile(base::ResolvePathCase(path), "wb");
  if (!file)
    return kSaveCannotCreate;
  std::u16string units(1, u'\xFEFF');
  if (!StartsWithDeclaration(*document))
    units += base::WideToUTF16(kStandardDeclaration);
  units += base::WideToUTF16(SerializeMarkup(document));
  bool ok = WriteUnits(units, file);
  if (fclose(file) != 0)
    ok = false;
  return ok ? kSaveOk : kSaveWriteFailed;
}

}  // namespace markup

}  // namespace data_importer
