#include "tools/data_importer/environment/data_folder.h"

#include "base/file_util.h"
#include "base/time.h"
#include "tools/data_importer/run_record/importer_names.h"

namespace data_importer {

base::FilePath GetDatedBackupFolder(const RunContext& context) {
  if (context.m_data_folder.empty())
    return base::FilePath();
  base::FilePath folder = base::ResolvePathCase(
      context.m_data_folder.Append(L"Backup").Append(base::Time::Now().ToLocalDateString()));
  if (!base::DirectoryExists(folder))
    // A folder that cannot be made shows when its files are written.
    (void)base::CreateDirectory(folder);
  return folder;
}

base::FilePath GetLyricFolder(const RunContext& context) {
  if (context.m_data_folder.empty())
    return base::FilePath();
  return base::ResolvePathCase(context.m_data_folder.Append(L"Lyric"));
}

base::FilePath GetCrashFolder(const RunContext& context) {
  if (context.m_data_folder.empty())
    return base::FilePath();
  return context.m_data_folder.Append(importer_names::kCrashFolderName);
}

}  // namespace data_importer
