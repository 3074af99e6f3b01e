#ifndef TOOLS_DATA_IMPORTER_ENVIRONMENT_DATA_FOLDER_H_
#define TOOLS_DATA_IMPORTER_ENVIRONMENT_DATA_FOLDER_H_

#include "base/file_path.h"

// The current generation's data folder: the per-user application-data
// folder (path-service key 109) joined with "VanTu8", created when missing.
// Empty when the application-data folder cannot be determined.
base::FilePath GetDataFolder();

// Where the importer keeps dated backups of the files it reads and where the
// current generation looks for lyric files; both under the data folder:
//   <data folder>/Backup/<YYYYMMDD>   (created when missing)
//   <data folder>/Lyric               (created by the caller when needed)
base::FilePath GetDatedBackupFolder();
base::FilePath GetLyricFolder();

// <data folder>/crash, where the crash handler writes its records. Nothing
// is created: the handler makes the folder when it writes the first record.
base::FilePath GetCrashFolder();

// <data folder>/DataImporter.log, the run's log (nothing is created here:
// logging makes the folder and the file at the first line). Empty when the
// application-data folder cannot be determined.
base::FilePath GetLogFile();

#endif  // TOOLS_DATA_IMPORTER_ENVIRONMENT_DATA_FOLDER_H_
