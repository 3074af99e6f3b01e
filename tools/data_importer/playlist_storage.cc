#include "tools/data_importer/playlist_storage.h"

#include "base/file_util.h"
#include "base/json_file.h"
#include "tools/data_importer/run_record/importer_names.h"

bool RefreshPlaylistStorage(const base::FilePath& data_folder) {
  base::FilePath playlist = data_folder.Append(importer_names::kPlaylistDatabaseV3);
  if (!base::PathExists(playlist))
    return false;
  base::Value root;
  base::FilePath storage = data_folder.Append(L"pls_storage");
  if (!base::ReadJsonFile(storage, &root) || !root.is_object())
    return false;
  base::FileInfo info;
  if (!base::GetFileInfo(playlist, &info))
    return false;
  root["modify_time"] = info.last_modified;
  return base::WriteJsonFile(storage, root);
}
