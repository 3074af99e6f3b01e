#include "base/windows_path.h"

#include <locale.h>
#include <stdlib.h>
#include <wctype.h>

#if defined(_WIN32)
#include "base/windows_headers.h"
#endif

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

// Upper case of one character by the simple Unicode mapping; ASCII alone
// when the C library has no Unicode character table. (Windows builds fold
// the whole key at once, below.)
wchar_t ToUpper(wchar_t c) {
  if (c < 0x80)
    return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
#if defined(_WIN32)
  return c;
#else
  static const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(0));
  return unicode ? static_cast<wchar_t>(towupper_l(static_cast<wint_t>(c), unicode)) : c;
#endif
}

}  // namespace

std::wstring WindowsPathKey(std::wstring_view path) {
  std::wstring key;
  key.reserve(path.size());
  for (wchar_t c : path)
    key.push_back(c == L'/' ? L'\\' : ToUpper(c));
  while (!key.empty() && key.back() == L'\\')
    key.pop_back();
#if defined(_WIN32)
  // The C runtime of MinGW folds ASCII only; the system's invariant upper
  // case folds every script, as the file system compares names.
  if (!key.empty()) {
    std::wstring folded(key.size(), L'\0');
    int n = LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, key.data(),
                          static_cast<int>(key.size()), folded.data(),
                          static_cast<int>(folded.size()), nullptr, nullptr, 0);
    if (n == static_cast<int>(key.size()))
      key = folded;
  }
#endif
  return key;
}

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
