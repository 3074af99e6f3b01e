#ifndef TOOLS_DATA_IMPORTER_TARGET_STORE_SONG_TABLE_H_
#define TOOLS_DATA_IMPORTER_TARGET_STORE_SONG_TABLE_H_

#include <string>

#include "tools/data_importer/target_store/import_records.h"

class RowBuilder;

// The one schema of every song table: the per-list "GeneralList_<id>", the
// per-channel "RadioChannel_<id>" and "RecentlyPlayedItem".
std::string SongTableSchema(const std::string& table);

// Appends the 42 song columns, "TitleName" to "LastGenreDownloadTime", in
// their fixed order ("SongID" is not among them). "MusicFilePlayable" takes
// |music_file_playable|, which the general lists derive from the library.
void AppendSongColumns(const SongItem& song, int music_file_playable, RowBuilder* row);

#endif  // TOOLS_DATA_IMPORTER_TARGET_STORE_SONG_TABLE_H_
