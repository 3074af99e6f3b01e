// The table readers of the current-generation re-import. Each reads its
// table in row order through the column lists the writers fill the same
// table with, so a row comes back as the record it was written from.

#include <charconv>
#include <climits>
#include <functional>
#include <optional>
#include <set>
#include <vector>

#include "base/utf_string_conversions.h"
#include "base/windows_path.h"
#include "logging/logging.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/database_helper/db_row_reader.h"
#include "tools/data_importer/run_record/import_report.h"
#include "tools/data_importer/target_store/table_columns.h"
#include "tools/data_importer/source_readers/v8_data_exporter/v8_data_exporter.h"

namespace data_importer {

namespace {

// The id of a table named |prefix| + decimal id, as the writers name them
// ("GeneralList_-3"); false for any other name, a name with leading zeros
// or a "+" included, since that table would come back under another name.
bool ParseTableId(const std::string& name, const char* prefix, int32_t* id) {
  std::string_view rest(name);
  size_t length = std::char_traits<char>::length(prefix);
  if (rest.size() <= length)
    return false;
  for (size_t i = 0; i < length; ++i) {
    if (std::tolower(static_cast<unsigned char>(rest[i])) !=
        std::tolower(static_cast<unsigned char>(prefix[i])))
      return false;
  }
  rest.remove_prefix(length);
  auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), *id);
  return error == std::errc() && end == rest.data() + rest.size() && std::to_string(*id) == rest;
}

// A file's key for the path and hash lookups; the first file with a key
// keeps it.
void Remember(std::unordered_map<std::wstring, int>* map, const std::wstring& key, int id) {
  if (!key.empty())
    map->emplace(key, id);
}

// The key of a file by its path and hash together; no path holds the
// separator, a control character. A NULL hash and an empty one are one
// key: the entries of a file without a hash wrote either.
std::wstring PathAndHash(const std::wstring& path, const NullableText& hash) {
  return path + L'\x01' + hash.text.str();
}

}  // namespace

int V8DataExporter::Find(const std::unordered_map<std::wstring, int>& map,
                         const std::wstring& key) {
  auto found = map.find(key);
  return found == map.end() ? 0 : found->second;
}

int V8DataExporter::FindFile(const FileLookup& files,
                             const std::wstring& path,
                             const NullableText& hash) {
  if (int id = Find(files.by_path_and_hash, PathAndHash(path, hash)))
    return id;
  if (int id = Find(files.by_path, path))
    return id;
  return IsFileHash(hash) ? Find(files.by_hash, hash.text) : 0;
}

std::optional<std::string> V8DataExporter::TableQuery(const std::string& table) {
  sql::Connection* db = m_db->connection();
  if (!db->DoesTableExist(table.c_str())) {
    V8LOG(logging::LOG_FAILURE) << L"Table {" << table.c_str() << L"} do not exists.";
    return std::nullopt;
  }
  // Row order is the order the rows were written in, so rows whose ids the
  // new database assigns get the same ones again. A table without row ids
  // is read in its key order.
  std::string select = "SELECT * FROM " + SqlTableName(table);
  if (DbRowReader(*db, select + " ORDER BY rowid").IsValid())
    return select + " ORDER BY rowid";
  return select;
}

template <typename Record, typename Finish>
bool V8DataExporter::ReadTable(const std::string& table,
                               const ColumnList<Record>& columns,
                               RecordList<Record>* list,
                               Finish finish) {
  std::optional<std::string> select = TableQuery(table);
  if (!select)
    return true;  // an absent table is no failure
  RowQuery query{*select, table, base::UTF8ToWide(table)};
  return ReadRows(query,
                  [&](DbRowReader& row, SourceTableTally& tally) {
                    auto record = std::make_shared<Record>();
                    ReadColumns(&row, columns, record.get());
                    finish(&row, record.get());
                    tally.Made(record.get());
                    list->push_back(record);
                    return true;
                  })
      .ok;
}

template <typename Record>
bool V8DataExporter::ReadTable(const std::string& table,
                               const ColumnList<Record>& columns,
                               RecordList<Record>* list) {
  return ReadTable(table, columns, list, [](DbRowReader*, Record*) {});
}

