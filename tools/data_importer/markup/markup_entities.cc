#include "tools/data_importer/markup/markup_entities.h"

#include "base/utf_string_conversions.h"
#include "base/string_util.h"
#include "tools/data_importer/markup/markup_strings.h"

namespace data_importer {

namespace markup {

namespace {

struct NamedEntity {
  const wchar_t* name;
  wchar_t value;
};

constexpr NamedEntity kNamedEntities[] = {
    {L"amp", L'&'}, {L"lt", L'<'}, {L"gt", L'>'}, {L"quot", L'"'}, {L"apos", L'\''},
};

int DigitValue(wchar_t c, int base) {
  if (c >= L'0' && c <= L'9')
    return c - L'0';
  if (base == 16) {
    if (c >= L'a' && c <= L'f')
      return c - L'a' + 10;
    if (c >= L'A' && c <= L'F')
      return c - L'A' + 10;
  }
  return -1;
}

// Reads the numeric reference whose digits start at |pos|; on success sets
// |*end| just past the ';'.
bool ReadNumber(std::wstring_view raw, size_t pos, int base, char32_t* value, size_t* end) {
  uint32_t number = 0;
  size_t digits = 0;
  while (pos < raw.size() && raw[pos] != L';') {
    const int digit = DigitValue(raw[pos], base);
    if (digit < 0)
      return false;
    number = number * base + digit;
    if (number > 0x10FFFF)
      return false;
    ++digits;
    ++pos;
  }
  if (pos == raw.size() || digits == 0)
    return false;
  if (number == 0 || (number >= 0xD800 && number <= 0xDFFF))
    return false;
  *value = static_cast<char32_t>(number);
  *end = pos + 1;
  return true;
}

}  // namespace

EntityResult DecodeEntities(std::wstring_view raw, std::wstring* out) {
  EntityResult result = EntityResult::kOk;
  size_t pos = 0;
  while (pos < raw.size()) {
    const size_t amp = raw.find(L'&', pos);
    if (amp == std::wstring_view::npos) {
      out->append(raw.substr(pos));
      break;
    }
    out->append(raw.substr(pos, amp - pos));
    pos = amp + 1;
    if (pos < raw.size() && raw[pos] == L'#') {
      int base = 10;
      size_t digits = pos + 1;
      if (digits < raw.size() && (raw[digits] == L'x' || raw[digits] == L'X')) {
        base = 16;
        ++digits;
      }
      char32_t value;
      if (!ReadNumber(raw, digits, base, &value, &pos))
        return EntityResult::kBadReference;
      base::AppendCodePoint(value, out);
      continue;
    }
    bool matched = false;
    for (const NamedEntity& entity : kNamedEntities) {
      const std::wstring_view name(entity.name);
      if (raw.size() - pos > name.size() &&
          base::EqualsCaseInsensitiveASCII(raw.substr(pos, name.size()), name) &&
          raw[pos + name.size()] == L';') {
        out->push_back(entity.value);
        pos += name.size() + 1;
        matched = true;
        break;
      }
    }
    if (!matched) {
      out->push_back(L'&');
      result = EntityResult::kKeptAmpersand;
    }
  }
  return result;
}

void AppendEscaped(std::wstring_view text, bool in_attribute, std::wstring* out) {
  for (wchar_t c : text) {
    switch (c) {
      case L'&':
        out->append(L"&amp;");
        break;
      case L'<':
        out->append(L"&lt;");
        break;
      case L'>':
        out->append(L"&gt;");
        break;
      case L'"':
        if (in_attribute)
          out->append(L"&quot;");
        else
          out->push_back(c);
        break;
      default:
        out->push_back(c);
    }
  }
}

}  // namespace markup

}  // namespace data_importer
