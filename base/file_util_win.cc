#include "base/file_util.h"

#include "base/windows_headers.h"

#include <errno.h>
#include <fcntl.h>
#include <io.h>
#include <string.h>

#include <algorithm>
#include <string>

#include "base/string_util.h"
#include "base/utf_string_conversions.h"

namespace base {

namespace {

thread_local int g_last_error = 0;

bool Fail() {
  g_last_error = static_cast<int>(GetLastError());
  return false;
}

// The file system compares names case-insensitively itself; a path is
// handed to the W calls as it is, with '/' turned into '\\'.
std::wstring NativePath(const FilePath& path) {
  std::wstring native = path.value();
  for (wchar_t& c : native) {
    if (c == L'/')
      c = L'\\';
  }
  return native;
}

bool GetAttributes(const FilePath& path, WIN32_FILE_ATTRIBUTE_DATA* data) {
  return !path.empty() &&
         GetFileAttributesExW(NativePath(path).c_str(), GetFileExInfoStandard, data) != 0;
}

// Seconds since 1970-01-01 UTC of a FILETIME.
double ToUnixSeconds(const FILETIME& ft) {
  ULARGE_INTEGER ticks;
  ticks.LowPart = ft.dwLowDateTime;
  ticks.HighPart = ft.dwHighDateTime;
  constexpr double kTicksFrom1601To1970 = 116444736000000000.0;
  return (static_cast<double>(ticks.QuadPart) - kTicksFrom1601To1970) / 1e7;
}

bool DeleteTree(const std::wstring& folder) {
  WIN32_FIND_DATAW data;
  HANDLE find = FindFirstFileW((folder + L"\\*").c_str(), &data);
  bool ok = true;
  if (find != INVALID_HANDLE_VALUE) {
    do {
      std::wstring name = data.cFileName;
      if (name == L"." || name == L"..")
        continue;
      std::wstring full = folder + L"\\" + name;
      if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) &&
          !(data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT)) {
        ok = DeleteTree(full) && ok;
      } else {
        if (data.dwFileAttributes & FILE_ATTRIBUTE_READONLY)
          (void)SetFileAttributesW(full.c_str(), FILE_ATTRIBUTE_NORMAL);  // DeleteFileW reports it
        if (!DeleteFileW(full.c_str()))
          ok = Fail();
      }
    } while (FindNextFileW(find, &data));
    FindClose(find);
  }
  if (!RemoveDirectoryW(folder.c_str()))
    ok = Fail();
  return ok;
}

}  // namespace

FilePath ResolvePathCase(const FilePath& path) {
  std::wstring native = NativePath(path);
  if (native.empty() || native.compare(0, 2, L"\\\\") == 0)
    return path;  // a share's server and share names are not folders
  // Each existing component takes its spelling on disk (FindFirstFileW of a
  // name without wildcards answers it); from the first missing one on, the
  // rest is kept as given.
  std::wstring resolved;
  size_t pos = 0;
  if (native.size() >= 2 && native[1] == L':') {
    resolved = native.substr(0, 2);
    pos = 2;
  }
  if (pos < native.size() && native[pos] == L'\\') {
    resolved += L'\\';
    ++pos;
  }
  bool missing = false;
  while (pos < native.size()) {
    size_t next = native.find(L'\\', pos);
    if (next == std::wstring::npos)
      next = native.size();
    std::wstring component = native.substr(pos, next - pos);
    pos = next + 1;
    if (component.empty())
      continue;
    std::wstring folder = resolved.empty() || resolved.back() == L'\\' || resolved.back() == L':'
                              ? resolved
                              : resolved + L'\\';
    std::wstring candidate = folder + component;
    if (!missing && component != L"." && component != L".." &&
        component.find_first_of(L"*?") == std::wstring::npos) {
      WIN32_FIND_DATAW data;
      HANDLE find = FindFirstFileW(candidate.c_str(), &data);
      if (find == INVALID_HANDLE_VALUE) {
        missing = true;
      } else {
        FindClose(find);
        candidate = folder + data.cFileName;
      }
    }
    resolved = candidate;
  }
  if (native.back() == L'\\' && (resolved.empty() || resolved.back() != L'\\'))
    resolved.push_back(L'\\');
  return FilePath(resolved);
}

bool PathExists(const FilePath& path) {
  WIN32_FILE_ATTRIBUTE_DATA data;
  return GetAttributes(path, &data);
}

