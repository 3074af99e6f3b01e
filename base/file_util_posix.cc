#include "base/file_util.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <locale.h>
#include <wctype.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/string_util.h"
#include "base/utf_string_conversions.h"

namespace base {

namespace {

thread_local int g_last_error = 0;

bool Fail() {
  g_last_error = errno;
  return false;
}

// Letters are compared without regard to case with the simple case mapping of
// the C library's UTF-8 locale (ASCII, Latin, Greek, Cyrillic and the other
// bicameral scripts, as NTFS does). The locale object is private to this
// file: the process-wide locale of the host is never changed.
wchar_t FoldCase(wchar_t c) {
  static locale_t utf8_locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(0));
  if (c < 0x80)
    return ToLowerASCII(c);
  if (!utf8_locale)
    return c;
  return static_cast<wchar_t>(towlower_l(static_cast<wint_t>(c), utf8_locale));
}

bool EqualsIgnoreCase(const std::wstring& a, const std::wstring& b) {
  if (a.size() != b.size())
    return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (a[i] != b[i] && FoldCase(a[i]) != FoldCase(b[i]))
      return false;
  }
  return true;
}

bool LstatExists(const std::string& path) {
  struct stat st;
  return lstat(path.c_str(), &st) == 0;
}

// The entry of |folder| whose name equals |name| ignoring case, or empty.
std::string FindEntryIgnoringCase(const std::string& folder, const std::wstring& name) {
  DIR* dir = opendir(folder.empty() ? "." : folder.c_str());
  if (!dir)
    return std::string();
  std::string found;
  while (dirent* entry = readdir(dir)) {
    std::string entry_name = entry->d_name;
    if (entry_name == "." || entry_name == "..")
      continue;
    if (EqualsIgnoreCase(UTF8ToWide(entry_name), name)) {
      found = entry_name;
      break;
    }
  }
  closedir(dir);
  return found;
}

std::string NativePath(const FilePath& path) {
  return ResolvePathCase(path).AsUTF8Unsafe();
}

}  // namespace

FilePath ResolvePathCase(const FilePath& path) {
  std::string utf8 = path.AsUTF8Unsafe();
  if (utf8.empty() || LstatExists(utf8))
    return path;
  // Walk the components; keep each as spelt when it exists, else look for
  // it case-insensitively; from the first missing one on, keep the rest.
  std::string resolved;
  size_t pos = 0;
  if (utf8[0] == '/') {
    resolved = "/";
    pos = 1;
  }
  bool missing = false;
  while (pos <= utf8.size()) {
    size_t next = utf8.find('/', pos);
    if (next == std::string::npos)
      next = utf8.size();
    std::string component = utf8.substr(pos, next - pos);
    pos = next + 1;
    if (component.empty())
      continue;
    std::string candidate = resolved.empty() || resolved.back() == '/' ? resolved + component
                                                                       : resolved + "/" + component;
    if (!missing && !LstatExists(candidate) && component != "." && component != "..") {
      std::string match = FindEntryIgnoringCase(resolved, UTF8ToWide(component));
      if (!match.empty()) {
        candidate =
            resolved.empty() || resolved.back() == '/' ? resolved + match : resolved + "/" + match;
      } else {
        missing = true;
      }
    }
    resolved = candidate;
  }
  if (!utf8.empty() && utf8.back() == '/' && (resolved.empty() || resolved.back() != '/'))
    resolved.push_back('/');
  return FilePath::FromUTF8Unsafe(resolved);
}

bool PathExists(const FilePath& path) {
  struct stat st;
  return !path.empty() && stat(NativePath(path).c_str(), &st) == 0;
}

