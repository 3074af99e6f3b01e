#ifndef BASE_FILE_UTIL_H_
#define BASE_FILE_UTIL_H_

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "base/file_path.h"

namespace base {

// File operations of the base library. None of them throws; failures answer
// false (and set the thread's last error, see GetLastSystemError).
//
// Existing paths are found regardless of letter case, as on Windows: whenever
// an operation tests, opens, copies, enumerates or replaces an existing file
// or folder, a component of the path that does not exist with the given
// spelling is matched case-insensitively against the entries of its folder
// (the first match in directory order wins). Files and folders that an
// operation creates get exactly the spelling the caller gave.

// The path with every existing component replaced by its spelling on disk.
// Components from the first one that does not exist (in any case) onwards are
// kept as given, so the result is also the path to create.
FilePath ResolvePathCase(const FilePath& path);

[[nodiscard]] bool PathExists(const FilePath& path);
[[nodiscard]] bool DirectoryExists(const FilePath& path);

// Creates the folder and any missing parents. True when it exists afterwards.
[[nodiscard]] bool CreateDirectory(const FilePath& path);

// Copies |from| over |to| (an existing |to| is overwritten, through a
// temporary file and a rename, so a reader never sees half a file). The copy
// gets the source's modification time. False when |from| is missing or
// unreadable or |to| cannot be written.
[[nodiscard]] bool CopyFile(const FilePath& from, const FilePath& to);

// Deletes a file, or with |recursive| a folder and everything under it.
// A missing path counts as deleted (true).
[[nodiscard]] bool DeleteFile(const FilePath& path, bool recursive = false);

// Atomically renames |from| over |to|, replacing |to| if it exists. False when
// |from| is missing or the rename fails (then both files stay as they were).
[[nodiscard]] bool ReplaceFile(const FilePath& from, const FilePath& to);

// Makes the file writable by its owner, like SetFileAttributesW(path,
// FILE_ATTRIBUTE_NORMAL) clears the read-only flag. A missing file is not an
// error here: the answer is false and nothing happens.
[[nodiscard]] bool SetFileAttributesNormal(const FilePath& path);

struct FileInfo {
  int64_t size = 0;
  bool is_directory = false;
  // Last modification, in seconds since 1970-01-01 UTC, with fractions.
  double last_modified = 0.0;
};
[[nodiscard]] bool GetFileInfo(const FilePath& path, FileInfo* info);

// Reads the whole file into |contents| (binary). False when it cannot be read.
[[nodiscard]] bool ReadFileToString(const FilePath& path, std::string* contents);
// Opens the file as the C library's fopen does with |mode| ("rb", "ab",
// ...), taking the path as wide text on every system. Null on failure.
FILE* OpenFile(const FilePath& path, const char* mode);

// Writes |data| as the whole file (binary), creating or truncating it.
[[nodiscard]] bool WriteFile(const FilePath& path, const std::string& data);

// Creates |path| holding |data| only when nothing exists under that name
// (checked and created in one step, so a file another process has just made
// is never truncated). False when it exists or cannot be written; a file
// this call could not finish is removed.
[[nodiscard]] bool WriteNewFile(const FilePath& path, const std::string& data);

// The error code of the last failed file operation on this thread (errno on
// POSIX, GetLastError on Windows), for log lines.
[[nodiscard]] int GetLastSystemError();

// The system's words for an error code of GetLastSystemError.
std::string SystemErrorText(int code);

// Creates a new folder with a unique name starting with |prefix| in the
// system's temporary folder. False when it cannot.
[[nodiscard]] bool CreateNewTempDirectory(const std::wstring& prefix, FilePath* path);

// This process's id.
[[nodiscard]] int GetCurrentProcessNumber();

// Lists the regular files directly inside one folder (not recursive) whose
// names match a wildcard pattern ("*" any run of characters, "?" one
// character; letters compared case-insensitively, as FindFirstFileW does).
// The folder itself is looked up case-insensitively. Results come in the
// order the system lists them. A missing folder lists nothing.
class FileEnumerator {
 public:
  FileEnumerator(const FilePath& folder, const std::wstring& pattern);

  // The next matching file's full path, or an empty path at the end.
  FilePath Next();

  // True when |name| matches |pattern| (exposed for tests and callers that
  // filter names themselves).
  [[nodiscard]] static bool MatchPattern(const std::wstring& name, const std::wstring& pattern);

 private:
  std::vector<FilePath> m_matches;
  size_t m_next = 0;
};

}  // namespace base

#endif  // BASE_FILE_UTIL_H_