bool DirectoryExists(const FilePath& path) {
  WIN32_FILE_ATTRIBUTE_DATA data;
  return GetAttributes(path, &data) && (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool CreateDirectory(const FilePath& path) {
  if (path.empty())
    return false;
  if (DirectoryExists(path))
    return true;
  FilePath parent = path.DirName();
  if (parent != path && !parent.empty() && parent.value() != L"." && !DirectoryExists(parent) &&
      !CreateDirectory(parent)) {
    return false;
  }
  if (!CreateDirectoryW(NativePath(path).c_str(), nullptr) &&
      GetLastError() != ERROR_ALREADY_EXISTS) {
    return Fail();
  }
  return DirectoryExists(path);
}

bool CopyFile(const FilePath& from, const FilePath& to) {
  // CopyFileW writes the copy under a temporary name first and then renames
  // it over |to|, so that a reader never sees half a file. The copy keeps
  // the source's modification time, as CopyFileW does.
  std::wstring target = NativePath(to);
  std::wstring temp = target + L".copy-" + std::to_wstring(GetCurrentProcessId());
  if (DirectoryExists(from)) {
    g_last_error = ERROR_ACCESS_DENIED;
    return false;
  }
  if (!CopyFileW(NativePath(from).c_str(), temp.c_str(), FALSE))
    return Fail();
  // A read-only source gives a read-only copy; the copy is ours to replace.
  (void)SetFileAttributesW(temp.c_str(), FILE_ATTRIBUTE_NORMAL);  // a failure shows in the move
  if (!MoveFileExW(temp.c_str(), target.c_str(),
                   MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
    Fail();
    (void)DeleteFileW(temp.c_str());  // the move's error is the one reported
    return false;
  }
  return true;
}

bool DeleteFile(const FilePath& path, bool recursive) {
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (!GetAttributes(path, &data))
    return true;
  std::wstring native = NativePath(path);
  if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
    if (recursive)
      return DeleteTree(native);
    return RemoveDirectoryW(native.c_str()) != 0 || Fail();
  }
  return DeleteFileW(native.c_str()) != 0 || Fail();
}

bool ReplaceFile(const FilePath& from, const FilePath& to) {
  // A reader holding |to| open for a moment (the player polling "Vantu.ini")
  // makes the replacement fail with a sharing error: tried again for about a
  // second before giving up.
  const std::wstring source = NativePath(from);
  const std::wstring target = NativePath(to);
  for (int attempt = 0;; ++attempt) {
    if (MoveFileExW(source.c_str(), target.c_str(),
                    MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
      return true;
    }
    DWORD error = GetLastError();
    bool busy = error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED ||
                error == ERROR_LOCK_VIOLATION;
    if (!busy || attempt >= 20)
      return Fail();
    Sleep(50);
  }
}

bool SetFileAttributesNormal(const FilePath& path) {
  if (!SetFileAttributesW(NativePath(path).c_str(), FILE_ATTRIBUTE_NORMAL))
    return Fail();
  return true;
}

bool GetFileInfo(const FilePath& path, FileInfo* info) {
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (!GetAttributes(path, &data))
    return Fail();
  ULARGE_INTEGER size;
  size.LowPart = data.nFileSizeLow;
  size.HighPart = data.nFileSizeHigh;
  info->size = static_cast<int64_t>(size.QuadPart);
  info->is_directory = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  info->last_modified = ToUnixSeconds(data.ftLastWriteTime);
  return true;
}

bool ReadFileToString(const FilePath& path, std::string* contents) {
  contents->clear();
  HANDLE file = CreateFileW(NativePath(path).c_str(), GENERIC_READ,
                            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                            OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE)
    return Fail();
  std::string data;
  char buffer[1 << 16];
  bool ok = true;
  for (;;) {
    DWORD n = 0;
    if (!ReadFile(file, buffer, sizeof(buffer), &n, nullptr)) {
      ok = Fail();
      break;
    }
    if (n == 0)
      break;
    data.append(buffer, n);
  }
  CloseHandle(file);
  if (ok)
    *contents = std::move(data);
  return ok;
}

FILE* OpenFile(const FilePath& path, const char* mode) {
  // Opened through CreateFileW with every sharing flag, so that the file can
  // be read, renamed or deleted while it is open, as on POSIX (a log file
  // moved away keeps taking lines).
  const std::string m(mode);
  DWORD access = GENERIC_READ;
  DWORD disposition = OPEN_EXISTING;
  int flags = _O_RDONLY;
  if (m.find('w') != std::string::npos) {
    access = GENERIC_WRITE;
    disposition = CREATE_ALWAYS;
    flags = _O_WRONLY;
  } else if (m.find('a') != std::string::npos) {
    access = FILE_APPEND_DATA;
    disposition = OPEN_ALWAYS;
    flags = _O_WRONLY | _O_APPEND;
  }
  if (m.find('+') != std::string::npos) {
    access |= GENERIC_READ | GENERIC_WRITE;
    flags = (flags & ~(_O_RDONLY | _O_WRONLY)) | _O_RDWR;
  }
  if (m.find('b') != std::string::npos)
    flags |= _O_BINARY;
  HANDLE handle = CreateFileW(NativePath(path).c_str(), access,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    Fail();
    errno = GetLastError() == ERROR_FILE_NOT_FOUND || GetLastError() == ERROR_PATH_NOT_FOUND
                ? ENOENT
                : EACCES;
    return nullptr;
  }
  int fd = _open_osfhandle(reinterpret_cast<intptr_t>(handle), flags);
  if (fd < 0) {
    CloseHandle(handle);
    return nullptr;
  }
  FILE* file = _fdopen(fd, mode);
  if (!file)
    _close(fd);
  return file;
}

bool WriteFile(const FilePath& path, const std::string& data) {
  HANDLE file = CreateFileW(NativePath(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                            CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE)
    return Fail();
  bool ok = true;
  size_t done = 0;
  while (ok && done < data.size()) {
    DWORD chunk = static_cast<DWORD>(std::min<size_t>(data.size() - done, 1 << 20));
    DWORD written = 0;
    if (!::WriteFile(file, data.data() + done, chunk, &written, nullptr) || written == 0)
      ok = Fail();
    done += written;
  }
  if (ok && !FlushFileBuffers(file))
    ok = Fail();
  if (!CloseHandle(file) && ok)
    ok = Fail();
  return ok;
}

bool WriteNewFile(const FilePath& path, const std::string& data) {
  const std::wstring native = NativePath(path);
  HANDLE file = CreateFileW(native.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW,
                            FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE)
    return Fail();
  DWORD written = 0;
  bool ok = true;
  if (!data.empty() &&
      (!::WriteFile(file, data.data(), static_cast<DWORD>(data.size()), &written, nullptr) ||
       written != data.size()))
    ok = Fail();
  if (!CloseHandle(file) && ok)
    ok = Fail();
  if (!ok)
    (void)DeleteFileW(native.c_str());  // the failure is what the caller hears of
  return ok;
}

int GetLastSystemError() {
  return g_last_error;
}

std::string SystemErrorText(int code) {
  wchar_t* text = nullptr;
  DWORD n = FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
      nullptr, static_cast<DWORD>(code), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  std::wstring message = n && text ? std::wstring(text, n) : std::wstring();
  if (text)
    LocalFree(text);
  while (!message.empty() && (message.back() == L'\r' || message.back() == L'\n' ||
                              message.back() == L'.' || message.back() == L' ')) {
    message.pop_back();
  }
  if (message.empty())
    return "error " + std::to_string(code);
  return WideToUTF8(message);
}

bool CreateNewTempDirectory(const std::wstring& prefix, FilePath* path) {
  wchar_t temp[MAX_PATH + 1];
  DWORD n = GetTempPathW(MAX_PATH + 1, temp);
  if (n == 0 || n > MAX_PATH)
    return Fail();
  FilePath folder(std::wstring(temp, n));
  for (int attempt = 0; attempt < 100; ++attempt) {
    std::wstring name = prefix + std::to_wstring(GetCurrentProcessId()) + L"-" +
                        std::to_wstring(GetTickCount64() + attempt);
    FilePath candidate = folder.Append(name);
    if (CreateDirectoryW(NativePath(candidate).c_str(), nullptr)) {
      *path = candidate;
      return true;
    }
    if (GetLastError() != ERROR_ALREADY_EXISTS)
      return Fail();
  }
  return Fail();
}

int GetCurrentProcessNumber() {
  return static_cast<int>(GetCurrentProcessId());
}

FileEnumerator::FileEnumerator(const FilePath& folder, const std::wstring& pattern) {
  std::wstring native = NativePath(folder);
  WIN32_FIND_DATAW data;
  HANDLE find = FindFirstFileW((native + L"\\*").c_str(), &data);
  if (find == INVALID_HANDLE_VALUE)
    return;
  // FindFirstFileW's own pattern also matches 8.3 short names ("*.db"
  // finds "a.dbx" through "A~1.DB"), so names are matched here.
  do {
    if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
      continue;
    std::wstring name = data.cFileName;
    if (MatchPattern(name, pattern))
      m_matches.push_back(FilePath(native).Append(name));
  } while (FindNextFileW(find, &data));
  FindClose(find);
}

namespace {

// The system's own lower case of one character, as the file system folds
// names.
wchar_t LowerForMatch(wchar_t c) {
  return static_cast<wchar_t>(
      reinterpret_cast<ULONG_PTR>(CharLowerW(reinterpret_cast<LPWSTR>(static_cast<ULONG_PTR>(c)))));
}

}  // namespace

FilePath FileEnumerator::Next() {
  if (m_next >= m_matches.size())
    return FilePath();
  return m_matches[m_next++];
}

bool FileEnumerator::MatchPattern(const std::wstring& name, const std::wstring& pattern) {
  return MatchWildcardPattern(name, pattern, &LowerForMatch);
}

}  // namespace base
