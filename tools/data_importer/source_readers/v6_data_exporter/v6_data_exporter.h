#ifndef TOOLS_DATA_IMPORTER_SOURCE_READERS_V6_DATA_EXPORTER_V6_DATA_EXPORTER_H_
#define TOOLS_DATA_IMPORTER_SOURCE_READERS_V6_DATA_EXPORTER_V6_DATA_EXPORTER_H_

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "base/file_path.h"
#include "logging/logging.h"
#include "tools/data_importer/source_readers/data_exporter.h"
#include "tools/data_importer/source_readers/lookup_map.h"
#include "tools/data_importer/target_store/import_records.h"

namespace data_importer {

struct DropReason;

class RowReaderInterface;

// The tag that starts every log line of this reader, and the macro that
// writes such a line at |level|.
inline constexpr wchar_t kV6LogTag[] = L"[V6数据导入] ";
#define V6LOG(level) VLOG_AT(level) << kV6LogTag
// Imports a generation-6 installation. Generation 6 kept its data in one of
// two layouts: "V1", the single database "VTData.db" beside the program, or
// "V2", the library files "VTLibrary.db", "VTLibrary<N>.db". The exporter
// copies the source files into the data folder ("VT6Data.db" for "V1",
// the library files under their own names for "V2") and into the dated
// backup folder, then reads only its own copies: the installation's files
// are never opened. A copy left by an earlier run is used again without
// looking for the installation. "V1" wins when both layouts exist.
//
// Failures of single tables are logged and reported as state bits (16
// videos and downloads, 4 music items, 2 lists) and the export goes on; no
// source at all reports 1 and ExportData answers 1.
class V6DataExporter : public DataExporter {
 public:
  V6DataExporter(const RunContext& context, ImportModel* model);
  ~V6DataExporter() override;

  [[nodiscard]] ExportResult ExportData() override;
  // Generation 6 has no summary: always empty.
  std::wstring Dump(const base::FilePath& path) override;
  // The "V1" database of the installation named in the registry, or empty.
  base::FilePath GetDatabasePath() override;

 protected:
  const wchar_t* LogTag() const override;

 private:
  // In the "V2" layout "PlayListItems" is read twice, once for the music
  // items and once per list for its entries ("PlayListItems (list
  // entries)"); the report counts the two reads apart.
  static constexpr char kV2MusicItemsTable[] = "PlayListItems (music items)";

  // What a list reader remembers of an imported music item.
  struct MusicEntry {
    std::shared_ptr<ShareFileItem> file;
    int mv_id = 0;           // old id of its MV ("V1" MvItemID)
    int64_t start_time = 0;  // start of a track inside a larger file
  };
  struct ListRef {
    int source_id = 0;  // PlayListID in the library file
    int id = 0;         // the list's id in the model (see TakeListId)
    bool is_default = false;
  };

  // Program folder of the installation: the folder of registry value
  // "AppFileName" under "Software\VanTa6"; empty when not registered.
  base::FilePath LocateInstallation();
  // Where the settings file "VanTa.xml" and the "Lyric" folder are read:
  // the program folder, else the source folder of the switch "i".
  base::FilePath SettingsAndLyricsFolder();
  void ClearLookups();

  // Copies.
  void CopyLyrics();
  bool CopyV1Database();
  bool CopyV2Databases();
  bool CopyV2DatabasesUnguarded();

  // Layouts.
  ExportResult ReadV1Layout();
  ExportResult ReadV2Layout();
  // Adds the settings of the installation's "VanTa.xml" to the model; a
  // missing or unusable file adds nothing and the export goes on.
  void ReadSettings();
  // The saved logins ("LoginSave.bin") are not carried over: the file's
  // format is not known. Reads nothing.
  void ReadLoginHistory();

  // Table readers; false when the query cannot be prepared.
  bool ReadMusicVideos();
  bool ReadMusicItems();
  bool ReadMusicItemsV2(int library_number);
  bool ReadPlayLists(bool v2, int library_number);
  // False when the entries stop at an error; the ones before are kept.
  bool ReadListItems(const ListRef& list, bool v2, int library_number);
  // Drops every entry of the list |source_id|, which is not imported, with
  // |reason|; answers how many there were.
  int64_t DropListEntries(int source_id, bool v2, const DropReason& reason);
  // Drops the entries of the "V1" layout whose list is not in the file.
  void DropEntriesOfNoList();
  // |v2|: the "V2" layout, whose music items carry made-up old ids, so a
  // pending download is found by its hash only.
  bool ReadUnfinishedDownloads(bool v2);
  bool ReadFinishedDownloads();

  // Lets every per-list query of the open source find its list's entries
  // by an index on "PlayListItems"(PlayListID) instead of a scan of all
  // entries. The source open is always our own work copy, never the
  // installation's file; a failure only costs speed.
  void IndexListEntries();
  // The model id of a list whose library-file id is |source_id|: that id,
  // unless a list of an earlier library file took it already; then the next
  // free id above the largest taken.
  int TakeListId(int source_id);

  // The key of a "V2" music item: its "ItemID" within library file |N|.
  static int64_t V2ItemKey(int item_id, int library_number) {
    return static_cast<int64_t>(static_cast<uint32_t>(item_id)) << 32 |
           static_cast<uint32_t>(library_number);
  }

  // Fills the music-file half of |song| from the music item it refers to,
  // and its MV half from the item's MV when that was imported.
  void FillFromMusic(const MusicEntry& music, SongItem* song) const;

  base::FilePath m_source_db;  // the installation's "V1" database
  base::FilePath m_work_db;    // our copy of it, the one that is read

  // Lookups of one export, emptied at its start and end.
  std::set<int> m_list_ids;                                   // lists already taken
  LookupMap<int, MusicEntry> m_music_items;                   // "V1" music item id
  LookupMap<int, std::shared_ptr<ShareFileItem>> m_mv_items;  // "V1" MV id
  LookupMap<int64_t, MusicEntry> m_v2_music_items;            // see V2ItemKey

  int32_t m_next_list_sort = 1;  // sort position of the next ordinary list
  // Whether the settings and login readers run at the end of a layout;
  // always 1 in a run (kept beside the sort counter as the format has it).
  int32_t m_read_extras = 1;
  // "V2" music items have no id unique across library files: each gets
  // the next number as its old id for the model's id maps.
  int m_next_v2_file_id = 1;
};

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_SOURCE_READERS_V6_DATA_EXPORTER_V6_DATA_EXPORTER_H_
