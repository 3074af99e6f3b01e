#ifndef TOOLS_DATA_IMPORTER_SOURCE_READERS_V7_DATA_EXPORTER_V7_DATA_EXPORTER_H_
#define TOOLS_DATA_IMPORTER_SOURCE_READERS_V7_DATA_EXPORTER_V7_DATA_EXPORTER_H_

#include <cstdint>
#include <memory>
#include <string>

#include "base/file_path.h"
#include "logging/logging.h"
#include "tools/data_importer/source_readers/data_exporter.h"
#include "tools/data_importer/source_readers/lookup_map.h"
#include "tools/data_importer/target_store/import_records.h"

namespace data_importer {

// Imports a generation-7 installation: the database "VTData.db" in the
// folder "Vantu7" of the roaming application-data folder (found whatever
// the letter case of the names). The exporter copies it into the data
// folder as "VT7Data.db", into the dated backup folder and to the
// intermediate copy "DataImporter.db", and reads only its own copy; the
// generation-7 folder is never written. A "VT7Data.db" left by an earlier
// run is read again without looking at the generation-7 folder.
//
// ExportData answers 1 (with state 1) when there is no source, the copy
// fails, the copy stays corrupt after one repair or holds no "FileItems";
// otherwise 0. A table reader that fails reports its bit (4 music items,
// 2 lists, 16 every other table) and the next reader still runs.
//
// Every table reader counts in the import report the rows it read, the
// records it made and the rows it left out with their reason. The lists of
// type 5 are no lists of the new library: they are counted by their
// entries, which become the recently-played list.
class DbRowReader;
class SourceTableTally;

// The tag that starts every log line of this reader, and the macro that
// writes such a line at |level|.
inline constexpr wchar_t kV7LogTag[] = L"[V7数据导入] ";
#define V7LOG(level) VLOG_AT(level) << kV7LogTag

class V7DataExporter : public DataExporter {
 public:
  V7DataExporter(const RunContext& context, ImportModel* model);
  ~V7DataExporter() override;

  [[nodiscard]] ExportResult ExportData() override;
  // The table summary of the generation-7 tables.
  std::wstring Dump(const base::FilePath& path) override;
  // <roaming application data>/Vantu7/VTData.db.
  base::FilePath GetDatabasePath() override;

 protected:
  const wchar_t* LogTag() const override;

  // Adds the settings of "vantu.ini" in the generation-7 folder to the model
  // and advances the read progress by 1; no file, no record and no step.
  // (Protected so that a test can run this step on its own: after a whole
  // read the progress usually stands at the ceiling already.)
  void MigrateSettings();

 private:
  // What the list readers need of an imported music item.
  struct MusicEntry {
    std::shared_ptr<ShareFileItem> file;
    int mv_id = 0;           // "MVItemID": the item's MV, itself a music item
    int play_count = 0;      // "PlayCount"
    int64_t start_time = 0;  // "StartTime": a track's start inside its file
  };

  // <roaming application data>/Vantu7, its existing spelling when found.
  base::FilePath Generation7Folder() const;

  // Work copy, backup, intermediate copy and plug-in data; false when there
  // is neither an earlier work copy nor a source that can be copied.
  bool CopyDatabase();

  // Settings, histories and skins.
  // The last played list and position: not carried, their place in the
  // generation-7 files is not known. Does nothing.
  void ReadLastPlayed();
  // The saved logins ("LoginSave.bin"): not carried, the file's format is
  // not known. Does nothing.
  void ReadLoginHistory();
  // The search history: not carried, where generation 7 kept it is not
  // known. Does nothing.
  void ReadSearchHistory();
  // Skins, singer images and the window layout ("WinPos.Xml"): not carried,
  // their formats are not known; so no main-window position reaches the
  // settings record either. Does nothing.
  void MigrateSkins();

  // Table readers; false when the query cannot be run or, for the folder
  // items and radio tables, when the table is absent.
  bool ReadMusicItems();
  bool ReadPlayLists();
  // Counts the lists the list reader leaves out as dropped, with their
  // reason (no entries, or a type that is not imported), their entries
  // with them, and the entries of no list.
  void DropListsLeftOut();
  // False when the entries stop at an error; the ones before are kept.
  bool ReadListItems(int list_id);
  bool ReadType5ListItems();
  bool ReadUnfinishedDownloads();
  bool ReadFinishedDownloads();
  bool ReadShareFolders();
  bool ReadFolderItems();
  bool ReadPlayedRadioSongs();
  bool ReadRadioChannels();
  bool ReadRadioSongs(const std::string& fm_id, int fm_type, int channel_id);
  // Counts the radio songs of no channel in "RadioList" as dropped.
  void DropRadioSongsOfNoChannel();
  bool ReadDislikedRadioSongs();

  // A list entry for |row|'s music item; null when the item was not
  // imported.
  std::shared_ptr<SongItem> MakeListEntry(DbRowReader& row) const;
  void ClearLookups();

  base::FilePath m_work_db;  // "VT7Data.db" in the data folder
  // Music items by "FileItemID", filled by the music-item reader.
  LookupMap<int, MusicEntry> m_music_items;
  // Watched folders by "ShareFolderID", for the folder-item reader.
  LookupMap<int, std::shared_ptr<ShareFolderItem>> m_share_folders;
  int32_t m_next_radio_channel_id = 0;  // last id given to a radio channel
  int32_t m_last_played_list = -1;      // from the settings file; -1 none
  int32_t m_last_played_position = 0;   // entry index in that list
};

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_SOURCE_READERS_V7_DATA_EXPORTER_V7_DATA_EXPORTER_H_
