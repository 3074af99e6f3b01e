#include "tools/data_importer/markup/markup_parser.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "base/string_util.h"
#include "tools/data_importer/markup/markup_entities.h"
#include "tools/data_importer/markup/markup_node.h"
#include "tools/data_importer/markup/markup_strings.h"

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
  explicit Parser(std::wstring_view text) : text_(text) {}

  MarkupParseResult Run();

 private:
  // Each step starts at a '<' or at text; it answers false after a fatal
  // error (recorded in result_).
  bool ParseText();
  bool ParseSection(std::wstring_view open, std::wstring_view close, MarkupNode::Kind kind);
  bool ParseDeclaration();
  bool ParseEndTag();
  bool ParseStartTag();
  // Reads name="value" or name='value' at |*pos| into |attributes|.
  int ReadAttribute(std::wstring_view text, size_t* pos, std::vector<MarkupAttribute>* attributes);

  bool Fail(int error, size_t position) {
    result_.error = error;
    result_.error_position = position;
    return false;
  }
  void Note(int code) { result_.error = std::max(result_.error, code); }
  MarkupNode* current() const { return open_.back(); }
  MarkupHandle Append(MarkupNode::Kind kind, std::wstring name);

  std::wstring_view text_;
  size_t pos_ = 0;
  MarkupParseResult result_;
  // Open elements, the container first. Not counted: each is held by its
  // parent's item list.
  std::vector<MarkupNode*> open_;
  int32_t elements_ = 0;
};

MarkupHandle Parser::Append(MarkupNode::Kind kind, std::wstring name) {
  MarkupHandle node(new MarkupNode(kind, std::move(name)));
  current()->AppendChild(node);
  return node;
}

MarkupParseResult Parser::Run() {
  result_.document = MarkupHandle(new MarkupNode(MarkupNode::kDocument, std::wstring()));
  open_.push_back(result_.document.get());
  while (pos_ < text_.size()) {
    bool ok;
    if (text_[pos_] != L'<')
      ok = ParseText();
    else if (StartsWithAt(text_, pos_, L"<![CDATA["))
      ok = ParseSection(L"<![CDATA[", L"]]>", MarkupNode::kCData);
    else if (StartsWithAt(text_, pos_, L"<!--"))
      ok = ParseSection(L"<!--", L"-->", MarkupNode::kComment);
    else if (text_.size() - pos_ >= 9 && base::EqualsCaseInsensitiveASCII(text_.substr(pos_, 9), L"<!DOCTYPE"))
      ok = ParseSection(text_.substr(pos_, 9), L">", MarkupNode::kDocType);
    else if (StartsWithAt(text_, pos_, L"<PRE>"))
      ok = ParseSection(L"<PRE>", L"</PRE>", MarkupNode::kPre);
    else if (StartsWithAt(text_, pos_, L"<?"))
      ok = ParseDeclaration();
    else if (StartsWithAt(text_, pos_, L"</"))
      ok = ParseEndTag();
    else
      ok = ParseStartTag();
    if (!ok)
      return std::move(result_);
  }
  if (open_.size() > 1) {
    Fail(kMarkupUnterminated, text_.size());
    return std::move(result_);
  }
  if (elements_ == 0)
    Note(kMarkupNoElement);
  const MarkupNode* document = result_.document.get();
  result_.single_root = document->items().size() == 1 && document->child_count() == 1 &&
                        document->text_piece_count() == 0;
  return std::move(result_);
}

bool Parser::ParseText() {
  size_t end = text_.find(L'<', pos_);
  if (end == std::wstring_view::npos)
    end = text_.size();
  const std::wstring_view piece = TrimMarkupSpace(text_.substr(pos_, end - pos_));
  if (!piece.empty()) {
    std::wstring decoded;
    const EntityResult entities = DecodeEntities(piece, &decoded);
    if (entities == EntityResult::kBadReference)
      return Fail(kMarkupBadReference, pos_);
    if (entities == EntityResult::kKeptAmpersand)
      Note(kMarkupKeptAmpersand);
    current()->AppendText(decoded);
  }
  pos_ = end;
  return true;
}

bool Parser::ParseSection(std::wstring_view open, std::wstring_view close, MarkupNode::Kind kind) {
  const size_t begin = pos_ + open.size();
  const size_t end = text_.find(close, begin);
  if (end == std::wstring_view::npos)
    return Fail(kMarkupUnterminated, pos_);
  MarkupHandle item = Append(kind, std::wstring());
  item->SetText(std::wstring(text_.substr(begin, end - begin)));
  pos_ = end + close.size();
  return true;
}

// "<?name a="1" b='2'?>" keeps its name and pseudo-attributes; content of
// any other form is kept whole as the declaration's text.
bool Parser::ParseDeclaration() {
  const size_t begin = pos_ + 2;
  const size_t end = text_.find(L"?>", begin);
  if (end == std::wstring_view::npos)
    return Fail(kMarkupUnterminated, pos_);
  const std::wstring_view content = text_.substr(begin, end - begin);
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
  pos_ = end + 2;
  return true;
}

bool Parser::ParseEndTag() {
  const size_t start = pos_;
  pos_ += 2;
  const std::wstring_view name = ReadName(text_, &pos_);
  SkipSpace(text_, &pos_);
  if (pos_ == text_.size())
    return Fail(kMarkupUnterminated, start);
  if (name.empty() || text_[pos_] != L'>')
    return Fail(kMarkupBadTag, pos_);
  if (open_.size() == 1 || !base::EqualsCaseInsensitiveASCII(name, current()->name()))
    return Fail(kMarkupBadEndTag, start);
  open_.pop_back();
  ++pos_;
  return true;
}

bool Parser::ParseStartTag() {
  const size_t start = pos_;
  ++pos_;
  const std::wstring_view name = ReadName(text_, &pos_);
  if (name.empty())
    return Fail(kMarkupBadTag, start);
  if (open_.size() > static_cast<size_t>(MarkupNode::kMaxDepth))
    return Fail(kMarkupTooDeep, start);
  std::vector<MarkupAttribute> attributes;
  bool empty_element = false;
  while (true) {
    SkipSpace(text_, &pos_);
    if (pos_ == text_.size())
      return Fail(kMarkupUnterminated, start);
    if (text_[pos_] == L'>') {
      ++pos_;
      break;
    }
    if (text_[pos_] == L'/') {
      if (pos_ + 1 == text_.size())
        return Fail(kMarkupUnterminated, start);
      if (text_[pos_ + 1] != L'>')
        return Fail(kMarkupBadTag, pos_);
      pos_ += 2;
      empty_element = true;
      break;
    }
    const size_t attribute_start = pos_;
    const int error = ReadAttribute(text_, &pos_, &attributes);
    if (error >= kFirstFatalError)
      return Fail(error, attribute_start);
    Note(error);
  }
  MarkupHandle element = Append(MarkupNode::kElement, std::wstring(name));
  for (MarkupAttribute& attribute : attributes)
    element->AddAttribute(std::move(attribute.name), std::move(attribute.value));
  ++elements_;
  if (!empty_element)
    open_.push_back(element.get());
  return true;
}

int Parser::ReadAttribute(std::wstring_view text, size_t* pos,
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
