#ifndef TOOLS_DATA_IMPORTER_TARGET_STORE_IMPORT_MODEL_H_
#define TOOLS_DATA_IMPORTER_TARGET_STORE_IMPORT_MODEL_H_

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/code_page.h"
#include "base/file_path.h"
#include "base/status.h"
#include "tools/data_importer/database_helper/database_helper.h"
#include "tools/data_importer/settings/imported_settings.h"
#include "tools/data_importer/target_store/import_records.h"
#include "tools/data_importer/target_store/verify_database.h"

namespace data_importer {

class ImportReport;
class ProgressRecord;

template <typename T>
using RecordList = std::vector<std::shared_ptr<T>>;
using SongList = RecordList<SongItem>;

// Everything one import gathers, in memory: source readers append records
// to the lists and maps; the build sequence then creates the two new
// databases and lets one writer per table turn the records into rows.
//
// One model exists per run, owned by the import driver, used on one thread.
// Readers fill the containers directly and never touch the two databases.
// The writers only read the records; none of them reports an error (a
// closed database makes a writer do nothing, a failing insert loses only
// its row). ShareFileItems must be written first: it fills the id maps that
// every later writer translates old file ids through.
class ImportModel {
 public:
  // Second argument of WriteSongList.
  enum SongListKind { kGeneralList = 0, kRadioChannel = 1 };

  explicit ImportModel(ProgressRecord* progress = nullptr);
  ~ImportModel();
  ImportModel(const ImportModel&) = delete;
  ImportModel& operator=(const ImportModel&) = delete;

  // Reports |bits| as import state through the progress record, if any.
  void ReportState(uint32_t bits);

  // The run's import report (the progress record's), where readers count
  // what they read, made and dropped (SourceTableTally) and writers what
  // they wrote. Never null: a model without a progress record keeps one of
  // its own.
  ImportReport* report();

  // Appends a copy of |settings| to m_settings.
  void AddSettings(const ImportedSettings& settings);

  // Writers of the music-library database (m_music_db).
  void WriteShareFileItems();
  void WriteShareFolders();
  void WriteLocalFiles();
  void WriteAppTools();
  void WriteRecentlyPlayedItems();
  void WriteRadioChannelTable();
  void WriteDislikeRadioItems();
  void WritePlayedRadioItems();
  void WriteDownloadItems();
  void WriteDownloadHistoryItems();
  void WriteUserLoginHistory();
  void WriteKeywordSearchHistory();

  // Writers of the playlist database (m_playlist_db), except that radio
  // channels' song tables go to the music-library database.
  void WriteGeneralListTable();
  // Writes the table "GeneralList_<id>" (kGeneralList, playlist database)
  // or "RadioChannel_<id>" (kRadioChannel, music-library database), created
  // even for no songs. General-list entries are translated to the new file
  // ids and dropped when their audio file was not imported; radio entries
  // are written as they are. MusicFilePlayable follows
  // MusicFilePlayableFromPath in both.
  void WriteSongList(int id, const SongList& songs, SongListKind kind);

  // Refills m_file_flag_map from m_share_files: the flag of an audio file's
  // new id is 1 when the file has no local path (empty or the unlinked mark:
  // an entry the player cannot play from disk), else 0. The general-list writer stores the negation
  // in MusicFilePlayable.
  void FillFileFlagMap();

  // Copies the cloud lists of m_cloud_list_source into the playlist
  // database where the cloud-list move of the upgrade puts them:
  // "CloudListTable", the "NewCloudList_<id>" table of every id above 0,
  // "CloudAccompanimentItemSet" and "CloudOperation", each only when the
  // source has it and the playlist database has not. Every cloud-list table
  // of the source is counted in the report: carried, or dropped as left
  // behind (the older layout's "CloudList_..." tables and the song tables of
  // lists at or below 0, which the move leaves too). False when a table
  // could not be copied (the others still are).
  [[nodiscard]] bool CarryCloudLists();

  // Counts each list's entries in the playlist database and reports them as
  // "ImportPlayLists": "<PlaylistID>:<entries>" per list in the lists'
  // SortID order, joined by ",". Reports "0" and fails when the database is
  // not open or has no GeneralListTable. Clears m_file_flag_map.
  [[nodiscard]] base::Status ReportListCounts();

  RecordList<ShareFileItem> m_share_files;
  RecordList<ShareFolderItem> m_share_folders;
  RecordList<PlayListInfo> m_play_lists;
  std::map<int32_t, SongList> m_list_songs;
  RecordList<RadioChannelInfo> m_radio_channels;
  SongList m_recent_songs;
  RecordList<DislikeRadioRecord> m_dislike_radio;
  RecordList<PlayedRadioRecord> m_played_radio;
  RecordList<LocalFileInfo> m_local_files;
  RecordList<DownloadRecord> m_downloads;
  RecordList<LoginRecord> m_login_history;
  RecordList<SearchKeywordRecord> m_search_keywords;
  std::map<int32_t, SongList> m_radio_songs;
  // The id maps below are looked up once per row written and never walked
  // in order.
  std::unordered_map<int32_t, uint8_t> m_file_flag_map;
  RecordList<AppToolRecord> m_app_tools;
  // Settings taken from older generations, in the order they were read;
  // the settings writer writes them in this order, so a later record
  // overwrites an earlier one key by key.
  std::vector<ImportedSettings> m_settings;
  std::unordered_map<int, int> m_music_id_map;
  std::unordered_map<int, int> m_mv_id_map;
  std::unordered_map<int, int> m_folder_id_map;
  std::unordered_map<std::wstring, int> m_hash_id_map;
  std::unique_ptr<DatabaseHelper> m_music_db;
  std::unique_ptr<DatabaseHelper> m_playlist_db;
  ProgressRecord* m_progress = nullptr;
  // A music database of the current generation's own format whose cloud
  // lists the new playlist file takes; empty for none.
  base::FilePath m_cloud_list_source;
  // The code page of the user's 8-bit settings files, read and written.
  uint32_t m_ansi_code_page = base::kCodePageSimplifiedChinese;
  // What the build read back from each finished encrypted file (schema and
  // rows per table), for the import report; ok = false with the reason when
  // the file failed and was not moved into place.
  VerifiedDatabase m_verified_music;
  VerifiedDatabase m_verified_playlist;

 private:
  std::unique_ptr<ImportReport> m_own_report;
};

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_TARGET_STORE_IMPORT_MODEL_H_
