#ifndef TOOLS_DATA_IMPORTER_DRIVER_PLAYLIST_STORAGE_H_
#define TOOLS_DATA_IMPORTER_DRIVER_PLAYLIST_STORAGE_H_

#include "base/file_path.h"

// Refreshes "modify_time" in the JSON file "pls_storage" of |data_folder|
// with the last-modified time of "playlistV3.db" (seconds since 1970, with
// fractions), so the player knows its playlist database changed. Nothing is
// written when "playlistV3.db" is missing, when "pls_storage" is missing, does
// not parse or has no dictionary at its root, or when the file time cannot be
// read. Answers whether the file was rewritten.
bool RefreshPlaylistStorage(const base::FilePath& data_folder);

#endif  // TOOLS_DATA_IMPORTER_DRIVER_PLAYLIST_STORAGE_H_