bool DirectoryExists(const FilePath& path) {
  struct stat st;
  return !path.empty() && stat(NativePath(path).c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool CreateDirectory(const FilePath& path) {
  if (path.empty())
    return false;
  std::error_code ec;
  std::filesystem::create_directories(NativePath(path), ec);
  if (ec) {
    g_last_error = ec.value();
    return false;
  }
  return DirectoryExists(path);
}

bool CopyFile(const FilePath& from, const FilePath& to) {
  std::string source = NativePath(from);
  std::string target = NativePath(to);
  int in = open(source.c_str(), O_RDONLY | O_CLOEXEC);
  if (in < 0)
    return Fail();
  struct stat st;
  if (fstat(in, &st) != 0 || !S_ISREG(st.st_mode)) {
    g_last_error = S_ISDIR(st.st_mode) ? EISDIR : errno;
    close(in);
    return false;
  }
  std::string temp = target + ".copy-" + std::to_string(getpid());
  int out = open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (out < 0) {
    Fail();
    close(in);
    return false;
  }
  char buffer[1 << 16];
  bool ok = true;
  for (;;) {
    ssize_t n = read(in, buffer, sizeof(buffer));
    if (n == 0)
      break;
    if (n < 0) {
      if (errno == EINTR)
        continue;
      ok = Fail();
      break;
    }
    for (ssize_t done = 0; done < n;) {
      ssize_t w = write(out, buffer + done, n - done);
      if (w < 0) {
        if (errno == EINTR)
          continue;
        ok = Fail();
        break;
      }
      done += w;
    }
    if (!ok)
      break;
  }
  close(in);
  if (ok) {
    struct timespec times[2] = {st.st_atim, st.st_mtim};
    futimens(out, times);
  }
  if (close(out) != 0 && ok)
    ok = Fail();
  if (ok && rename(temp.c_str(), target.c_str()) != 0)
    ok = Fail();
  if (!ok)
    unlink(temp.c_str());
  return ok;
}

bool DeleteFile(const FilePath& path, bool recursive) {
  std::string native = NativePath(path);
  struct stat st;
  if (path.empty() || lstat(native.c_str(), &st) != 0)
    return true;
  std::error_code ec;
  if (S_ISDIR(st.st_mode)) {
    if (recursive)
      std::filesystem::remove_all(native, ec);
    else
      std::filesystem::remove(native, ec);
  } else {
    std::filesystem::remove(native, ec);
  }
  if (ec) {
    g_last_error = ec.value();
    return false;
  }
  return true;
}

bool ReplaceFile(const FilePath& from, const FilePath& to) {
  std::string source = NativePath(from);
  std::string target = NativePath(to);
  if (rename(source.c_str(), target.c_str()) != 0)
    return Fail();
  // Make the new name durable: the content was synced by its writer.
  std::string folder = FilePath::FromUTF8Unsafe(target).DirName().AsUTF8Unsafe();
  int dir = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dir >= 0) {
    fsync(dir);
    close(dir);
  }
  return true;
}

bool SetFileAttributesNormal(const FilePath& path) {
  std::string native = NativePath(path);
  struct stat st;
  if (stat(native.c_str(), &st) != 0)
    return Fail();
  if ((st.st_mode & S_IWUSR) && (st.st_mode & S_IRUSR))
    return true;
  if (chmod(native.c_str(), st.st_mode | S_IRUSR | S_IWUSR) != 0)
    return Fail();
  return true;
}

bool GetFileInfo(const FilePath& path, FileInfo* info) {
  struct stat st;
  if (path.empty() || stat(NativePath(path).c_str(), &st) != 0)
    return Fail();
  info->size = st.st_size;
  info->is_directory = S_ISDIR(st.st_mode);
  info->last_modified =
      static_cast<double>(st.st_mtim.tv_sec) + static_cast<double>(st.st_mtim.tv_nsec) / 1e9;
  return true;
}

bool ReadFileToString(const FilePath& path, std::string* contents) {
  contents->clear();
  std::ifstream in(NativePath(path), std::ios::binary);
  if (!in)
    return Fail();
  std::ostringstream out;
  out << in.rdbuf();
  if (in.bad())
    return Fail();
  *contents = out.str();
  return true;
}

FILE* OpenFile(const FilePath& path, const char* mode) {
  FILE* f = fopen(NativePath(path).c_str(), mode);
  if (!f)
    Fail();
  return f;
}

bool WriteFile(const FilePath& path, const std::string& data) {
  std::string native = NativePath(path);
  FILE* f = fopen(native.c_str(), "wb");
  if (!f)
    return Fail();
  bool ok = fwrite(data.data(), 1, data.size(), f) == data.size();
  if (fclose(f) != 0)
    ok = false;
  if (!ok)
    return Fail();
  return true;
}

bool WriteNewFile(const FilePath& path, const std::string& data) {
  std::string native = NativePath(path);
  int fd = open(native.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  if (fd < 0)
    return Fail();
  bool ok = true;
  for (size_t done = 0; ok && done < data.size();) {
    ssize_t n = write(fd, data.data() + done, data.size() - done);
    if (n <= 0)
      ok = Fail();
    else
      done += static_cast<size_t>(n);
  }
  if (close(fd) != 0 && ok)
    ok = Fail();
  if (!ok)
    (void)unlink(native.c_str());  // the failure is what the caller hears of
  return ok;
}

int GetLastSystemError() {
  return g_last_error;
}

std::string SystemErrorText(int code) {
  return strerror(code);
}

bool CreateNewTempDirectory(const std::wstring& prefix, FilePath* path) {
  const char* folder = getenv("TMPDIR");
  std::string pattern =
      std::string(folder && *folder ? folder : "/tmp") + "/" + WideToUTF8(prefix) + "XXXXXX";
  if (!mkdtemp(pattern.data()))
    return Fail();
  *path = FilePath::FromUTF8Unsafe(pattern);
  return true;
}

int GetCurrentProcessNumber() {
  return static_cast<int>(getpid());
}

FileEnumerator::FileEnumerator(const FilePath& folder, const std::wstring& pattern) {
  std::string native = NativePath(folder);
  DIR* dir = opendir(native.c_str());
  if (!dir)
    return;
  FilePath resolved = FilePath::FromUTF8Unsafe(native);
  while (dirent* entry = readdir(dir)) {
    std::string name = entry->d_name;
    if (name == "." || name == "..")
      continue;
    std::wstring wide = UTF8ToWide(name);
    if (!MatchPattern(wide, pattern))
      continue;
    FilePath full = resolved.Append(wide);
    struct stat st;
    if (stat(full.AsUTF8Unsafe().c_str(), &st) == 0 && S_ISREG(st.st_mode))
      m_matches.push_back(full);
  }
  closedir(dir);
}

FilePath FileEnumerator::Next() {
  if (m_next >= m_matches.size())
    return FilePath();
  return m_matches[m_next++];
}

bool FileEnumerator::MatchPattern(const std::wstring& name, const std::wstring& pattern) {
  return MatchWildcardPattern(name, pattern, &FoldCase);
}

}  // namespace base
