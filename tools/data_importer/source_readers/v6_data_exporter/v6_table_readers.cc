// The table readers of the generation-6 exporter. Each runs one query and
// turns every row into one model record; a column the row lacks reads as 0
// or empty. Times are carried in the source's units.

#include <algorithm>
#include <limits>
#include <memory_resource>
#include <optional>
#include <unordered_set>

#include <boost/format.hpp>

#include "logging/logging.h"
#include "tools/data_importer/database_helper/db_row_reader.h"
#include "tools/data_importer/run_record/import_report.h"
#include "tools/data_importer/source_readers/source_reader_util.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/source_readers/v6_data_exporter/v6_data_exporter.h"

namespace data_importer {

namespace {

constexpr char kV2ListEntriesTable[] = "PlayListItems (list entries)";

// The index that makes each list's entry query a lookup; its name marks it
// as ours in the work copy.
constexpr char kListEntryIndex[] =
    "CREATE INDEX IF NOT EXISTS DataImporter_PlayListItems_PlayListID "
    "ON PlayListItems(PlayListID)";

}  // namespace

void V6DataExporter::IndexListEntries() {
  sql::Connection* db = m_db->connection();
  if (!db->is_open() || !db->DoesTableExist("PlayListItems"))
    return;
  // Reading stays correct without it, only slower (lists x entries).
  if (!db->Execute(kListEntryIndex))
    V6LOG(logging::LOG_FAILURE) << L"Index on {PlayListItems} not created.";
}

int V6DataExporter::TakeListId(int source_id) {
  int id = source_id;
  if (m_list_ids.count(id) || m_model->m_list_songs.count(id)) {
    int largest = m_list_ids.empty() ? id : *m_list_ids.rbegin();
    if (!m_model->m_list_songs.empty())
      largest = std::max(largest, m_model->m_list_songs.rbegin()->first);
    if (largest == std::numeric_limits<int>::max())
      return id;  // no id above: the list shares its table (never seen in practice)
    id = largest + 1;
    V6LOG(logging::LOG_PROGRESS) << L"List id {" << source_id << L"} is taken, the list gets {"
                                 << id << L"}.";
  }
  m_list_ids.insert(id);
  return id;
}

// "MVItems": the MV files. "Channel" (audio channels) has no column in
// the new library and is not carried.
bool V6DataExporter::ReadMusicVideos() {
  if (!m_db->connection()->DoesTableExist("MVItems")) {
    V6LOG(logging::LOG_FAILURE) << L"Table {MVItems} do not exists.";
    return true;
  }
  RowQuery query{(boost::format("SELECT * FROM %s") % "MVItems").str(), "MVItems", L"MVItems"};
  return ReadRows(query,
                  [this](DbRowReader& row, SourceTableTally& tally) {
                    auto file = std::make_shared<ShareFileItem>();
                    file->old_id = row.GetInt("ID");  // the id music items refer to as MvItemID
                    file->ShareFileType = 2;
                    file->FileName = row.GetString16("FileName");
                    file->FileNamePure = BaseNameWithoutExtension(file->FileName);
                    file->MD5 = HashOrZero(row.GetString16("FileHash"));
                    file->FileSize = row.GetInt("FileSize");
                    file->Duration = row.GetInt("Duration");
                    file->BitRate = row.GetInt("BitRate");
                    file->FileHashUpdateTime = row.GetInt64("HashUpdateTime");
                    file->OwnerCount = row.GetInt("OwnerCount");
                    file->LastWriteTime = row.GetInt64("LastWriteTime");
                    m_mv_items[file->old_id] = file;
                    tally.Made(file.get());
                    m_model->m_share_files.push_back(file);
                    return true;
                  })
      .ok;
}

// "MusicItems" of the "V1" layout. "MusicType" (the audio format) has no
// column in the new library; "StartTime" (a track's start inside a larger
// file) goes to the list entries as their cue start.
bool V6DataExporter::ReadMusicItems() {
  ReadProgressTicker ticker(this, CountRows(*m_db->connection(), "MusicItems"));
  RowQuery query{(boost::format("SELECT * FROM %s") % "MusicItems").str(), "MusicItems",
                 L"FileItems", &ticker};
  return ReadRows(query,
                  [this](DbRowReader& row, SourceTableTally& tally) {
                    auto file = std::make_shared<ShareFileItem>();
                    file->old_id = row.GetInt("ID");
                    file->FileName = row.GetString16("FileName");
                    file->FileNamePure = row.GetString16("Title");
                    if (file->FileNamePure.empty())
                      file->FileNamePure = BaseNameWithoutExtension(file->FileName);
                    file->FileSize = row.GetInt("FileSize");
                    file->LastWriteTime = row.GetInt64("LastWriteTime");
                    file->Duration = row.GetInt("Duration");
                    file->BitRate = row.GetInt("BitRate");
                    file->FileHashUpdateTime = row.GetInt64("HashUpdateTime");
                    file->OwnerCount = row.GetInt("OwnerCount");
                    file->MpegOffset = row.GetInt("MPEGOffset");
                    file->MpegSize = row.GetInt("MPEGSize");
                    file->ReplayGain = row.GetDouble("ReplayGain");
                    file->MD5 = HashOrZero(row.GetString16("FileHash"));
                    // The hash the online catalogue knows the file by.
                    file->MpegMD5 = HashOrZero(row.GetString16("InetHash"));
                    MusicEntry& entry = m_music_items[file->old_id];
                    entry.file = file;
                    entry.mv_id = row.GetInt("MvItemID");
                    entry.start_time = row.GetInt64("StartTime");
                    tally.Made(file.get());
                    m_model->m_share_files.push_back(file);
                    return true;
                  })
      .ok;
}

// "PlayListItems" of one "V2" library file: every row is a music item,
// remembered by its "ItemID" and library file N for the list reader.
bool V6DataExporter::ReadMusicItemsV2(int library_number) {
  ReadProgressTicker ticker(this, CountRows(*m_db->connection(), "PlayListItems"));
  RowQuery query{(boost::format("SELECT * FROM %s") % "PlayListItems").str(), kV2MusicItemsTable,
                 L"FileItemsV2", &ticker};
  return ReadRows(query,
                  [&](DbRowReader& row, SourceTableTally& tally) {
                    auto file = std::make_shared<ShareFileItem>();
                    file->old_id = m_next_v2_file_id++;
                    std::wstring folder = row.GetString16("Path");
                    std::wstring name = row.GetString16("FileName");
                    if (!folder.empty() && folder.back() != L'\\' && folder.back() != L'/')
                      folder += L'\\';
                    file->FileName = folder + name;
                    file->FileNamePure = BaseNameWithoutExtension(name);
                    file->FileSize = row.GetInt("FileSize");
                    file->Duration = row.GetInt("Duration");
                    file->BitRate = row.GetInt("BitRate");
                    file->MD5 = HashOrZero(row.GetString16("Hash"));
                    file->ReplayGain = row.GetDouble("ReplayGain");
                    m_v2_music_items[V2ItemKey(row.GetInt("ItemID"), library_number)].file = file;
                    tally.Made(file.get());
                    m_model->m_share_files.push_back(file);
                    return true;
                  })
      .ok;
}

bool V6DataExporter::ReadPlayLists(bool v2, int library_number) {
  sql::Connection& db = *m_db->connection();
  const char* query = db.DoesColumnExist("PlayLists", "SortID")
                          ? "SELECT * FROM PlayLists Order By SortID ASC"
                          : "SELECT * FROM PlayLists";
  std::vector<ListRef> default_lists, normal_lists;
  RowsRead lists = ReadRows({query, "PlayLists"}, [&](DbRowReader& row, SourceTableTally& tally) {
    int type = row.GetInt("PlayListType");
    bool is_default = type == 3;
    int source_id = row.GetInt("PlayListID");
    if (!is_default && type != 0 && type != 6 && type != 10) {
      int64_t entries = DropListEntries(source_id, v2, drop_reason::kEntryOfListNotImported);
      tally.Dropped("GeneralListTable", drop_reason::kListTypeNotImported, source_id,
                    row.GetString16("PlayListName"), entries);
      return false;
    }
    if (!is_default) {
      std::string count_query =
          v2 ? (boost::format("SELECT COUNT(*) AS ListItemCount FROM %s WHERE PlayListID = %d") %
                "PlayListItems" % source_id)
                   .str()
             : (boost::format("SELECT COUNT(*) AS ListItemCount FROM %s WHERE PlayListID = %d "
                              "and MusicItemID in (Select ID From MusicItems)") %
                "PlayListItems" % source_id)
                   .str();
      DbRowReader count(db, count_query);
      if (!count.Step() || count.GetInt("ListItemCount") < 1) {
        V6LOG(logging::LOG_PROGRESS)
            << L"There is no items under {TABLE: PlayListItems, PlayListID: " << source_id << L"}.";
        // Its entries, if any, name songs that are not in the library.
        int64_t entries = DropListEntries(source_id, v2, drop_reason::kListEntrySongMissing);
        tally.Dropped("GeneralListTable", drop_reason::kListWithoutEntries, source_id,
                      row.GetString16("PlayListName"), entries);
        return false;
      }
    }
    // A list id an earlier library file took is given the next free id, so
    // both lists keep their own table.
    int id = TakeListId(source_id);
    auto list = std::make_shared<PlayListInfo>();
    list->PlaylistID = id;
    int owner = row.GetInt("UserID");
    list->PlaylistName = row.GetString16("PlayListName");
    if (owner != 0)
      list->PlaylistName += L"-" + std::to_wstring(owner);
    if (is_default) {
      list->PlaylistType = 0;
      list->SortID = 0;
      list->PlaylistName = kDefaultListName;
      default_lists.push_back({source_id, id, true});
    } else {
      list->PlaylistType = 2;
      list->SortID = m_next_list_sort++;
      normal_lists.push_back({source_id, id, false});
    }
    tally.Made(list.get());
    m_model->m_play_lists.push_back(list);
    m_model->m_list_songs[id];  // the list has its table even without entries
    return true;
  });
  if (!lists.read && !lists.ok)
    return false;
  const wchar_t* prefix = v2 ? L"PlayListsV2" : L"PlayLists";
  V6LOG(logging::LOG_PROGRESS) << L"Size of " << prefix << L"::defaultListItems is {"
                               << default_lists.size() << L"}.";
  V6LOG(logging::LOG_PROGRESS) << L"Size of " << prefix << L"::normalListItems is {"
                               << normal_lists.size() << L"}.";
  // The lists are the rows of this reader: the progress moves by tenths of
  // them, each list read with its entries.
  ReadProgressTicker ticker(this, default_lists.size() + normal_lists.size());
  for (const auto* kind : {&default_lists, &normal_lists}) {
    for (const ListRef& list : *kind) {
      if (!ReadListItems(list, v2, library_number))
        lists.ok = false;
      ticker.Tick();
    }
  }
  // In the "V2" layout every row is a music item as well, whatever its list.
  if (!v2)
    DropEntriesOfNoList();
  return lists.ok;
}

int64_t V6DataExporter::DropListEntries(int source_id, bool v2, const DropReason& reason) {
  const std::string target = "GeneralList_" + std::to_string(source_id);
  // Only counted: the list itself is dropped whatever this finds.
  RowsRead entries = ReadRows(
      {(boost::format("SELECT * FROM PlayListItems WHERE PlayListID = %d") % source_id).str(),
       v2 ? kV2ListEntriesTable : "PlayListItems"},
      [&](DbRowReader& row, SourceTableTally& tally) {
        std::wstring title = v2 ? row.GetString16("Title") : std::wstring();
        if (title.empty())
          title = v2 ? row.GetString16("FileName") : MusicItemName(row.GetInt("MusicItemID"));
        tally.Dropped(target, reason, row.GetInt("ItemID"), title);
        return false;
      });
  return static_cast<int64_t>(entries.read);
}

void V6DataExporter::DropEntriesOfNoList() {
  // Only counted: the lists' entries are read above.
  (void)ReadRows({"SELECT * FROM PlayListItems i WHERE NOT EXISTS (SELECT 1 FROM PlayLists l "
                  "WHERE l.PlayListID = i.PlayListID)",
                  "PlayListItems"},
                 [](DbRowReader& row, SourceTableTally& tally) {
                   tally.Dropped("GeneralList_" + std::to_string(row.GetInt("PlayListID")),
                                 drop_reason::kListEntryWithoutList, row.GetInt("ItemID"),
                                 MusicItemName(row.GetInt("MusicItemID")));
                   return false;
                 });
}

void V6DataExporter::FillFromMusic(const MusicEntry& music, SongItem* song) const {
  FillSongFromFile(*music.file, song);
  song->mv_file_id = music.mv_id;
  song->CueBeginTime = music.start_time;
  auto mv = music.mv_id > 0 ? m_mv_items.find(music.mv_id) : m_mv_items.end();
  if (mv == m_mv_items.end())
    return;
  FillSongVideoFromFile(*mv->second, song);
}

bool V6DataExporter::ReadListItems(const ListRef& list, bool v2, int library_number) {
  std::string query =
      v2 ? (boost::format("SELECT * FROM %s Where PlayListID=%d") % "PlayListItems" %
            list.source_id)
               .str()
         : (boost::format("SELECT * FROM %s WHERE PlayListID = %d ORDER BY SortId") %
            "PlayListItems" % list.source_id)
               .str();
  SongList& songs = m_model->m_list_songs[list.id];
  // SongID is the key of the list's table: a repeated one takes the next
  // free number above the largest, so the entry is not lost. The ids are
  // kept apart from the entries (see LookupMap).
  std::pmr::monotonic_buffer_resource ids_memory;
  std::pmr::unordered_set<int> song_ids(&ids_memory);
  std::optional<int> largest_id;
  auto take_id = [&](int id) {
    song_ids.insert(id);
    largest_id = largest_id ? std::max(*largest_id, id) : id;
  };
  for (const auto& song : songs)
    take_id(song->SongID);
  const std::string target = "GeneralList_" + std::to_string(list.id);
  RowQuery entries_query{query, v2 ? kV2ListEntriesTable : "PlayListItems"};
  RowsRead entries = ReadRows(entries_query, [&](DbRowReader& row, SourceTableTally& tally) {
    const MusicEntry* music = nullptr;
    if (v2) {
      auto found = m_v2_music_items.find(V2ItemKey(row.GetInt("ItemID"), library_number));
      music = found == m_v2_music_items.end() ? nullptr : &found->second;
    } else {
      auto found = m_music_items.find(row.GetInt("MusicItemID"));
      music = found == m_music_items.end() ? nullptr : &found->second;
    }
    if (!music) {
      std::wstring title = v2 ? row.GetString16("Title") : std::wstring();
      if (title.empty())
        title = v2 ? row.GetString16("FileName") : MusicItemName(row.GetInt("MusicItemID"));
      tally.Dropped(target, drop_reason::kListEntrySongMissing, row.GetInt("ItemID"), title);
      return false;
    }
    auto song = std::make_shared<SongItem>();
    FillFromMusic(*music, song.get());
    song->SongID = row.GetInt("ItemID");
    if (song_ids.count(song->SongID) && *largest_id < std::numeric_limits<int>::max())
      song->SongID = *largest_id + 1;
    take_id(song->SongID);
    song->PlayCount = row.GetInt("PlayCount");
    song->SortID = row.GetInt("SortID");
    song->CreationTime = row.GetInt64("CreationTime");
    song->LastPlayTime = row.GetInt64("LastPlayTime");
    if (v2) {
      std::wstring title = row.GetString16("Title");
      song->TitleName = title.empty() ? row.GetString16("FileName") : title;
      song->MusicFileHash = HashOrZero(row.GetString16("Hash"));
      song->SongItemType = row.GetInt("MediaFileType");
      song->CueBeginTime = row.GetInt64("StartTime");
      song->CueEndTime = row.GetInt64("EndTime");
    }
    tally.Made(song.get());
    songs.push_back(song);
    return true;
  });
  if (v2) {
    V6LOG(logging::LOG_PROGRESS) << L" Size of PlayListItemsV2{userID: << " << library_number
                                 << L", ID=" << list.source_id << L"} is {TOTAL:" << entries.read
                                 << L", LOADED:" << entries.kept << L"}.";
  } else {
    V6LOG(logging::LOG_PROGRESS) << L" Size of PlayListItems(ID=" << list.source_id
                                 << L") is {TOTAL:" << entries.read << L", LOADED:" << entries.kept
                                 << L"}.";
  }
  return entries.ok;
}

// "Downing": downloads not finished yet. In the "V2" layout "MusicID" names
// a music item of the library file, while the model knows "V2" items only
// by made-up old ids (from 1 up): the download keeps old id 0, which names no
// file, and is found by its hash or not at all.
bool V6DataExporter::ReadUnfinishedDownloads(bool v2) {
  RowQuery query{"Select * From Downing", "Downing", L"DownFile"};
  return ReadRows(query,
                  [this, v2](DbRowReader& row, SourceTableTally& tally) {
                    auto download = std::make_shared<DownloadRecord>();
                    download->file_id = v2 ? 0 : row.GetInt("MusicID");
                    download->MD5 = HashOrZero(row.GetString16("FileHash"));
                    download->DestFileName = row.GetString16("DestFileName");
                    download->TempFileName = row.GetString16("TempFileName");
                    download->FileSize = row.GetInt("FileSize");
                    download->DownType = row.GetInt("DownType");
                    download->FileName = BaseNameWithoutExtension(download->DestFileName);
                    tally.Made(download.get());
                    m_model->m_downloads.push_back(download);
                    return true;
                  })
      .ok;
}

// "DownHistory": finished downloads, found again by their hash.
bool V6DataExporter::ReadFinishedDownloads() {
  RowQuery query{"Select * From DownHistory", "DownHistory", L"DownHistroy"};
  return ReadRows(query,
                  [this](DbRowReader& row, SourceTableTally& tally) {
                    auto download = std::make_shared<DownloadRecord>();
                    download->DestFileName = row.GetString16("FileName");
                    download->FileName = BaseNameWithoutExtension(download->DestFileName);
                    download->FileSize = row.GetInt("FileSize");
                    download->Method = row.GetInt("Method");
                    download->StartTime = row.GetInt64("StartTime");
                    download->CompleteTime = row.GetInt64("CompleteTime");
                    download->RelevanceFileHash = HashOrZero(row.GetString16("InetHash"));
                    download->MD5 = HashOrZero(row.GetString16("FileHash"));
                    download->Percent = 100;
                    tally.Made(download.get());
                    m_model->m_downloads.push_back(download);
                    return true;
                  })
      .ok;
}

}  // namespace data_importer
