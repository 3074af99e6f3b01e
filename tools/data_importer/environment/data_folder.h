#ifndef TOOLS_DATA_IMPORTER_ENVIRONMENT_DATA_FOLDER_H_
#define TOOLS_DATA_IMPORTER_ENVIRONMENT_DATA_FOLDER_H_

#include "base/file_path.h"
#include "tools/data_importer/environment/run_context.h"

namespace data_importer {

// Folders under the run's data folder (RunContext::m_data_folder, made by
// the entry point at the start of the run). Each answers an empty path when
// the run has no data folder.

// Where the importer keeps dated backups of the files it reads,
// <data folder>/Backup/<YYYYMMDD>, created when missing.
base::FilePath GetDatedBackupFolder(const RunContext& context);

// Where the current generation looks for lyric files, <data folder>/Lyric
// (created by the caller when needed).
base::FilePath GetLyricFolder(const RunContext& context);

// <data folder>/crash, where the crash handler writes its records. Nothing
// is created: the handler makes the folder when it writes the first record.
base::FilePath GetCrashFolder(const RunContext& context);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_ENVIRONMENT_DATA_FOLDER_H_
