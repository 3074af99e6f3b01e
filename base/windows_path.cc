#include "base/windows_path.h"

#include "base/environment.h"
#include "base/utf_string_conversions.h"

namespace base {

namespace {

bool IsDriveLetter(wchar_t c) {
  return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z');
}

std::wstring WithSeparators(std::wstring path) {
  for (wchar_t& c : path) {
    if (c == L'\\' || c == L'/')
      c = FilePath::kSeparator;
  }
  return path;
}

}  // namespace

FilePath MapWindowsPath(const std::wstring& path, const DriveMap& drives) {
  const bool on_drive = path.size() >= 2 && IsDriveLetter(path[0]) && path[1] == L':';
#if !defined(_WIN32)
  if (path.size() >= 2 && path[0] == L'\\' && path[1] == L'\\')
    return FilePath();  // a network share: nothing here stands for it
#endif
  if (!on_drive)
    return FilePath(WithSeparators(path));

  wchar_t letter = path[0] >= L'a' ? path[0] - 32 : path[0];
  auto drive = drives.find(letter);
  if (drive == drives.end() || drive->second.empty()) {
#if defined(_WIN32)
    return FilePath(path);  // the machine's own drive
#else
    return FilePath();
#endif
  }
  std::wstring rest = WithSeparators(path.substr(2));
  size_t begin = rest.find_first_not_of(FilePath::kSeparator);
  const FilePath& mapped = drive->second;
  return begin == std::wstring::npos ? mapped : mapped.Append(rest.substr(begin));
}

DriveMap DriveMapFromEnvironment() {
  DriveMap drives;
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    const std::string variable = std::string("VANTU_DRIVE_") + letter;
    std::wstring folder;
    if (GetEnvironmentString(variable, &folder) && !folder.empty())
      drives[static_cast<wchar_t>(letter)] = FilePath(folder);
  }
  return drives;
}

}  // namespace base
