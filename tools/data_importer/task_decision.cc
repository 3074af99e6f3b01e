#include "tools/data_importer/task_decision.h"

#include <cwchar>

#include "base/file_util.h"
#include "tools/data_importer/environment/installation_lookup.h"
#include "base/path_service.h"

bool IsTask(const std::wstring& task, const wchar_t* name) {
  size_t length = std::wcslen(name);
  if (task.size() != length)
    return false;
  for (size_t i = 0; i < length; ++i) {
    if (task[i] != name[i])
      return false;
  }
  return true;
}

int ImportKindOfTask(const std::wstring& task) {
  if (IsTask(task, kTaskImport2008))
    return importer_names::kKind2008;
  if (IsTask(task, kTaskImportGeneration6))
    return importer_names::kKindGeneration6;
  if (IsTask(task, kTaskImportGeneration7))
    return importer_names::kKindGeneration7;
  if (IsTask(task, kTaskImportCurrent))
    return importer_names::kKindCurrent;
  return importer_names::kKindNone;
}

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

std::wstring DecideTask(const RunContext& context) {
  const base::FilePath& data_folder = context.m_data_folder;
  const base::FilePath& source_folder = context.m_source_folder;
  if (ExistsIn(data_folder, importer_names::kMusicDatabaseV3) ||
      ExistsIn(data_folder, importer_names::kPlaylistDatabaseV3))
    return kTaskUpgradeVersion3;
  if (ExistsIn(data_folder, importer_names::kMusicDatabaseV2))
    return kTaskCopyVersion2;
  if (ExistsIn(data_folder, L"VTMusic.db") || ExistsIn(data_folder, L"vantu.db"))
    return kTaskImportCurrent;

  const base::FilePath& roaming = context.m_roaming_app_data;
  if (!roaming.empty() && base::PathExists(roaming.Append(L"VanTu7").Append(L"VTData.db")))
    return kTaskImportGeneration7;

  base::FilePath generation6 = GetGeneration6ProgramPath(context);
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

  base::FilePath edition2008 = ReadRegistryPath(context, L"Software\\VanTa", L"AppFileName");
  if (!edition2008.empty() && base::PathExists(edition2008))
    return kTaskImport2008;

  if (!FindGeneration6ProgramByShortcut().empty())
    return kTaskImportGeneration6;
  return std::wstring();
}
