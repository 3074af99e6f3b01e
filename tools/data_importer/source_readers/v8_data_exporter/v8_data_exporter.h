#ifndef TOOLS_DATA_IMPORTER_SOURCE_READERS_V8_DATA_EXPORTER_V8_DATA_EXPORTER_H_
#define TOOLS_DATA_IMPORTER_SOURCE_READERS_V8_DATA_EXPORTER_V8_DATA_EXPORTER_H_

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "base/file_path.h"
#include "logging/logging.h"
#include "tools/data_importer/source_readers/data_exporter.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/target_store/record_columns.h"

namespace data_importer {

class DbRowReader;

// The tag that starts every log line of this reader, and the macro that
// writes such a line at |level|.
inline constexpr wchar_t kV8LogTag[] = L"[V8数据导入] ";
#define V8LOG(level) VLOG_AT(level) << kV8LogTag
// Imports the plain databases of the current generation's first releases.
// They lie in the data folder itself and hold the tables of the version-3
// databases under the same names and columns, unencrypted:
//   "VTMusic.db": ShareFileItems, ShareFolders, LocalFiles, AppTools,
//     RadioChannelTable, RadioChannel_<id>, DislikeRadioItem,
//     PlayedNJRadioItem, RecentlyPlayedItem, DownloadItem,
//     DownloadHistoryItem, UserLoginHistory, KeywordSearchHistory;
//   "vantu.db": GeneralListTable and GeneralList_<id>.
// Either file may be missing, and so may any table or column: a missing
// column reads as 0 or empty. A NULL in a column that takes one (the
// hashes, a tool's path) stays NULL; a NULL hash finds no file.
//
// The originals are never opened. Each is copied to a work copy beside it
// ("VT8Music.db", "VT8Playlist.db"), which is what is read, and to the dated
// backup folder under its own name; a work copy left by an earlier run is
// read again as it is. A file found in neither form reports state 1; when
// neither file is found ExportData answers 1 and imports nothing.
//
// Every table reader that cannot read its table reports its own bit and the
// later readers still run: 4 for the music items, 2 for the lists, 16 for
// every other table. A file that cannot be opened soundly (after one
// repair) fails every reader of that file.
//
// Rows come back as the records the writers made them from. Ids the new
// databases assign are tied up again the way the writers read them: a list,
// recently-played or radio entry finds its files by path and hash together,
// else by path, else by hash; a local file its folder by path (compared as
// Windows compares paths); a download its file by its FileID, else by
// destination path, else (in the writer) by hash; a history row its
// download by "DownloadID" and destination path. Each download table gets
// back exactly its own rows.
//
// Every row read is counted in the import report under its table and file.
class V8DataExporter : public DataExporter {
 public:
  V8DataExporter(const RunContext& context, ImportModel* model);
  ~V8DataExporter() override;

  [[nodiscard]] ExportResult ExportData() override;
  // The table summary of a current-generation database.
  std::wstring Dump(const base::FilePath& path) override;
  // The work copy of "VTMusic.db" (the summary is only taken of copies).
  base::FilePath GetDatabasePath() override;

 protected:
  const wchar_t* LogTag() const override;

 private:
  // Old ids of the library read back, by the keys entries refer to files
  // and folders with.
  struct FileLookup {
    // Path and hash together tell apart files that share one of them (two
    // files without a path, say, known by their hashes).
    std::unordered_map<std::wstring, int> by_path_and_hash;
    std::unordered_map<std::wstring, int> by_path;
    std::unordered_map<std::wstring, int> by_hash;
    std::unordered_set<int> ids;
  };

  // Makes the work copy of |original| (both in the data folder); false when
  // the file exists in neither form.
  bool PrepareWorkCopy(const wchar_t* original, const base::FilePath& work_copy);

  // False when the file could not be read at all (not even salvaged).
  bool ReadMusicDatabase();
  bool ReadListDatabase();

  // Table readers; false when the table exists but cannot be read (an
  // absent table reads nothing and is no failure).
  //
  // Every row of |table|, in row order, into a new record of |list| through
  // |columns|; |finish| completes each record from the row.
  template <typename Record, typename Finish>
  bool ReadTable(const std::string& table,
                 const ColumnList<Record>& columns,
                 RecordList<Record>* list,
                 Finish finish);
  template <typename Record>
  bool ReadTable(const std::string& table,
                 const ColumnList<Record>& columns,
                 RecordList<Record>* list);
  bool ReadShareFileItems();
  bool ReadShareFolders();
  bool ReadLocalFiles();
  bool ReadDownloads();
  // A song table, its entries' files found in the library read before;
  // |ticker| (may be null) ticks once per entry.
  bool ReadSongTable(const std::string& table, SongList* songs, ReadProgressTicker* ticker);
  // Every "<prefix><id>" table into |lists|[id]; false when one of them
  // cannot be read (the others are still read).
  bool ReadSongTables(const char* prefix, std::map<int32_t, SongList>* lists);

  // The query of every row of |table| in row order; none when the table
  // does not exist (logged).
  std::optional<std::string> TableQuery(const std::string& table);
  static int Find(const std::unordered_map<std::wstring, int>& map, const std::wstring& key);
  static int FindFile(const FileLookup& files, const std::wstring& path, const NullableText& hash);

  base::FilePath m_music_copy;
  base::FilePath m_list_copy;

  FileLookup m_audio_files;
  FileLookup m_video_files;
  std::unordered_map<std::wstring, int> m_folder_by_path;
  // An old folder id that no folder has: the folder of a local file whose
  // folder is not in the library.
  int m_no_folder_id = 0;
};

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_SOURCE_READERS_V8_DATA_EXPORTER_V8_DATA_EXPORTER_H_
