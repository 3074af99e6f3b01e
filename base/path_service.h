#ifndef BASE_PATH_SERVICE_H_
#define BASE_PATH_SERVICE_H_

#include "base/file_path.h"

namespace base {

// Well-known folders, by the integer keys the player's base library uses.
enum PathKey {
  DIR_EXE = 2,               // folder of the running executable
  DIR_LOCAL_APP_DATA = 109,  // per-user application-data folder
};

// The folders come from the environment at each call (nothing is cached, so a
// host that changes the environment between runs sees the change):
//   DIR_EXE            the folder of /proc/self/exe;
//   DIR_LOCAL_APP_DATA $LOCALAPPDATA, else $XDG_DATA_HOME, else
//                      $HOME/.local/share.
// Answers false (and leaves |*path| empty) when nothing can be determined.
class PathService {
 public:
  [[nodiscard]] static bool Get(int key, FilePath* path);
};

// The roaming application-data folder, what SHGetFolderPathW(CSIDL_APPDATA)
// gives on Windows: $APPDATA, else $XDG_CONFIG_HOME, else $HOME/.config.
// Empty when nothing can be determined.
FilePath GetRoamingAppDataFolder();

}  // namespace base

#endif  // BASE_PATH_SERVICE_H_
