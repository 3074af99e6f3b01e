#include "base/windows_path.h"

#include <stdlib.h>

#include "base/utf_string_conversions.h"

namespace base {

namespace {

bool IsDriveLetter(wchar_t c) {
  return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z');
}

std::wstring WithSeparators(std::wstring path) {
#if !defined(_WIN32)
  for (wchar_t& c : path) {
    if (c == L'\\')
      c = L'/';
  }
#endif
  return path;
}

}  // namespace

FilePath MapWindowsPath(const std::wstring& path, const DriveMap& drives) {
#if defined(_WIN32)
  return FilePath(path);
#else
  if (path.size() >= 2 && path[0] == L'\\' && path[1] == L'\\')
    return FilePath();  // a network share: nothing here stands for it
  if (path.size() < 2 || !IsDriveLetter(path[0]) || path[1] != L':')
    return FilePath(WithSeparators(path));

  wchar_t letter = path[0] >= L'a' ? path[0] - 32 : path[0];
  auto drive = drives.find(letter);
  if (drive == drives.end() || drive->second.empty())
    return FilePath();
  std::wstring rest = WithSeparators(path.substr(2));
  size_t begin = rest.find_first_not_of(L'/');
  const FilePath& mapped = drive->second;
  return begin == std::wstring::npos ? mapped : mapped.Append(rest.substr(begin));
#endif
}

DriveMap DriveMapFromEnvironment() {
  DriveMap drives;
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    const std::string variable = std::string("VANTU_DRIVE_") + letter;
    const char* folder = getenv(variable.c_str());
    if (folder && *folder)
      drives[static_cast<wchar_t>(letter)] = FilePath::FromUTF8Unsafe(folder);
  }
  return drives;
}

}  // namespace base
