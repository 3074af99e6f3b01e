#ifndef TOOLS_DATA_IMPORTER_SETTINGS_INI_READER_H_
#define TOOLS_DATA_IMPORTER_SETTINGS_INI_READER_H_

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/file_path.h"

namespace data_importer {

// Reads settings files of the older generations: "[" section "]" headers and
// key "=" value lines. This is the program's own reader, independent of the
// operating system's profile functions.
//
// Grammar, line by line (a line ends at any run of CR and LF):
//  - space, tab and CR are trimmed from both ends of the line, of section
//    names, keys and values; blank lines are skipped;
//  - a line starting with ';' or '#' is a comment;
//  - "[name]" starts a section; text after the first ']' is ignored; lines
//    before the first header belong to the section with the empty name;
//  - "key=value" (split at the first '='); the value is kept as written,
//    quotes and all, and may be empty;
//  - anything else (a '[' without ']', a line without '=', an empty key) is
//    skipped after the debug line "Failing on char %d\n", where the number
//    is the position of the line's first character in the file's text
//    (counted in characters from 0).
// Files are UTF-16LE or UTF-16BE with their byte-order mark, UTF-16LE
// without one (as the profile functions tell it), UTF-8 with or without its
// mark, or else (when not valid UTF-8) 8-bit text in the user's ANSI code
// page, which the reader is given.
//
// Nothing throws; missing files and keys give the defaults.
class IniReader {
 public:
  explicit IniReader(uint32_t ansi_code_page) : m_ansi_code_page(ansi_code_page) {}
  IniReader(const IniReader&) = delete;
  IniReader& operator=(const IniReader&) = delete;

  // The files to read, in order. Empty paths are skipped: callers pass an
  // empty first path where no file of defaults exists. When several files
  // hold the same key, the later file wins; within one file the first line
  // with a key wins.
  void SetFiles(std::vector<base::FilePath> paths);

  // Reads the files, dropping what an earlier call read. With |fold_case|,
  // section and key names compare ignoring the case of A-Z; without it they
  // must match exactly. True when at least one file was read.
  bool Parse(bool fold_case);

  // Reads one file's bytes held in memory, in place of the file list.
  void ParseData(const std::string& bytes, bool fold_case);

  // True when |section| holds |key|.
  bool KeyExists(std::wstring_view section, std::wstring_view key) const;

  // The key's value, or |default_value| when the key is absent.
  std::wstring ReadString(std::wstring_view section,
                          std::wstring_view key,
                          std::wstring_view default_value) const;

  // The key read as a string whose default is |default_value| formatted with
  // "%d", then converted as _wtoi does: leading blanks, a sign and the leading
  // digits count, anything else gives 0 ("12abc" is 12, "abc" is 0).
  int ReadInt(std::wstring_view section, std::wstring_view key, int default_value) const;

  // ReadInt with the default 1 or 0; true when the number is not 0.
  bool ReadBool(std::wstring_view section, std::wstring_view key, bool default_value) const;

  // How many distinct keys the reads so far found in the files (a read
  // that fell back to its default does not count).
  size_t FoundKeyCount() const { return m_found.size(); }

 private:
  using Section = std::map<std::wstring, std::wstring>;

  // Adds the keys of one file's bytes over those read so far.
  void AddFile(const std::string& bytes);
  void ParseText(std::wstring_view text, std::map<std::wstring, Section>* file) const;
  std::wstring Name(std::wstring_view name) const;
  const std::wstring* Find(std::wstring_view section, std::wstring_view key) const;

  uint32_t m_ansi_code_page;
  std::vector<base::FilePath> m_paths;
  bool m_fold_case = false;
  std::map<std::wstring, Section> m_sections;
  // Section and key names (as compared) of every key a read found.
  mutable std::set<std::pair<std::wstring, std::wstring>> m_found;
};

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_SETTINGS_INI_READER_H_