bool V8DataExporter::ReadMusicDatabase() {
  if (!OpenSourceWithRepair(m_music_copy) || NothingSalvaged()) {
    V8LOG(logging::LOG_FAILURE) << L"Failed to open database file {" << m_music_copy.value()
                                << L"}.";
    ReportState(ProgressRecord::kStateMusicFailed | ProgressRecord::kStateTableFailed);
    return false;
  }
  // An older music database still holds the user's cloud lists; the build
  // carries them into the new playlist file.
  m_model->m_cloud_list_source = m_music_copy;
  if (!ReadShareFileItems())
    ReportState(ProgressRecord::kStateMusicFailed);
  TableRead();
  // Each of the other tables reports the shared bit; every reader runs, and
  // the progress moves after each one.
  ImportModel& model = *m_model;
  const std::function<bool()> readers[] = {
      [&] { return ReadShareFolders(); },
      [&] { return ReadLocalFiles(); },
      [&] { return ReadTable("AppTools", AppToolColumns(), &model.m_app_tools); },
      [&] {
        return ReadTable("RadioChannelTable", RadioChannelColumns(), &model.m_radio_channels,
                         [](DbRowReader* row, RadioChannelInfo* channel) {
                           channel->FMStat = row->GetString16("FMStat");
                         });
      },
      [&] { return ReadTable("DislikeRadioItem", DislikeRadioColumns(), &model.m_dislike_radio); },
      [&] { return ReadTable("PlayedNJRadioItem", PlayedRadioColumns(), &model.m_played_radio); },
      [&] { return ReadSongTable("RecentlyPlayedItem", &model.m_recent_songs, nullptr); },
      [&] { return ReadDownloads(); },
      [&] { return ReadTable("UserLoginHistory", LoginColumns(), &model.m_login_history); },
      [&] {
        return ReadTable("KeywordSearchHistory", SearchKeywordColumns(), &model.m_search_keywords);
      },
      [&] { return ReadSongTables("RadioChannel_", &model.m_radio_songs); },
  };
  for (const auto& read : readers) {
    if (!read())
      ReportState(ProgressRecord::kStateTableFailed);
    TableRead();
  }
  // The tables come back under their own names; the history rows are
  // downloads of "DownloadItem", where their family is counted.
  ReportSalvageLosses({
      {"ShareFileItems", ProgressRecord::kStateMusicFailed},
      {"DownloadHistoryItem", ProgressRecord::kStateTableFailed, nullptr, "DownloadItem"},
      {"RadioChannel_*", ProgressRecord::kStateTableFailed, nullptr, "RadioChannel"},
      {"ShareFolders", ProgressRecord::kStateTableFailed},
      {"LocalFiles", ProgressRecord::kStateTableFailed},
      {"AppTools", ProgressRecord::kStateTableFailed},
      {"RadioChannelTable", ProgressRecord::kStateTableFailed},
      {"DislikeRadioItem", ProgressRecord::kStateTableFailed},
      {"PlayedNJRadioItem", ProgressRecord::kStateTableFailed},
      {"RecentlyPlayedItem", ProgressRecord::kStateTableFailed},
      {"DownloadItem", ProgressRecord::kStateTableFailed},
      {"UserLoginHistory", ProgressRecord::kStateTableFailed},
      {"KeywordSearchHistory", ProgressRecord::kStateTableFailed},
  });
  return true;
}

bool V8DataExporter::ReadListDatabase() {
  if (!OpenSourceWithRepair(m_list_copy) || NothingSalvaged()) {
    V8LOG(logging::LOG_FAILURE) << L"Failed to open database file {" << m_list_copy.value()
                                << L"}.";
    ReportState(ProgressRecord::kStateListsFailed);
    return false;
  }
  if (!ReadTable("GeneralListTable", GeneralListColumns(), &m_model->m_play_lists))
    ReportState(ProgressRecord::kStateListsFailed);
  TableRead();
  if (!ReadSongTables("GeneralList_", &m_model->m_list_songs))
    ReportState(ProgressRecord::kStateListsFailed);
  TableRead();
  ReportSalvageLosses({
      {"GeneralListTable", ProgressRecord::kStateListsFailed},
      {"GeneralList_*", ProgressRecord::kStateListsFailed, nullptr, "GeneralList"},
  });
  return true;
}

// Files keep their old id ("id") for the id maps; a table without the column
// numbers its rows from 1. The path and hash lookups let the entries of lists
// and downloads find their files again.
bool V8DataExporter::ReadShareFileItems() {
  ReadProgressTicker ticker(this, CountRows(*m_db->connection(), "ShareFileItems"));
  int next_id = 1;
  return ReadTable("ShareFileItems", ShareFileColumns(), &m_model->m_share_files,
                   [&](DbRowReader* row, ShareFileItem* file) {
                     file->old_id = row->GetColumnIndex("id") >= 0 ? row->GetInt("id") : next_id++;
                     FileLookup& files = file->ShareFileType == 2 ? m_video_files : m_audio_files;
                     files.ids.insert(file->old_id);
                     files.by_path_and_hash.emplace(PathAndHash(file->FileName, file->MD5),
                                                    file->old_id);
                     Remember(&files.by_path, file->FileName, file->old_id);
                     if (IsFileHash(file->MD5))
                       Remember(&files.by_hash, file->MD5.text, file->old_id);
                     ticker.Tick();
                   });
}

bool V8DataExporter::ReadShareFolders() {
  int next_id = 1;
  std::set<int> ids;
  bool ok =
      ReadTable("ShareFolders", ShareFolderColumns(), &m_model->m_share_folders,
                [&](DbRowReader* row, ShareFolderItem* folder) {
                  folder->old_id = row->GetColumnIndex("id") >= 0 ? row->GetInt("id") : next_id++;
                  Remember(&m_folder_by_path, base::WindowsPathKey(folder->Path), folder->old_id);
                  ids.insert(folder->old_id);
                });
  // An id below every folder's stands for "no folder" (0 unless taken).
  m_no_folder_id = ids.empty() || *ids.begin() > 0 ? 0 : *ids.begin() - 1;
  return ok;
}

