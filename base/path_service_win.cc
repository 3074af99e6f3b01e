#include "base/path_service.h"

#include "base/windows_headers.h"
#include <shlobj.h>

#include <string>

#include "base/environment.h"

namespace base {

namespace {

// A folder of the shell (CSIDL_*) as the current user sees it, or the
// environment's |variable| when the folders are redirected.
FilePath ShellFolder(int csidl, const char* variable) {
  std::wstring value;
  if (GetEnvironmentString(kFoldersFromEnvironment, &value) && !value.empty())
    return GetEnvironmentString(variable, &value) ? FilePath(value) : FilePath();
  wchar_t buffer[MAX_PATH];
  if (FAILED(SHGetFolderPathW(nullptr, csidl, nullptr, SHGFP_TYPE_CURRENT, buffer)))
    return FilePath();
  return FilePath(buffer);
}

}  // namespace

bool PathService::Get(int key, FilePath* path) {
  *path = FilePath();
  switch (key) {
    case DIR_EXE: {
      // A path longer than the buffer is cut short: grow until it fits.
      std::wstring buffer(MAX_PATH, L'\0');
      for (;;) {
        DWORD n = GetModuleFileNameW(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
        if (n == 0)
          return false;
        if (n < buffer.size()) {
          buffer.resize(n);
          break;
        }
        buffer.resize(buffer.size() * 2);
      }
      *path = FilePath(buffer).DirName();
      return true;
    }
    case DIR_LOCAL_APP_DATA:
      *path = ShellFolder(CSIDL_LOCAL_APPDATA, "LOCALAPPDATA");
      return !path->empty();
    default:
      return false;
  }
}

FilePath GetRoamingAppDataFolder() {
  return ShellFolder(CSIDL_APPDATA, "APPDATA");
}

}  // namespace base
