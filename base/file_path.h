#ifndef BASE_FILE_PATH_H_
#define BASE_FILE_PATH_H_

#include <string>

namespace base {

// A path held as wide text, as the player's code handles every path. The
// separator is '/' on POSIX ('\\' and '/' on Windows). FilePath only edits
// text: it never touches the file system, so it cannot fail. Letter case is
// kept as the caller gives it; lookups of existing files are made
// case-insensitive by the file operations (file_util.h), not here.
class FilePath {
 public:
  using StringType = std::wstring;
  using CharType = wchar_t;

  static constexpr wchar_t kSeparator =
#if defined(_WIN32)
      L'\\';
#else
      L'/';
#endif

  FilePath() = default;
  explicit FilePath(StringType path) : m_path(std::move(path)) {}

  const StringType& value() const {
    return m_path;
  }
  bool empty() const {
    return m_path.empty();
  }

  // This path joined with |component| by one separator. An empty path gives
  // |component| itself; an absolute |component| is appended as text all the
  // same (callers join relative names).
  FilePath Append(const StringType& component) const;
  FilePath Append(const FilePath& component) const {
    return Append(component.value());
  }

  // The last component ("a/b/c.db" -> "c.db"); trailing separators ignored.
  FilePath BaseName() const;
  // Everything before the last component ("a/b/c.db" -> "a/b"; "c.db" -> ".";
  // "/c.db" -> "/").
  FilePath DirName() const;
  // The extension of the last component with its dot (".db"), or empty.
  StringType Extension() const;
  // The path without the extension of its last component.
  FilePath RemoveExtension() const;

  // UTF-8 form, for the operating system and for log files.
  std::string AsUTF8Unsafe() const;
  static FilePath FromUTF8Unsafe(const std::string& utf8);

  bool operator==(const FilePath& other) const {
    return m_path == other.m_path;
  }
  bool operator!=(const FilePath& other) const {
    return m_path != other.m_path;
  }
  bool operator<(const FilePath& other) const {
    return m_path < other.m_path;
  }

  [[nodiscard]] static bool IsSeparator(wchar_t c);

 private:
  StringType m_path;
};

}  // namespace base

#endif  // BASE_FILE_PATH_H_