// A local file's folder is the library folder with its folder path, the
// paths compared as Windows compares them ("d:\music" and "D:\Music\" are
// the folder "D:\Music", which the new table then names); its file the audio
// file with its path. A folder path the library does not know is kept as it
// was and counted in the report.
bool V8DataExporter::ReadLocalFiles() {
  int64_t unknown_folders = 0;
  bool ok = ReadTable("LocalFiles", LocalFileColumns(), &m_model->m_local_files,
                      [&](DbRowReader*, LocalFileInfo* file) {
                        auto folder = m_folder_by_path.find(base::WindowsPathKey(file->FolderPath));
                        file->old_folder_id =
                            folder == m_folder_by_path.end() ? m_no_folder_id : folder->second;
                        if (folder == m_folder_by_path.end() && !file->FolderPath.empty())
                          ++unknown_folders;
                        file->old_file_id = Find(m_audio_files.by_path, file->FilePath);
                      });
  if (unknown_folders > 0)
    Report()->AddKeptUnlinked("local_file_folder_not_in_library", unknown_folders);
  return ok;
}

// A song-table row's files are found in the library read before.
bool V8DataExporter::ReadSongTable(const std::string& table,
                                   SongList* songs,
                                   ReadProgressTicker* ticker) {
  return ReadTable(table, SongColumns(), songs, [&](DbRowReader* row, SongItem* song) {
    song->SongID = row->GetInt("SongID");
    song->music_file_id = FindFile(m_audio_files, song->MusicFilePath, song->MusicFileHash);
    song->mv_file_id = FindFile(m_video_files, song->MVFilePath, song->MVFileHash);
    if (ticker)
      ticker->Tick();
  });
}

// A download's file is the library file its FileID names. An older file
// may hold another number there: when FileID names no file of the library,
// the audio file at the destination path is taken. When FileID names a
// video, or neither finds a file, the writer looks for it by hash (as it
// found it when it wrote the row).
//
// Each table gets back exactly its own rows: a "DownloadItem" row goes to
// "DownloadItem" alone and a history row to "DownloadHistoryItem" alone,
// whatever their columns (a finished download's two rows drift apart in
// their access times; a history row may have another DownType; the user
// may have removed the download and kept its history). A history row is
// paired with its download by their identity, "DownloadID" and the
// destination file, and takes that download's file, since the history has
// no FileID column of its own.
bool V8DataExporter::ReadDownloads() {
  auto resolve = [this](DownloadRecord* download) {
    if (m_audio_files.ids.count(download->FileID))
      download->file_id = download->FileID;
    else if (!m_video_files.ids.count(download->FileID))
      download->file_id = Find(m_audio_files.by_path, download->DestFileName);
  };
  auto identity = [](const DownloadRecord& download) {
    return std::to_wstring(download.DownloadID) + L'\x01' + download.DestFileName;
  };
  RecordList<DownloadRecord> items;
  bool ok = ReadTable("DownloadItem", DownloadItemColumns(), &items,
                      [&](DbRowReader*, DownloadRecord* download) {
                        download->tables = DownloadRecord::Tables::kItemOnly;
                        resolve(download);
                      });
  std::unordered_map<std::wstring, const DownloadRecord*> by_identity;
  for (const auto& item : items)
    by_identity.emplace(identity(*item), item.get());
  size_t paired = 0;
  ok = ReadTable("DownloadHistoryItem", DownloadHistoryColumns(), &items,
                 [&](DbRowReader*, DownloadRecord* download) {
                   download->tables = DownloadRecord::Tables::kHistoryOnly;
                   download->Percent = 100;
                   auto item = by_identity.find(identity(*download));
                   if (item != by_identity.end()) {
                     ++paired;
                     download->FileID = item->second->FileID;
                     download->file_id = item->second->file_id;
                   } else {
                     resolve(download);
                   }
                 }) &&
       ok;
  V8LOG(logging::LOG_PROGRESS) << L"History rows of a download in DownloadItem: {" << paired
                               << L"}.";
  m_model->m_downloads.insert(m_model->m_downloads.end(), items.begin(), items.end());
  return ok;
}

// The song tables are found by name, so every one comes back, also one
// without its list record and one without rows.
bool V8DataExporter::ReadSongTables(const char* prefix, std::map<int32_t, SongList>* lists) {
  sql::Connection* db = m_db->connection();
  std::vector<std::pair<int32_t, std::string>> tables;
  DbRowReader names(*db, "SELECT name FROM sqlite_master WHERE type='table' ORDER BY name");
  while (names.Step()) {
    std::string name = names.GetString("name");
    int32_t id = 0;
    if (ParseTableId(name, prefix, &id))
      tables.emplace_back(id, name);
  }
  int64_t total = 0;
  for (const auto& [id, name] : tables)
    total += CountRows(*db, SqlTableName(name).c_str());
  ReadProgressTicker ticker(this, total);
  bool ok = true;
  for (const auto& [id, name] : tables)
    ok = ReadSongTable(name, &(*lists)[id], &ticker) && ok;
  return ok;
}

}  // namespace data_importer
