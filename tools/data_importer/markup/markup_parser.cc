#include "tools/data_importer/markup/markup_parser.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "base/string_util.h"
#include "tools/data_importer/markup/markup_entities.h"
#include "tools/data_importer/markup/markup_node.h"
#include "tools/data_importer/markup/markup_strings.h"

namespace data_importer {

namespace markup {

namespace {

bool IsNameChar(wchar_t c) {
  return !IsMarkupSpace(c) && c != L'/' && c != L'>' && c != L'<' && c != L'=' && c != L'"' &&
         c != L'\'' && c != L'?' && c != L'!' && c != L'&' && c != L'\0';
}

bool StartsWithAt(std::wstring_view text, size_t pos, std::wstring_view prefix) {
  return text.size() - pos >= prefix.size() && text.compare(pos, prefix.size(), prefix) == 0;
}

std::wstring_view ReadName(std::wstring_view text, size_t* pos) {
  const size_t begin = *pos;
  while (*pos < text.size() && IsNameChar(text[*pos]))
    ++*pos;
  return text.substr(begin, *pos - begin);
}

void SkipSpace(std::wstring_view text, size_t* pos) {
  while (*pos < text.size() && IsMarkupSpace(text[*pos]))
    ++*pos;
}

class Parser {
 public:
  explicit Parser(std::wstring_view text) : m_text(text) {}

  MarkupParseResult Run();

 private:
  // Each step starts at a '<' or at text; it answers false after a fatal
  // error (recorded in m_result).
  bool ParseText();
  bool ParseSection(std::wstring_view open, std::wstring_view close, MarkupNode::Kind kind);
  bool ParseDeclaration();
  bool ParseEndTag();
  bool ParseStartTag();
  // Reads name="value" or name='value' at |*pos| into |attributes|.
  int ReadAttribute(std::wstring_view text, size_t* pos, std::vector<MarkupAttribute>* attributes);

  bool Fail(int error, size_t position) {
    m_result.error = error;
    m_result.error_position = position;
    return false;
  }
  void Note(int code) { m_result.error = std::max(m_result.error, code); }
  MarkupNode* current() const { return m_open.back(); }
  MarkupHandle Append(MarkupNode::Kind kind, std::wstring name);

