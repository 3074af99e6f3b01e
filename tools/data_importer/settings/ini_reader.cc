#include "tools/data_importer/settings/ini_reader.h"

#include <cwchar>
#include <utility>

#include <utf8.h>

#include "base/code_page.h"
#include "base/file_util.h"
#include "base/string_number_conversions.h"
#include "base/string_util.h"
#include "base/text_encoding.h"
#include "base/utf_string_conversions.h"
#include "logging/debug_output.h"

namespace data_importer {

namespace {

std::wstring DecodeUTF16(const std::string& bytes, size_t start, bool big_endian) {
  return base::UTF16ToWide(
      base::UTF16UnitsFromBytes(std::string_view(bytes).substr(start), big_endian));
}

// A byte-order mark first; then UTF-16LE without one, by the rule the
// profile functions apply to the files they edit (generation 7 wrote its
// settings file so); then UTF-8.
std::wstring DecodeFile(const std::string& bytes, uint32_t ansi_code_page) {
  switch (base::DetectByteOrderMark(bytes)) {
    case base::ByteOrderMark::kUtf16Le:
      return DecodeUTF16(bytes, 2, false);
    case base::ByteOrderMark::kUtf16Be:
      return DecodeUTF16(bytes, 2, true);
    case base::ByteOrderMark::kUtf8:
      return base::UTF8ToWide(std::string_view(bytes).substr(3));
    case base::ByteOrderMark::kNone:
      break;
  }
  if (base::IsUnmarkedUtf16Settings(bytes))
    return DecodeUTF16(bytes, 0, false);
  if (utf8::is_valid(bytes.begin(), bytes.end()))
    return base::UTF8ToWide(bytes);
  return base::CodePageToWide(bytes, ansi_code_page);
}

bool IsBlank(wchar_t c) {
  return c == L' ' || c == L'\t' || c == L'\r';
}

std::wstring_view Trim(std::wstring_view text) {
  while (!text.empty() && IsBlank(text.front()))
    text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back()))
    text.remove_suffix(1);
  return text;
}

void ReportBadLine(size_t position) {
  wchar_t line[64];
  swprintf(line, sizeof(line) / sizeof(line[0]), L"Failing on char %d\n",
           static_cast<int>(position));
  logging::OutputDebugStringW(line);
}

}  // namespace

void IniReader::SetFiles(std::vector<base::FilePath> paths) {
  m_paths = std::move(paths);
}

bool IniReader::Parse(bool fold_case) {
  m_fold_case = fold_case;
  m_sections.clear();
  bool read_any = false;
  for (const base::FilePath& path : m_paths) {
    std::string bytes;
    if (path.empty() || !base::ReadFileToString(path, &bytes))
      continue;
    read_any = true;
    AddFile(bytes);
  }
  return read_any;
}

void IniReader::ParseData(const std::string& bytes, bool fold_case) {
  m_fold_case = fold_case;
  m_sections.clear();
  AddFile(bytes);
}

void IniReader::AddFile(const std::string& bytes) {
  std::map<std::wstring, Section> file;
  ParseText(DecodeFile(bytes, m_ansi_code_page), &file);
  for (auto& [name, keys] : file) {
    Section& merged = m_sections[name];
    for (auto& [key, value] : keys)
      merged[key] = std::move(value);
  }
}

void IniReader::ParseText(std::wstring_view text, std::map<std::wstring, Section>* file) const {
  Section* section = &(*file)[std::wstring()];
  size_t pos = 0;
  while (pos < text.size()) {
    size_t end = text.find_first_of(L"\r\n", pos);
    if (end == std::wstring_view::npos)
      end = text.size();
    const std::wstring_view raw = text.substr(pos, end - pos);
    const size_t start = pos;
    pos = end + 1;
    const std::wstring_view line = Trim(raw);
    if (line.empty() || line.front() == L';' || line.front() == L'#')
      continue;
    const size_t line_position = start + (line.data() - raw.data());
    if (line.front() == L'[') {
      const size_t close = line.find(L']');
      if (close == std::wstring_view::npos) {
        ReportBadLine(line_position);
        continue;
      }
      section = &(*file)[Name(Trim(line.substr(1, close - 1)))];
      continue;
    }
    const size_t equals = line.find(L'=');
    const std::wstring_view key =
        equals == std::wstring_view::npos ? std::wstring_view() : Trim(line.substr(0, equals));
    if (key.empty()) {
      ReportBadLine(line_position);
      continue;
    }
    section->emplace(Name(key), std::wstring(Trim(line.substr(equals + 1))));
  }
}

std::wstring IniReader::Name(std::wstring_view name) const {
  return m_fold_case ? base::ToLowerASCII(name) : std::wstring(name);
}

const std::wstring* IniReader::Find(std::wstring_view section, std::wstring_view key) const {
  const auto found_section = m_sections.find(Name(Trim(section)));
  if (found_section == m_sections.end())
    return nullptr;
  const auto found_key = found_section->second.find(Name(Trim(key)));
  if (found_key == found_section->second.end())
    return nullptr;
  m_found.emplace(found_section->first, found_key->first);
  return &found_key->second;
}

bool IniReader::KeyExists(std::wstring_view section, std::wstring_view key) const {
  return Find(section, key) != nullptr;
}

std::wstring IniReader::ReadString(std::wstring_view section,
                                   std::wstring_view key,
                                   std::wstring_view default_value) const {
  const std::wstring* value = Find(section, key);
  return value ? *value : std::wstring(default_value);
}

int IniReader::ReadInt(std::wstring_view section, std::wstring_view key, int default_value) const {
  wchar_t text[16];
  swprintf(text, sizeof(text) / sizeof(text[0]), L"%d", default_value);
  return base::WToI(ReadString(section, key, text));
}

bool IniReader::ReadBool(std::wstring_view section,
                         std::wstring_view key,
                         bool default_value) const {
  return ReadInt(section, key, default_value ? 1 : 0) != 0;
}

}  // namespace data_importer
