#ifndef TOOLS_DATA_IMPORTER_ENVIRONMENT_RUN_CONTEXT_H_
#define TOOLS_DATA_IMPORTER_ENVIRONMENT_RUN_CONTEXT_H_

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "base/file_path.h"
#include "base/windows_path.h"

namespace data_importer {

// Everything a run takes from the machine it runs on, found once at the start
// of the run and handed down; nothing below the entry point reads the process
// environment or the command line on its own.
//
// The player's entry point fills it from the process (the path service, the
// registry of the current user, the command line); the host program fills it
// from its options for a copied profile.
struct RunContext {
  // The current generation's data folder ("VanTu8" under the local
  // application-data folder). Empty when it cannot be determined.
  base::FilePath m_data_folder;
  // The per-user local and roaming application-data folders and the user's
  // profile folder.
  base::FilePath m_local_app_data;
  base::FilePath m_roaming_app_data;
  base::FilePath m_user_profile;
  // The file standing for the current user's registry (a binary hive or a
  // ".reg" export); empty for the process's own registry.
  base::FilePath m_registry_file;
  // Whether, without a registry file, the process's own registry is the
  // user's (the player's run). False for a copied profile: the registry of
  // whoever runs the copy is not the copied user's.
  bool m_own_registry = true;
  // Windows drive letters ('C') to the folders standing for them.
  base::DriveMap m_drives;
  // Further variables of the user's Windows environment that a registry
  // value may refer to as "%NAME%" (names compared in any letter case);
  // the folders above and the fixed Windows folders need no entry.
  std::map<std::wstring, std::wstring> m_variables;
  // The folder named by the command line's switch "i" (empty without it).
  base::FilePath m_source_folder;
  // The code page of 8-bit text files written by the old player (the user's
  // ANSI code page).
  uint32_t m_ansi_code_page = 936;
  // Where the run's log goes, its minimum level, and whether it is copied to
  // standard error.
  base::FilePath m_log_file;
  int m_log_level = 0;
  bool m_log_to_stderr = false;
  // Told each stage the run enters, in words ("reading MusicItems",
  // "writing songs", "encrypting", ...), on the run's thread; the host's
  // progress bar names it. Empty for the player, which reads only
  // "DBCheck".
  std::function<void(const std::string& stage)> m_stage_observer;
};

// The context of the player's process, from its environment:
//   local application data  LOCALAPPDATA, else XDG_DATA_HOME, else
//                           HOME/.local/share (the data folder is
//                           "VanTu8" under it, the log "DataImporter.log"
//                           in that);
//   roaming application data  APPDATA, else XDG_CONFIG_HOME, else
//                           HOME/.config;
//   user profile            USERPROFILE;
//   registry                VANTU_REGISTRY_FILE;
//   drives                  VANTU_DRIVE_<LETTER>;
//   log                     VANTU_LOG_LEVEL, VANTU_LOG_STDERR;
// and every other environment variable in m_variables. The source folder is
// left empty: it comes from the command line.
RunContext RunContextFromEnvironment();

// Sets the local application-data folder of |context| to |local_app_data|,
// and with it the data folder ("VanTu8" under it, in the letter case found
// on disk) and the log file ("DataImporter.log" in that); all empty when
// |local_app_data| is.
void SetLocalAppData(const base::FilePath& local_app_data, RunContext* context);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_ENVIRONMENT_RUN_CONTEXT_H_