  std::wstring_view m_text;
  size_t m_pos = 0;
  MarkupParseResult m_result;
  // Open elements, the container first. Not counted: each is held by its
  // parent's item list.
  std::vector<MarkupNode*> m_open;
  int32_t m_elements = 0;
};

MarkupHandle Parser::Append(MarkupNode::Kind kind, std::wstring name) {
  MarkupHandle node(new MarkupNode(kind, std::move(name)));
  current()->AppendChild(node);
  return node;
}

MarkupParseResult Parser::Run() {
  m_result.document = MarkupHandle(new MarkupNode(MarkupNode::kDocument, std::wstring()));
  m_open.push_back(m_result.document.get());
  while (m_pos < m_text.size()) {
    bool ok;
    if (m_text[m_pos] != L'<')
      ok = ParseText();
    else if (StartsWithAt(m_text, m_pos, L"<![CDATA["))
      ok = ParseSection(L"<![CDATA[", L"]]>", MarkupNode::kCData);
    else if (StartsWithAt(m_text, m_pos, L"<!--"))
      ok = ParseSection(L"<!--", L"-->", MarkupNode::kComment);
    else if (m_text.size() - m_pos >= 9 &&
             base::EqualsCaseInsensitiveASCII(m_text.substr(m_pos, 9), L"<!DOCTYPE"))
      ok = ParseSection(m_text.substr(m_pos, 9), L">", MarkupNode::kDocType);
    else if (StartsWithAt(m_text, m_pos, L"<PRE>"))
      ok = ParseSection(L"<PRE>", L"</PRE>", MarkupNode::kPre);
    else if (StartsWithAt(m_text, m_pos, L"<?"))
      ok = ParseDeclaration();
    else if (StartsWithAt(m_text, m_pos, L"</"))
      ok = ParseEndTag();
    else
      ok = ParseStartTag();
    if (!ok)
      return std::move(m_result);
  }
  if (m_open.size() > 1) {
    Fail(kMarkupUnterminated, m_text.size());
    return std::move(m_result);
  }
  if (m_elements == 0)
    Note(kMarkupNoElement);
  const MarkupNode* document = m_result.document.get();
  m_result.single_root = document->items().size() == 1 && document->child_count() == 1 &&
                         document->text_piece_count() == 0;
  return std::move(m_result);
}

bool Parser::ParseText() {
  size_t end = m_text.find(L'<', m_pos);
  if (end == std::wstring_view::npos)
    end = m_text.size();
  const std::wstring_view piece = TrimMarkupSpace(m_text.substr(m_pos, end - m_pos));
  if (!piece.empty()) {
    std::wstring decoded;
    const EntityResult entities = DecodeEntities(piece, &decoded);
    if (entities == EntityResult::kBadReference)
      return Fail(kMarkupBadReference, m_pos);
    if (entities == EntityResult::kKeptAmpersand)
      Note(kMarkupKeptAmpersand);
    current()->AppendText(decoded);
  }
  m_pos = end;
  return true;
}

bool Parser::ParseSection(std::wstring_view open, std::wstring_view close, MarkupNode::Kind kind) {
  const size_t begin = m_pos + open.size();
  const size_t end = m_text.find(close, begin);
  if (end == std::wstring_view::npos)
    return Fail(kMarkupUnterminated, m_pos);
  MarkupHandle item = Append(kind, std::wstring());
  item->SetText(std::wstring(m_text.substr(begin, end - begin)));
  m_pos = end + close.size();
  return true;
}

// "<?name a="1" b='2'?>" keeps its name and pseudo-attributes; content of
// any other form is kept whole as the declaration's text.
bool Parser::ParseDeclaration() {
  const size_t begin = m_pos + 2;
  const size_t end = m_text.find(L"?>", begin);
  if (end == std::wstring_view::npos)
    return Fail(kMarkupUnterminated, m_pos);
  const std::wstring_view content = m_text.substr(begin, end - begin);
  size_t pos = 0;
  const std::wstring_view name = ReadName(content, &pos);
  std::vector<MarkupAttribute> attributes;
  bool well_formed = true;
  while (well_formed) {
    SkipSpace(content, &pos);
    if (pos == content.size())
      break;
    well_formed = ReadAttribute(content, &pos, &attributes) < kFirstFatalError;
  }
  MarkupHandle item = Append(MarkupNode::kDeclaration, std::wstring(name));
  if (well_formed) {
    for (MarkupAttribute& attribute : attributes)
      item->AddAttribute(std::move(attribute.name), std::move(attribute.value));
  } else {
    item->SetText(std::wstring(TrimMarkupSpace(content.substr(name.size()))));
  }
  m_pos = end + 2;
  return true;
}

bool Parser::ParseEndTag() {
  const size_t start = m_pos;
  m_pos += 2;
  const std::wstring_view name = ReadName(m_text, &m_pos);
  SkipSpace(m_text, &m_pos);
  if (m_pos == m_text.size())
    return Fail(kMarkupUnterminated, start);
  if (name.empty() || m_text[m_pos] != L'>')
    return Fail(kMarkupBadTag, m_pos);
  if (m_open.size() == 1 || !base::EqualsCaseInsensitiveASCII(name, current()->name()))
    return Fail(kMarkupBadEndTag, start);
  m_open.pop_back();
  ++m_pos;
  return true;
}

bool Parser::ParseStartTag() {
  const size_t start = m_pos;
  ++m_pos;
  const std::wstring_view name = ReadName(m_text, &m_pos);
  if (name.empty())
    return Fail(kMarkupBadTag, start);
  if (m_open.size() > static_cast<size_t>(MarkupNode::kMaxDepth))
    return Fail(kMarkupTooDeep, start);
  std::vector<MarkupAttribute> attributes;
  bool empty_element = false;
  while (true) {
    SkipSpace(m_text, &m_pos);
    if (m_pos == m_text.size())
      return Fail(kMarkupUnterminated, start);
    if (m_text[m_pos] == L'>') {
      ++m_pos;
      break;
    }
    if (m_text[m_pos] == L'/') {
      if (m_pos + 1 == m_text.size())
        return Fail(kMarkupUnterminated, start);
      if (m_text[m_pos + 1] != L'>')
        return Fail(kMarkupBadTag, m_pos);
      m_pos += 2;
      empty_element = true;
      break;
    }
    const size_t attribute_start = m_pos;
    const int error = ReadAttribute(m_text, &m_pos, &attributes);
    if (error >= kFirstFatalError)
      return Fail(error, attribute_start);
    Note(error);
  }
  MarkupHandle element = Append(MarkupNode::kElement, std::wstring(name));
  for (MarkupAttribute& attribute : attributes)
    element->AddAttribute(std::move(attribute.name), std::move(attribute.value));
  ++m_elements;
  if (!empty_element)
    m_open.push_back(element.get());
  return true;
}

int Parser::ReadAttribute(std::wstring_view text,
                          size_t* pos,
                          std::vector<MarkupAttribute>* attributes) {
  const std::wstring_view name = ReadName(text, pos);
  if (name.empty())
    return kMarkupBadTag;
  SkipSpace(text, pos);
  if (*pos == text.size())
    return kMarkupUnterminated;
  if (text[*pos] != L'=')
    return kMarkupBadTag;
  ++*pos;
  SkipSpace(text, pos);
  if (*pos == text.size())
    return kMarkupUnterminated;
  const wchar_t quote = text[*pos];
  if (quote != L'"' && quote != L'\'')
    return kMarkupBadTag;
  const size_t value_begin = *pos + 1;
  const size_t value_end = text.find(quote, value_begin);
  if (value_end == std::wstring_view::npos)
    return kMarkupUnterminated;
  std::wstring value;
  const EntityResult entities =
      DecodeEntities(text.substr(value_begin, value_end - value_begin), &value);
  if (entities == EntityResult::kBadReference)
    return kMarkupBadReference;
  attributes->push_back({std::wstring(name), std::move(value)});
  *pos = value_end + 1;
  return entities == EntityResult::kKeptAmpersand ? kMarkupKeptAmpersand : kMarkupOk;
}

}  // namespace

MarkupParseResult ParseMarkup(std::wstring_view text) {
  return Parser(text).Run();
}

}  // namespace markup

}  // namespace data_importer
