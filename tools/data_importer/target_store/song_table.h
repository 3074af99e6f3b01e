#ifndef TOOLS_DATA_IMPORTER_TARGET_STORE_SONG_TABLE_H_
#define TOOLS_DATA_IMPORTER_TARGET_STORE_SONG_TABLE_H_

#include <string>

#include "tools/data_importer/target_store/import_records.h"

namespace data_importer {

class RowBuilder;

// The one schema of every song table: the per-list "GeneralList_<id>", the
// per-channel "RadioChannel_<id>" and "RecentlyPlayedItem".
std::string SongTableSchema(const std::string& table);

// "MusicFilePlayable" of every song table: 1 when |music_file_path| names a
// local file the player can open, 0 when it is empty or the unlinked mark.
// General-list entries apply it to their library file (through the file-flag
// map), the other song tables to the entry's own path.
[[nodiscard]] int MusicFilePlayableFromPath(const std::wstring& music_file_path);

// Appends the 42 song columns, "TitleName" to "LastGenreDownloadTime", in
// their fixed order ("SongID" is not among them). "MusicFilePlayable" takes
// |music_file_playable|, which the writer derives by the rule above.
void AppendSongColumns(const SongItem& song, int music_file_playable, RowBuilder* row);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_TARGET_STORE_SONG_TABLE_H_
