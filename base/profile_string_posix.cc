#include "base/profile_string.h"

#include <unistd.h>

#include <climits>
#include <optional>

#include <utf8.h>

#include "base/code_page.h"
#include "base/file_path.h"
#include "base/file_util.h"
#include "base/string_util.h"
#include "base/text_encoding.h"
#include "base/utf_string_conversions.h"

namespace base {

namespace {

// An INI file held as its code units: bytes for an 8-bit file and UTF-16
// units for a UTF-16LE file, each unit in one wchar_t. Edits replace or
// insert whole lines; every unit of an untouched line is written back as it
// was read, so no byte changes that the call did not mean to change.
//
// 8-bit files: Windows reads them in the ANSI code page, which the caller
// names. An 8-bit file that is valid UTF-8 (every file this program writes,
// and ASCII files) is read and extended as UTF-8, which keeps text in any
// script; a file that is not valid UTF-8 was written in the ANSI code page
// and is read and extended in it, unmappable characters becoming '?', as
// Windows does.
struct IniText {
  enum Encoding { kUtf8, kAnsi, kUtf8Bom, kUtf16, kUtf16Be, kUtf16NoBom };
  Encoding encoding = kUtf8;
  uint32_t code_page = kCodePageWestern;
  std::wstring units;

  bool IsUtf16() const {
    return encoding == kUtf16 || encoding == kUtf16Be || encoding == kUtf16NoBom;
  }

  // Caller text (wide) in the file's units.
  std::wstring ToUnits(std::wstring_view text) const {
    std::wstring out;
    if (IsUtf16()) {
      for (char16_t u : WideToUTF16(text))
        out.push_back(static_cast<wchar_t>(u));
    } else if (encoding == kAnsi) {
      for (unsigned char b : WideToCodePage(text, code_page))
        out.push_back(static_cast<wchar_t>(b));
    } else {
      for (unsigned char b : WideToUTF8(text))
        out.push_back(static_cast<wchar_t>(b));
    }
    return out;
  }

