#include "base/reg_key.h"

#include <stdlib.h>
#include <string.h>
#include <wctype.h>

#include <algorithm>
#include <map>

#include "base/environment.h"
#include "base/file_path.h"
#include "base/file_util.h"
#include "base/registry_hive.h"
#include "base/string_util.h"
#include "base/utf_string_conversions.h"

namespace base {

struct RegKey::Values {
  std::map<std::wstring, RegistryString> by_name;  // folded name -> value
};

namespace {

constexpr wchar_t kCurrentUser[] = L"hkey_current_user\\";
constexpr wchar_t kUsers[] = L"hkey_users\\";

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

// The text of a registry export: UTF-16LE after a byte-order mark, else
// UTF-8 (with or without its mark).
std::wstring RegistryText(std::string bytes) {
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

// Whether |line| ends with a "\" outside quotes: the export continues the
// line (long hex data) on the next one.
bool ContinuesOnNextLine(const std::wstring& line) {
  if (line.empty() || line.back() != L'\\')
    return false;
  bool quoted = false;
  for (size_t i = 0; i + 1 < line.size(); ++i) {
    if (quoted && line[i] == L'\\')
      ++i;
    else if (line[i] == L'"')
      quoted = !quoted;
  }
  return !quoted;
}

// The text of "hex(2):" (REG_EXPAND_SZ) or "hex(1):" (REG_SZ) data: bytes
// in hex separated by commas, UTF-16LE, up to the first NUL character.
bool ReadHexString(const std::wstring& data, std::wstring* out) {
  std::string bytes;
  size_t start = 0;
  while (start < data.size()) {
    size_t end = data.find(L',', start);
    if (end == std::wstring::npos)
      end = data.size();
    std::wstring item = Trim(data.substr(start, end - start));
    start = end + 1;
    if (item.empty())
      continue;
    if (item.size() > 2 || !iswxdigit(item[0]) || (item.size() == 2 && !iswxdigit(item[1])))
      return false;
    bytes.push_back(static_cast<char>(std::stoi(item, nullptr, 16)));
  }
  std::u16string units = UTF16UnitsFromBytes(bytes, false);
  units.resize(std::min(units.size(), units.find(u'\0')));
  *out = UTF16ToWide(units);
  return true;
}

// Whether the folded section name |name| is the user's key |wanted| (folded,
// without a root): under HKEY_CURRENT_USER, or under HKEY_USERS\<one key>,
// where an export of another user's loaded hive puts it.
bool IsUserKey(const std::wstring& name, const std::wstring& wanted) {
  if (name == kCurrentUser + wanted)
    return true;
  const std::wstring users = kUsers;
  if (name.compare(0, users.size(), users) != 0)
    return false;
  size_t separator = name.find(L'\\', users.size());
  return separator != std::wstring::npos && separator > users.size() &&
         name.compare(separator + 1, std::wstring::npos, wanted) == 0;
}

// The string values of |wanted| (folded, without the root) in a ".reg"
// export; false when the key is absent.
bool ReadExportKey(const std::wstring& text, const std::wstring& wanted, RegistryStrings* values) {
  bool found = false;
  bool in_key = false;
  size_t start = 0;
  while (start < text.size()) {
    std::wstring line;
    // Joins continued lines into one logical line.
    while (start < text.size()) {
      size_t end = text.find(L'\n', start);
      if (end == std::wstring::npos)
        end = text.size();
      std::wstring part = Trim(text.substr(start, end - start));
      start = end + 1;
      if (ContinuesOnNextLine(part)) {
        line += part.substr(0, part.size() - 1);
        continue;
      }
      line += part;
      break;
    }
    if (line.empty() || line[0] == L';')
      continue;
    if (line[0] == L'[') {
      size_t close = line.rfind(L']');
      std::wstring name =
          Fold(Trim(line.substr(1, close == std::wstring::npos ? std::wstring::npos : close - 1)));
      in_key = IsUserKey(name, wanted);
      found = found || in_key;
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
    // String values only: "text", hex(2): (REG_EXPAND_SZ) and hex(1):
    // (REG_SZ); dword:, hex: and the other types are skipped.
    RegistryString value;
    std::wstring rest = line.substr(pos);
    if (!rest.empty() && rest[0] == L'"') {
      size_t quoted = pos;
      if (!ReadQuoted(line, &quoted, &value.text))
        continue;
    } else if (Fold(rest.substr(0, 7)) == L"hex(2):") {
      if (!ReadHexString(rest.substr(7), &value.text))
        continue;
      value.expand = true;
    } else if (Fold(rest.substr(0, 7)) == L"hex(1):") {
      if (!ReadHexString(rest.substr(7), &value.text))
        continue;
    } else {
      continue;
    }
    (*values)[name] = std::move(value);
  }
  return found;
}

// Whether |text| starts as a registry editor's export does.
bool IsRegistryExport(const std::wstring& text) {
  size_t end = text.find(L'\n');
  std::wstring first = Trim(text.substr(0, end));
  return first == L"Windows Registry Editor Version 5.00" || first == L"REGEDIT4";
}

}  // namespace

std::wstring ExpandEnvironmentReferences(const std::wstring& text, const VariableLookup& lookup) {
  std::wstring out;
  size_t pos = 0;
  while (pos < text.size()) {
    size_t open = text.find(L'%', pos);
    size_t close = open == std::wstring::npos ? open : text.find(L'%', open + 1);
    if (close == std::wstring::npos) {
      out += text.substr(pos);
      break;
    }
    out += text.substr(pos, open - pos);
    std::wstring name = text.substr(open + 1, close - open - 1);
    std::wstring value;
    if (!name.empty() && lookup && lookup(name, &value)) {
      out += value;
      pos = close + 1;
    } else {
      // Keeps the first '%' and looks for a reference from the second on.
      out += L'%';
      pos = open + 1;
    }
  }
  return out;
}

bool RegKey::Open(const FilePath& path, const std::wstring& subkey) {
  m_valid = false;
  m_values.reset();
  std::wstring wanted = subkey;
  while (!wanted.empty() && wanted.back() == L'\\')
    wanted.pop_back();
  RegistryStrings strings;
  if (path.empty()) {
    // No registry file given: the current user's own registry, where the
    // system has one.
    if (!ReadCurrentUserKey(wanted, &strings))
      return false;
    return Adopt(subkey, std::move(strings));
  }
  std::string bytes;
  if (!ReadFileToString(path, &bytes))
    return false;
  bool found = IsRegistryHive(bytes)
                   ? ReadHiveKey(path, wanted, &strings)
                   : ReadExportKey(RegistryText(std::move(bytes)), Fold(wanted), &strings);
  if (!found)
    return false;
  return Adopt(subkey, std::move(strings));
}

bool RegKey::Adopt(const std::wstring& subkey, RegistryStrings strings) {
  auto values = std::make_shared<Values>();
  for (auto& [name, value] : strings)
    values->by_name[Fold(name)] = std::move(value);
  m_valid = true;
  m_key_name = subkey;
  m_values = values;
  return true;
}

bool CheckRegistryFile(const FilePath& file, std::string* reason) {
  std::string bytes;
  if (!ReadFileToString(file, &bytes)) {
    int error = GetLastSystemError();
    *reason = error ? strerror(error) : "cannot be read";
    return false;
  }
  if (IsRegistryHive(bytes))
    return CheckHiveFile(file, reason);
  if (!IsRegistryExport(RegistryText(std::move(bytes)))) {
    *reason = "neither a registry hive nor a .reg export";
    return false;
  }
  return true;
}

bool RegKey::ReadValue(const std::wstring& name, std::wstring* value, bool* expandable) const {
  value->clear();
  if (expandable)
    *expandable = false;
  if (!m_valid || !m_values)
    return false;
  auto it = m_values->by_name.find(name == L"@" ? std::wstring() : Fold(name));
  if (it == m_values->by_name.end())
    return false;
  *value = it->second.text;
  if (expandable)
    *expandable = it->second.expand;
  return true;
}

}  // namespace base
