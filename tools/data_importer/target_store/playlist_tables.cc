// Tables written here:
//   playlist database (playlistV3.db): GeneralListTable, GeneralList_<id>
//   music-library database (VTMusicV3.db): RadioChannel_<id>,
//     RecentlyPlayedItem
// and the file-flag pass and the list-count report. Every song table has the
// one schema of song_table.h.

#include <string>
#include <unordered_map>

#include "tools/data_importer/database_helper/db_row_reader.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/target_store/song_table.h"
#include "tools/data_importer/target_store/table_columns.h"
#include "tools/data_importer/target_store/table_writer.h"

namespace data_importer {

namespace {

const TableDef kGeneralListTable = {
    "GeneralListTable",
    "CREATE TABLE GeneralListTable(PlayListID integer PRIMARY KEY NOT NULL,PlaylistType integer "
    "NOT NULL DEFAULT 0,PlaylistName nvarchar(20) NOT NULL DEFAULT '',SortID integer NOT NULL "
    "DEFAULT 0,DownloadPath nvarchar(260) NOT NULL DEFAULT '')"};

std::string SongListTableName(int id, ImportModel::SongListKind kind) {
  return (kind == ImportModel::kGeneralList ? "GeneralList_" : "RadioChannel_") +
         std::to_string(id);
}

int Lookup(const std::unordered_map<int, int>& map, int key) {
  auto found = map.find(key);
  return found == map.end() ? 0 : found->second;
}

}  // namespace

void ImportModel::WriteGeneralListTable() {
  WriteTable(
      m_playlist_db.get(), kGeneralListTable, m_play_lists, EmptyList::kSkipTable,
      [](const PlayListInfo& list, RowBuilder* row) {
        AppendColumns(list, GeneralListColumns(), row);
        return true;
      },
      report());
}

void ImportModel::WriteRecentlyPlayedItems() {
  static const TableDef kRecentlyPlayedItem = {"RecentlyPlayedItem",
                                               SongTableSchema("RecentlyPlayedItem")};
  // Created even when nothing was played; SQLite numbers the rows.
  WriteTable(
      m_music_db.get(), kRecentlyPlayedItem, m_recent_songs, EmptyList::kCreateTable,
      [](const SongItem& song, RowBuilder* row) {
        AppendSongColumns(song, MusicFilePlayableFromPath(song.MusicFilePath), row);
        return true;
      },
      report());
}

void ImportModel::WriteSongList(int id, const SongList& songs, SongListKind kind) {
  const std::string name = SqlTableName(SongListTableName(id, kind));
  const TableDef definition = {name, SongTableSchema(name)};
  DatabaseHelper* db = kind == kGeneralList ? m_playlist_db.get() : m_music_db.get();
  WriteTable(
      db, definition, songs, EmptyList::kCreateTable,
      [&](const SongItem& song, RowBuilder* row) {
        int playable = -1;  // by the entry's own path, unless its file decides
        if (kind == kGeneralList) {
          // The song tables keep a file by its path and hash, not by id: the
          // new ids decide only whether the entry survives and how playable
          // its file is. (The MV file is optional: an entry does not depend on
          // its MV having been imported.)
          int music_id = Lookup(m_music_id_map, song.music_file_id);
          if (music_id == 0)
            return RowFate::Drop(drop_reason::kListEntrySongMissing);
          auto flag = m_file_flag_map.find(music_id);
          if (flag != m_file_flag_map.end())
            playable = !flag->second;
        }
        if (playable < 0)
          playable = MusicFilePlayableFromPath(song.MusicFilePath);
        row->Int("SongID", song.SongID);
        AppendSongColumns(song, playable, row);
        return RowFate::Write();
      },
      report());
}

void ImportModel::FillFileFlagMap() {
  m_file_flag_map.clear();
  m_file_flag_map.reserve(m_music_id_map.size());
  for (const auto& file : m_share_files) {
    if (file->ShareFileType == 2)
      continue;
    int new_id = Lookup(m_music_id_map, file->old_id);
    if (new_id != 0)
      m_file_flag_map[new_id] = MusicFilePlayableFromPath(file->FileName) ? 0 : 1;
  }
}

base::Status ImportModel::ReportListCounts() {
  sql::Connection* connection = m_playlist_db ? m_playlist_db->connection() : nullptr;
  if (!connection || !connection->is_open() || !connection->DoesTableExist("GeneralListTable")) {
    if (m_progress)
      m_progress->SetPlaylists(L"0");
    return base::Status::Error(L"the playlist database has no list table to count");
  }
  std::wstring counts;
  DbRowReader lists(*connection, "select * from GeneralListTable order by SortId");
  while (lists.Step()) {
    int id = lists.GetInt("PlayListID");
    DbRowReader count(*connection, "select count(*) as itemCount from " +
                                       SqlTableName(SongListTableName(id, kGeneralList)));
    int entries = count.Step() ? count.GetInt("itemCount") : 0;
    if (!counts.empty())
      counts += L',';
    counts += std::to_wstring(id) + L':' + std::to_wstring(entries);
  }
  if (m_progress)
    m_progress->SetPlaylists(counts);
  m_file_flag_map.clear();
  return base::Status::OK();
}

const ColumnList<PlayListInfo>& GeneralListColumns() {
  using R = PlayListInfo;
  static const ColumnList<R> columns = {
      {"PlaylistID", &R::PlaylistID},
      {"PlaylistName", &R::PlaylistName},
      {"DownloadPath", &R::DownloadPath},
      {"PlaylistType", &R::PlaylistType},
      {"SortID", &R::SortID},
  };
  return columns;
}

}  // namespace data_importer