  // File units back to wide text.
  std::wstring FromUnits(std::wstring_view units_text) const {
    if (IsUtf16()) {
      std::u16string utf16;
      for (wchar_t u : units_text)
        utf16.push_back(static_cast<char16_t>(u));
      return UTF16ToWide(utf16);
    }
    std::string bytes;
    for (wchar_t b : units_text)
      bytes.push_back(static_cast<char>(b));
    return encoding == kAnsi ? CodePageToWide(bytes, code_page) : UTF8ToWide(bytes);
  }
};

bool Load(const FilePath& path, uint32_t ansi_code_page, IniText* text) {
  text->code_page = ansi_code_page;
  std::string bytes;
  if (!ReadFileToString(path, &bytes))
    return false;
  // A byte-order mark decides between UTF-16 little- and big-endian (the
  // latter as Wine reads it; Windows documents only the former).
  const ByteOrderMark mark = DetectByteOrderMark(bytes);
  if (mark == ByteOrderMark::kUtf16Le || mark == ByteOrderMark::kUtf16Be) {
    bool little = mark == ByteOrderMark::kUtf16Le;
    text->encoding = little ? IniText::kUtf16 : IniText::kUtf16Be;
    for (char16_t unit : UTF16UnitsFromBytes(std::string_view(bytes).substr(2), !little))
      text->units.push_back(static_cast<wchar_t>(unit));
    return true;
  }
  // Without a mark, the system's text detection decides whether the bytes
  // are UTF-16LE. The profile functions we reproduce were recorded reading
  // such a file as 8-bit text, which turns every second byte into a NUL
  // character and makes the next write add 8-bit lines to a UTF-16 file:
  // the file would be damaged for the player. Taking it as UTF-16 (and
  // writing it back without a mark, as found) keeps it whole.
  //
  // The detection alone could take an 8-bit file holding NUL bytes for
  // UTF-16 after a write has made its length even, and the next call would
  // no longer find what the last one wrote; the settings-file test also
  // asks for the opening of an INI file's text. Only the deletion of its
  // first section changes how a file begins.
  if (IsUnmarkedUtf16Settings(bytes)) {
    text->encoding = IniText::kUtf16NoBom;
    for (char16_t unit : UTF16UnitsFromBytes(bytes, false))
      text->units.push_back(static_cast<wchar_t>(unit));
    return true;
  }
  size_t start = 0;
  if (mark == ByteOrderMark::kUtf8) {
    text->encoding = IniText::kUtf8Bom;
    start = 3;
  }
  for (size_t i = start; i < bytes.size(); ++i)
    text->units.push_back(static_cast<wchar_t>(static_cast<unsigned char>(bytes[i])));
  if (start == 0 && !utf8::is_valid(bytes.begin(), bytes.end()))
    text->encoding = IniText::kAnsi;
  return true;
}

// Writes the whole file through a temporary file and a rename, so that a
// reader in another process sees the old or the new file, never half of one.
bool Save(const FilePath& path, const IniText& text) {
  std::string bytes;
  if (text.IsUtf16()) {
    bool little = text.encoding != IniText::kUtf16Be;
    if (text.encoding == IniText::kUtf16)
      bytes = "\xFF\xFE";
    else if (text.encoding == IniText::kUtf16Be)
      bytes = "\xFE\xFF";
    for (wchar_t u : text.units) {
      char lo = static_cast<char>(u & 0xFF), hi = static_cast<char>((u >> 8) & 0xFF);
      bytes.push_back(little ? lo : hi);
      bytes.push_back(little ? hi : lo);
    }
  } else {
    if (text.encoding == IniText::kUtf8Bom)
      bytes = "\xEF\xBB\xBF";
    for (wchar_t b : text.units)
      bytes.push_back(static_cast<char>(b));
  }
  FilePath temp(path.value() + L".tmp" + std::to_wstring(getpid()));
  if (!WriteFile(temp, bytes)) {
    // Best effort: a leftover temporary file does not change the answer.
    (void)DeleteFile(temp);
    return false;
  }
  if (!ReplaceFile(temp, path)) {
    // Best effort: a leftover temporary file does not change the answer.
    (void)DeleteFile(temp);
    return false;
  }
  return true;
}

bool IsBlank(wchar_t c) {
  return c == L' ' || c == L'\t' || c == L'\r' || c == L'\n' || c == L'\v' || c == L'\f' ||
         c == 0x1A;
}

std::wstring_view Trim(std::wstring_view s) {
  while (!s.empty() && IsBlank(s.front()))
    s.remove_prefix(1);
  while (!s.empty() && IsBlank(s.back()))
    s.remove_suffix(1);
  return s;
}

bool SameName(std::wstring_view a, std::wstring_view b) {
  return EqualsCaseInsensitiveASCII(a, b);
}

// One line of the file: [begin, end) is its text, [end, next) its line
// break (empty for a last line without one).
struct Line {
  size_t begin, end, next;
};

std::vector<Line> SplitLines(const std::wstring& units) {
  std::vector<Line> lines;
  size_t pos = 0;
  while (pos < units.size()) {
    size_t end = units.find_first_of(L"\r\n", pos);
    if (end == std::wstring::npos) {
      lines.push_back({pos, units.size(), units.size()});
      break;
    }
    size_t next = end;
    if (units[next] == L'\r')
      ++next;
    if (next < units.size() && units[next] == L'\n')
      ++next;
    lines.push_back({pos, end, next});
    pos = next;
  }
  return lines;
}

// The section name of a header line, or nothing for any other line.
std::optional<std::wstring_view> HeaderName(std::wstring_view line) {
  line = Trim(line);
  if (line.empty() || line[0] != L'[')
    return std::nullopt;
  size_t close = line.rfind(L']');
  if (close == std::wstring_view::npos)
    return std::nullopt;
  return Trim(line.substr(1, close - 1));
}

// Key name and value of an entry line; nothing for comments and lines
// without '='.
bool SplitEntry(std::wstring_view line, std::wstring_view* name, std::wstring_view* value) {
  std::wstring_view trimmed = Trim(line);
  if (trimmed.empty() || trimmed[0] == L';')
    return false;
  size_t equals = trimmed.find(L'=');
  if (equals == std::wstring_view::npos)
    return false;
  *name = Trim(trimmed.substr(0, equals));
  *value = Trim(trimmed.substr(equals + 1));
  return true;
}

// Where a section lies: its header line and the line after its last line.
struct SectionSpan {
  size_t header = 0;
  size_t end = 0;
  bool found = false;
};

SectionSpan FindSection(const std::wstring& units,
                        const std::vector<Line>& lines,
                        std::wstring_view section) {
  SectionSpan span;
  for (size_t i = 0; i < lines.size(); ++i) {
    std::wstring_view text(units.data() + lines[i].begin, lines[i].end - lines[i].begin);
    auto header = HeaderName(text);
    if (!header)
      continue;
    if (span.found) {
      span.end = i;
      return span;
    }
    if (SameName(*header, section)) {
      span.found = true;
      span.header = i;
    }
  }
  span.end = lines.size();
  return span;
}

constexpr wchar_t kCrLf[] = L"\r\n";

}  // namespace

bool WritePrivateProfileStringW(const wchar_t* section,
                                const wchar_t* key,
                                const wchar_t* value,
                                const wchar_t* file,
                                uint32_t ansi_code_page) {
  if (!section || !file)
    return false;
  FilePath path = ResolvePathCase(FilePath(file));
  IniText text;
  bool exists = Load(path, ansi_code_page, &text);
  if (!exists && (!key || !value))
    return true;  // nothing to delete

  // Deletions trim their names as reads and writes do. The recorded
  // implementation compares a deletion's names untrimmed (" A " deletes
  // nothing from "[A]"); one rule for every call is what a caller expects,
  // and a key that the call was meant to remove is not left behind.
  const std::wstring section_units = text.ToUnits(Trim(section));
  std::vector<Line> lines = SplitLines(text.units);
  SectionSpan span = FindSection(text.units, lines, section_units);

  std::wstring& units = text.units;
  if (!key) {
    if (!span.found)
      return true;
    size_t begin = lines[span.header].begin;
    size_t end = span.end < lines.size() ? lines[span.end].begin : units.size();
    units.erase(begin, end - begin);
    return Save(path, text);
  }

  const std::wstring key_units = text.ToUnits(Trim(key));
  std::wstring new_value;
  if (value) {
    new_value = text.ToUnits(value);
    size_t lead = 0;
    while (lead < new_value.size() && IsBlank(new_value[lead]))
      ++lead;
    new_value.erase(0, lead);
  }
  if (span.found) {
    for (size_t i = span.header + 1; i < span.end; ++i) {
      std::wstring_view line(units.data() + lines[i].begin, lines[i].end - lines[i].begin);
      std::wstring_view name, old_value;
      if (!SplitEntry(line, &name, &old_value)) {
        // A name without "=" is a key without a value: a write gives it
        // one in place (a deletion does not see it).
        std::wstring_view bare = Trim(line);
        if (!value || bare.empty() || bare[0] == L';' || !SameName(bare, key_units))
          continue;
        units.replace(lines[i].begin, lines[i].next - lines[i].begin,
                      std::wstring(bare) + L"=" + new_value + kCrLf);
        return Save(path, text);
      }
      if (!SameName(name, key_units))
        continue;
      if (!value) {
        units.erase(lines[i].begin, lines[i].next - lines[i].begin);
        return Save(path, text);
      }
      if (old_value == new_value)
        return true;  // unchanged: the file is not touched
      units.replace(lines[i].begin, lines[i].next - lines[i].begin,
                    std::wstring(name) + L"=" + new_value + kCrLf);
      return Save(path, text);
    }
  }
  if (!value)
    return true;

  std::wstring entry = key_units + L"=" + new_value + kCrLf;

  if (span.found) {
    // After the last non-blank line of the section.
    size_t last = span.header;
    for (size_t i = span.header + 1; i < span.end; ++i) {
      std::wstring_view line(units.data() + lines[i].begin, lines[i].end - lines[i].begin);
      if (!Trim(line).empty())
        last = i;
    }
    size_t at = lines[last].next;
    if (lines[last].next == lines[last].end) {  // last line of the file, no break
      units.insert(at, kCrLf);
      at += 2;
    }
    units.insert(at, entry);
  } else {
    if (!units.empty() && units.back() != L'\n' && units.back() != L'\r')
      units += kCrLf;
    units += L"[" + section_units + L"]" + kCrLf + entry;
  }
  return Save(path, text);
}

namespace {

struct Entry {
  std::wstring name;
  std::wstring value;
};

// The entries of the first section called |section| (all names when null).
bool ReadSection(const std::wstring& file,
                 uint32_t ansi_code_page,
                 std::wstring_view section,
                 std::vector<Entry>* out) {
  IniText text;
  if (!Load(ResolvePathCase(FilePath(file)), ansi_code_page, &text))
    return false;
  std::vector<Line> lines = SplitLines(text.units);
  SectionSpan span = FindSection(text.units, lines, text.ToUnits(section));
  if (!span.found)
    return false;
  for (size_t i = span.header + 1; i < span.end; ++i) {
    std::wstring_view line(text.units.data() + lines[i].begin, lines[i].end - lines[i].begin);
    std::wstring_view name, value;
    if (SplitEntry(line, &name, &value))
      out->push_back({text.FromUnits(name), text.FromUnits(value)});
  }
  return true;
}

}  // namespace

std::wstring GetPrivateProfileStringW(const std::wstring& section,
                                      const std::wstring& key,
                                      const std::wstring& default_value,
                                      const std::wstring& file,
                                      uint32_t ansi_code_page) {
  std::vector<Entry> entries;
  ReadSection(file, ansi_code_page, Trim(section), &entries);
  std::wstring wanted(Trim(key));
  for (const Entry& entry : entries) {
    if (!SameName(entry.name, wanted))
      continue;
    std::wstring value = entry.value;
    if (value.size() >= 2 && (value.front() == L'"' || value.front() == L'\'') &&
        value.back() == value.front())
      value = value.substr(1, value.size() - 2);
    return value;
  }
  std::wstring fallback = default_value;
  while (!fallback.empty() && fallback.back() == L' ')
    fallback.pop_back();
  return fallback;
}

std::vector<std::wstring> GetPrivateProfileKeys(const std::wstring& section,
                                                const std::wstring& file,
                                                uint32_t ansi_code_page) {
  // Unlike a value read, the key list does not trim the section name. A
  // list whose first name is empty counts as no list, as for Windows.
  std::vector<Entry> entries;
  ReadSection(file, ansi_code_page, section, &entries);
  std::vector<std::wstring> keys;
  if (!entries.empty() && entries.front().name.empty())
    return keys;
  for (const Entry& entry : entries)
    keys.push_back(entry.name);
  return keys;
}

std::vector<std::wstring> GetPrivateProfileSections(const std::wstring& file,
                                                    uint32_t ansi_code_page) {
  IniText text;
  std::vector<std::wstring> sections;
  if (!Load(ResolvePathCase(FilePath(file)), ansi_code_page, &text))
    return sections;
  for (const Line& line : SplitLines(text.units)) {
    auto header =
        HeaderName(std::wstring_view(text.units.data() + line.begin, line.end - line.begin));
    if (header && !header->empty())
      sections.push_back(text.FromUnits(*header));
  }
  return sections;
}

}  // namespace base
