#ifndef TOOLS_DATA_IMPORTER_DRIVER_PLAYLIST_STORAGE_H_
#define TOOLS_DATA_IMPORTER_DRIVER_PLAYLIST_STORAGE_H_

#include "base/file_path.h"

namespace data_importer {

// Refreshes "modify_time" in the JSON file "pls_storage" of |data_folder|
// with the last-modified time of "playlistV3.db" (seconds since 1970, with
// fractions), so the player knows its playlist database changed. Nothing is
// written when "playlistV3.db" is missing, when "pls_storage" is missing, does
// not parse or has no dictionary at its root, or when the file time cannot be
// read.
enum class StorageRefresh {
  kRefreshed,           // "modify_time" was written
  kNoPlaylistDatabase,  // no "playlistV3.db": nothing to tell the player
  kNoStorage,           // "pls_storage" is missing, does not parse, or is no dictionary
  kNoFileTime,          // the database's file information could not be read
  kWriteFailed,         // "pls_storage" could not be written
};
[[nodiscard]] StorageRefresh RefreshPlaylistStorage(const base::FilePath& data_folder);

// A word for the log: "refreshed", "no playlist database", ...
const wchar_t* StorageRefreshText(StorageRefresh refresh);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_DRIVER_PLAYLIST_STORAGE_H_
