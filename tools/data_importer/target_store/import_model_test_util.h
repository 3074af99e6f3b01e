#ifndef TOOLS_DATA_IMPORTER_TARGET_STORE_IMPORT_MODEL_TEST_UTIL_H_
#define TOOLS_DATA_IMPORTER_TARGET_STORE_IMPORT_MODEL_TEST_UTIL_H_

#include <cstdint>
#include <memory>
#include <string>

#include "base/file_path.h"
#include "tools/data_importer/target_store/import_model.h"

namespace data_importer {

// Builders of model records for the writer tests.
std::shared_ptr<ShareFileItem> AddFile(ImportModel* model,
                                       int old_id,
                                       const std::wstring& name,
                                       const std::wstring& md5,
                                       int type = 0);
std::shared_ptr<SongItem> AddSong(ImportModel* model, int list_id, int song_id, int music_file_id);
std::shared_ptr<PlayListInfo> AddList(ImportModel* model,
                                      int id,
                                      const std::wstring& name,
                                      int sort_id);
std::shared_ptr<DownloadRecord> AddDownload(ImportModel* model,
                                            int download_id,
                                            int file_id,
                                            const std::wstring& md5,
                                            int percent,
                                            int down_type);

// Opens plain target databases for the writers: "music.db" and
// "playlist.db" in |folder|.
void OpenTargets(ImportModel* model, const base::FilePath& folder);

// Fills |model| with every record type the writers take, made from |seed|:
// every field of every record holds a value, drawn from odd texts
// (apostrophes, quotes, separators, non-Latin scripts, characters outside
// the basic plane, a NUL, a lone surrogate, long texts, empty texts) and
// extreme numbers (the limits of each type, -0.0, the smallest subnormal,
// NaN). The records hang together as a reader would make them: list,
// recently-played and radio entries carry the path and hash of a file of
// the model (some the path only, some the hash only, one a file that was
// not imported), downloads the old id of theirs (some also its path or
// hash), local files the id of one of the folders (one of none). Some ids and keys repeat, as
// sources can have them: two files with one hash, two local files with one
// path, two tools with one ID, two keywords, lists with negative and
// extreme ids, a list without entries, entries without a list.
void FillGeneratedModel(ImportModel* model, uint32_t seed);

// A 32-hex-digit hash made from |n|.
std::wstring HashOf(int n);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_TARGET_STORE_IMPORT_MODEL_TEST_UTIL_H_
