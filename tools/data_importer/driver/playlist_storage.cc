#include "tools/data_importer/driver/playlist_storage.h"

#include "base/file_util.h"
#include "base/json_file.h"
#include "tools/data_importer/run_record/importer_names.h"

namespace data_importer {

StorageRefresh RefreshPlaylistStorage(const base::FilePath& data_folder) {
  base::FilePath playlist = data_folder.Append(importer_names::kPlaylistDatabaseV3);
  if (!base::PathExists(playlist))
    return StorageRefresh::kNoPlaylistDatabase;
  base::Value root;
  base::FilePath storage = data_folder.Append(L"pls_storage");
  if (!base::ReadJsonFile(storage, &root) || !root.is_object())
    return StorageRefresh::kNoStorage;
  base::FileInfo info;
  if (!base::GetFileInfo(playlist, &info))
    return StorageRefresh::kNoFileTime;
  root["modify_time"] = info.last_modified;
  return base::WriteJsonFile(storage, root) ? StorageRefresh::kRefreshed
                                            : StorageRefresh::kWriteFailed;
}

const wchar_t* StorageRefreshText(StorageRefresh refresh) {
  switch (refresh) {
    case StorageRefresh::kRefreshed:
      return L"refreshed";
    case StorageRefresh::kNoPlaylistDatabase:
      return L"no playlist database";
    case StorageRefresh::kNoStorage:
      return L"no readable dictionary in pls_storage";
    case StorageRefresh::kNoFileTime:
      return L"the playlist database's time cannot be read";
    case StorageRefresh::kWriteFailed:
      return L"pls_storage cannot be written";
  }
  return L"";
}

}  // namespace data_importer
