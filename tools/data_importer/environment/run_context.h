#ifndef TOOLS_DATA_IMPORTER_ENVIRONMENT_RUN_CONTEXT_H_
#define TOOLS_DATA_IMPORTER_ENVIRONMENT_RUN_CONTEXT_H_

#include <cstdint>
#include <map>
#include <string>

#include "base/file_path.h"

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
  // Windows drive letters ('C') to the folders standing for them.
  std::map<wchar_t, base::FilePath> m_drives;
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
};

#endif  // TOOLS_DATA_IMPORTER_ENVIRONMENT_RUN_CONTEXT_H_
