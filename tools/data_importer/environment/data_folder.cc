#include "tools/data_importer/environment/data_folder.h"

#include "base/file_util.h"
#include "base/path_service.h"
#include "base/time.h"
#include "tools/data_importer/run_record/importer_names.h"

namespace {

base::FilePath DataFolderPath() {
  base::FilePath app_data;
  if (!base::PathService::Get(base::DIR_LOCAL_APP_DATA, &app_data))
    return base::FilePath();
  return base::ResolvePathCase(app_data.Append(importer_names::kDataFolderName));
}

}  // namespace

base::FilePath GetDataFolder() {
  base::FilePath folder = DataFolderPath();
  if (folder.empty())
    return folder;
  if (!base::DirectoryExists(folder))
    // A folder that cannot be made shows when its files are written.
    (void)base::CreateDirectory(folder);
  return folder;
}

base::FilePath GetDatedBackupFolder() {
  base::FilePath data = GetDataFolder();
  if (data.empty())
    return data;
  base::FilePath folder = base::ResolvePathCase(
      data.Append(L"Backup").Append(base::Time::Now().ToLocalDateString()));
  if (!base::DirectoryExists(folder))
    // A folder that cannot be made shows when its files are written.
    (void)base::CreateDirectory(folder);
  return folder;
}

base::FilePath GetLyricFolder() {
  base::FilePath data = GetDataFolder();
  if (data.empty())
    return data;
  return base::ResolvePathCase(data.Append(L"Lyric"));
}

base::FilePath GetLogFile() {
  base::FilePath folder = DataFolderPath();
  return folder.empty() ? folder
                        : base::ResolvePathCase(folder.Append(importer_names::kLogFileName));
}

base::FilePath GetCrashFolder() {
  base::FilePath folder = DataFolderPath();
  return folder.empty() ? folder : folder.Append(importer_names::kCrashFolderName);
}
