#ifndef TOOLS_DATA_IMPORTER_TARGET_STORE_IMPORT_MODEL_TEST_UTIL_H_
#define TOOLS_DATA_IMPORTER_TARGET_STORE_IMPORT_MODEL_TEST_UTIL_H_

#include <memory>
#include <string>

#include "base/file_path.h"
#include "tools/data_importer/target_store/import_model.h"

// Builders of model records for the writer tests.
std::shared_ptr<ShareFileItem> AddFile(ImportModel* model, int old_id, const std::wstring& name,
                                       const std::wstring& md5, int type = 0);
std::shared_ptr<SongItem> AddSong(ImportModel* model, int list_id, int song_id,
                                  int music_file_id);
std::shared_ptr<PlayListInfo> AddList(ImportModel* model, int id, const std::wstring& name,
                                      int sort_id);
std::shared_ptr<DownloadRecord> AddDownload(ImportModel* model, int download_id, int file_id,
                                            const std::wstring& md5, int percent, int down_type);

// Opens plain target databases for the writers: "music.db" and
// "playlist.db" in |folder|.
void OpenTargets(ImportModel* model, const base::FilePath& folder);

// A 32-hex-digit hash made from |n|.
std::wstring HashOf(int n);

#endif  // TOOLS_DATA_IMPORTER_TARGET_STORE_IMPORT_MODEL_TEST_UTIL_H_
