#include "base/path_service.h"

#include <limits.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>

namespace base {

namespace {

FilePath FromEnvironment(const char* primary, const char* xdg, const char* home_relative) {
  const char* value = getenv(primary);
  if (value && *value)
    return FilePath::FromUTF8Unsafe(value);
  value = getenv(xdg);
  if (value && *value)
    return FilePath::FromUTF8Unsafe(value);
  const char* home = getenv("HOME");
  if (home && *home)
    return FilePath::FromUTF8Unsafe(home).Append(FilePath::FromUTF8Unsafe(home_relative));
  return FilePath();
}

}  // namespace

bool PathService::Get(int key, FilePath* path) {
  *path = FilePath();
  switch (key) {
    case DIR_EXE: {
      char buffer[PATH_MAX];
      ssize_t n = readlink("/proc/self/exe", buffer, sizeof(buffer) - 1);
      if (n <= 0)
        return false;
      *path = FilePath::FromUTF8Unsafe(std::string(buffer, n)).DirName();
      return true;
    }
    case DIR_LOCAL_APP_DATA:
      *path = FromEnvironment("LOCALAPPDATA", "XDG_DATA_HOME", ".local/share");
      return !path->empty();
    default:
      return false;
  }
}

FilePath GetRoamingAppDataFolder() {
  return FromEnvironment("APPDATA", "XDG_CONFIG_HOME", ".config");
}

}  // namespace base
