#include "base/reg_key.h"

#include <stdlib.h>

#include <map>

#include "base/file_path.h"
#include "base/file_util.h"
#include "base/string_util.h"
#include "base/utf_string_conversions.h"

namespace base {

struct RegKey::Values {
  std::map<std::wstring, std::wstring> by_name;  // folded name -> value
};

namespace {

constexpr wchar_t kHive[] = L"hkey_current_user\\";

std::wstring Fold(const std::wstring& text) {
  return ToLowerASCII(text);
}

std::wstring Trim(const std::wstring& text) {
  size_t begin = text.find_first_not_of(L" \t\r\n");
  if (begin == std::wstring::npos)
    return std::wstring();
  size_t end = text.find_last_not_of(L" \t\r\n");
  return text.substr(begin, end - begin + 1);
}

// The registry file's text: UTF-16LE after a byte-order mark, else UTF-8
// (with or without its mark).
std::wstring ReadRegistryText(const FilePath& file) {
  std::string bytes;
  if (!ReadFileToString(file, &bytes))
    return std::wstring();
  if (bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == 0xFF &&
      static_cast<unsigned char>(bytes[1]) == 0xFE) {
    return UTF16ToWide(UTF16UnitsFromBytes(std::string_view(bytes).substr(2), false));
  }
  if (bytes.size() >= 3 && bytes.compare(0, 3, "\xEF\xBB\xBF") == 0)
    bytes.erase(0, 3);
  return UTF8ToWide(bytes);
}

// Reads a quoted string starting at |text[*pos]| == '"', resolving \\ and \"
// escapes. Answers false when the closing quote is missing.
bool ReadQuoted(const std::wstring& text, size_t* pos, std::wstring* out) {
  out->clear();
  for (size_t i = *pos + 1; i < text.size(); ++i) {
    if (text[i] == L'\\' && i + 1 < text.size()) {
      out->push_back(text[++i]);
    } else if (text[i] == L'"') {
      *pos = i + 1;
      return true;
    } else {
      out->push_back(text[i]);
    }
  }
  return false;
}

}  // namespace

bool RegKey::Open(const std::wstring& subkey) {
  valid_ = false;
  values_.reset();
  const char* file = getenv("VANTU_REGISTRY_FILE");
  if (!file || !*file)
    return false;
  std::wstring text = ReadRegistryText(FilePath::FromUTF8Unsafe(file));
  std::wstring wanted = Fold(kHive + subkey);
  while (!wanted.empty() && wanted.back() == L'\\')
    wanted.pop_back();

  auto values = std::make_shared<Values>();
  bool in_key = false;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find(L'\n', start);
    if (end == std::wstring::npos)
      end = text.size();
    std::wstring line = Trim(text.substr(start, end - start));
    start = end + 1;
    if (line.empty() || line[0] == L';')
      continue;
    if (line[0] == L'[') {
      size_t close = line.rfind(L']');
      std::wstring name = Fold(Trim(line.substr(1, close == std::wstring::npos ? std::wstring::npos
                                                                               : close - 1)));
      in_key = name == wanted;
      valid_ = valid_ || in_key;
      continue;
    }
    if (!in_key)
      continue;
    std::wstring name;
    size_t pos = 0;
    if (line[0] == L'@') {
      pos = 1;
    } else if (line[0] == L'"') {
      if (!ReadQuoted(line, &pos, &name))
        continue;
    } else {
      continue;
    }
    while (pos < line.size() && (line[pos] == L' ' || line[pos] == L'\t'))
      ++pos;
    if (pos >= line.size() || line[pos] != L'=')
      continue;
    ++pos;
    while (pos < line.size() && (line[pos] == L' ' || line[pos] == L'\t'))
      ++pos;
    std::wstring value;
    // Only string values are read; dword:, hex: and the like are skipped.
    if (pos < line.size() && line[pos] == L'"' && ReadQuoted(line, &pos, &value))
      values->by_name[Fold(name)] = value;
  }
  if (valid_) {
    key_name_ = subkey;
    values_ = values;
  }
  return valid_;
}

bool RegKey::ReadValue(const std::wstring& name, std::wstring* value) const {
  value->clear();
  if (!valid_ || !values_)
    return false;
  auto it = values_->by_name.find(name == L"@" ? std::wstring() : Fold(name));
  if (it == values_->by_name.end())
    return false;
  *value = it->second;
  return true;
}

}  // namespace base
