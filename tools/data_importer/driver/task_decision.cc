#include "tools/data_importer/driver/task_decision.h"

#include "base/file_util.h"
#include "base/path_service.h"
#include "tools/data_importer/environment/installation_lookup.h"

namespace {

bool ExistsIn(const base::FilePath& folder, const wchar_t* name) {
  return !folder.empty() && base::PathExists(folder.Append(name));
}

// Copies every "VTLibrary*.db" of |source| into |target| under its own name.
void CopyLibraryFiles(const base::FilePath& source, const base::FilePath& target) {
  base::FileEnumerator files(source, L"VTLibrary*.db");
  for (base::FilePath file = files.Next(); !file.empty(); file = files.Next())
    // A file that cannot be copied is missing from the import; the task
    // stays the same.
    (void)base::CopyFile(file, target.Append(file.BaseName()));
}

}  // namespace

std::wstring DecideTask(const base::FilePath& data_folder, const base::FilePath& source_folder) {
  if (ExistsIn(data_folder, importer_names::kMusicDatabaseV3) ||
      ExistsIn(data_folder, importer_names::kPlaylistDatabaseV3))
    return kTaskUpgradeVersion3;
  if (ExistsIn(data_folder, importer_names::kMusicDatabaseV2))
    return kTaskCopyVersion2;
  if (ExistsIn(data_folder, L"VTMusic.db") || ExistsIn(data_folder, L"vantu.db"))
    return kTaskImportCurrent;

  base::FilePath roaming = base::GetRoamingAppDataFolder();
  if (!roaming.empty() && base::PathExists(roaming.Append(L"VanTu7").Append(L"VTData.db")))
    return kTaskImportGeneration7;

  base::FilePath generation6 = GetGeneration6ProgramPath();
  if (!generation6.empty() && base::PathExists(generation6))
    return kTaskImportGeneration6;

  if (ExistsIn(source_folder, L"VTData.db")) {
    // A file that cannot be copied is missing from the import; the task
    // stays the same.
    (void)base::CopyFile(source_folder.Append(L"VTData.db"), data_folder.Append(L"VT6Data.db"));
    return kTaskImportGeneration6;
  }
  if (ExistsIn(source_folder, L"VTLibrary.db")) {
    CopyLibraryFiles(source_folder, data_folder);
    return kTaskImportGeneration6;
  }

  base::FilePath edition2008 = ReadRegistryPath(L"Software\\VanTa", L"AppFileName");
  if (!edition2008.empty() && base::PathExists(edition2008))
    return kTaskImport2008;

  if (!FindGeneration6ProgramByShortcut().empty())
    return kTaskImportGeneration6;
  return std::wstring();
}
