#ifndef BASE_PATH_SERVICE_H_
#define BASE_PATH_SERVICE_H_

#include "base/file_path.h"

namespace base {

inline constexpr char kFoldersFromEnvironment[] = "VANTU_FOLDERS_FROM_ENVIRONMENT";

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
// On Windows the folders are the shell's (GetModuleFileNameW,
// SHGetFolderPathW), as the player sees them; only when the environment
// variable named by kFoldersFromEnvironment is set (by the host program for a
// copied profile, or a test) do LOCALAPPDATA and APPDATA answer instead.
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
