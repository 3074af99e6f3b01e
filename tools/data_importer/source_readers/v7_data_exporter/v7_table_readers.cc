// The table readers of the generation-7 exporter. Each runs one query and
// turns every row into one model record; a column the row lacks reads as 0
// or empty, a NULL as 0 or empty. Times are carried in the source's units.
// Columns that have no field in the new databases are named where they are
// read and not carried.

#include <string_view>
#include <unordered_map>
#include <vector>

#include <boost/format.hpp>

#include "logging/logging.h"
#include "tools/data_importer/database_helper/db_row_reader.h"
#include "tools/data_importer/run_record/import_report.h"
#include "tools/data_importer/source_readers/source_reader_util.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/source_readers/v7_data_exporter/v7_data_exporter.h"

namespace data_importer {

namespace {

// What generation 7 stored in a text field whose file link the user took
// away: a single blank. It is shown as the unlinked mark.
std::wstring MarkUnlinked(std::wstring text) {
  return text == L" " ? std::wstring(kUnlinkedFileMark) : text;
}

// "PlayListItems" is read once per list for the lists' entries and once for
// the entries of the recently-played lists; the report counts the two reads
// apart.
constexpr char kListEntriesTable[] = "PlayListItems";
constexpr char kRecentEntriesTable[] = "PlayListItems (recently played)";

// The lists the list reader's query leaves out, for the import report only:
// the complement of its condition (a NULL counts as not taken), less the
// lists of what was played last (type 5), which are no lists of the new
// library; their entries are counted as the recently-played list's.
constexpr char kListsLeftOutQuery[] =
    "select PlayListID, PlayListName, ifnull(PlayListType, -1) as ListType from PlayLists "
    "where not ifnull((PlayListType = 0 and PlayListid in (select Playlistid from "
    "PlayListItems)) or PlayListType = 1, 0) and ifnull(PlayListType, -1) <> 5";

// A list entry of |row| whose music item was not imported, dropped on its
// way to |target|.
void DropEntry(SourceTableTally* tally, const std::string& target, DbRowReader& row) {
  tally->Dropped(target, drop_reason::kListEntrySongMissing, row.GetInt("ItemID"),
                 MusicItemName(row.GetInt("FileItemID")));
}

// Text as it can stand between single quotes in a statement.
std::string QuoteDoubled(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  for (char c : text) {
    out.push_back(c);
    if (c == '\'')
      out.push_back('\'');
  }
  return out;
}

}  // namespace

// "FileItems": the library. Each item's kind is what
// "select ItemType from PlayListItems where FileItemId = %d" answers for it,
// the first row's "ItemType". That query would scan the entries once per
// item (100,000 scans on a large library), so the kinds of all items are
// read beforehand in one pass over "PlayListItems" in the same row order,
// keeping the first row of each item: the same answer, one scan.
//
// Columns without a field in the new library: "FileType" (the audio
// format; the kind comes from "ItemType"), "ItemState" and "MVChannel".
// "CloudServer" goes to CDNFlag (where the file is served from);
// "MVItemID", "StartTime" and "PlayCount" go to the item's list entries.
bool V7DataExporter::ReadMusicItems() {
  sql::Connection& db = *m_db->connection();
  std::unordered_map<int, int> kinds;
  {
    DbRowReader kind(db, "select FileItemId, ItemType from PlayListItems");
    while (kind.Step())
      kinds.emplace(kind.GetInt("FileItemId"), kind.GetInt("ItemType"));
  }

  ReadProgressTicker ticker(this, CountRows(db, "FileItems"));
  RowQuery query{"select * from FileItems", "FileItems", L"FileItems", &ticker};
  return ReadRows(query,
                  [&](DbRowReader& row, SourceTableTally& tally) {
                    auto file = std::make_shared<ShareFileItem>();
                    file->old_id = row.GetInt("FileItemID");
                    auto kind = kinds.find(file->old_id);
                    file->ShareFileType = kind == kinds.end() ? 0 : kind->second;
                    file->FileName = MarkUnlinked(row.GetString16("FileName"));
                    file->FileNamePure = MarkUnlinked(row.GetString16("Title"));
                    if (file->FileNamePure.empty())
                      file->FileNamePure = BaseNameWithoutExtension(file->FileName);
                    file->FileSize = row.GetInt("FileSize");
                    file->LastWriteTime = row.GetInt64("LastWriteTime");
                    file->Duration = row.GetInt("Duration");
                    file->BitRate = row.GetInt("BitRate");
                    file->MD5 = HashOrZero(row.GetString16("FileHash"));
                    file->FileHashUpdateTime = row.GetInt64("HashUpdateTime");
                    file->OwnerCount = row.GetInt("OwnerCount");
                    file->MpegOffset = row.GetInt("MPEGOffset");
                    file->MpegSize = row.GetInt("MPEGSize");
                    file->LyricFile = MarkUnlinked(row.GetString16("LyricFile"));
                    file->ReplayGain = row.GetDouble("ReplayGain");
                    file->CDNFlag = row.GetInt("CloudServer");
                    file->FileSource = MarkUnlinked(row.GetString16("FileSource"));
                    // The hash the online catalogue knows the file by.
                    file->MpegMD5 = HashOrZero(row.GetString16("InetHash"));
                    MusicEntry& entry = m_music_items[file->old_id];
                    entry.file = file;
                    entry.mv_id = row.GetInt("MVItemID");
                    entry.play_count = row.GetInt("PlayCount");
                    entry.start_time = row.GetInt64("StartTime");
                    tally.Made(file.get());
                    m_model->m_share_files.push_back(std::move(file));
                    return true;
                  })
      .ok;
}

// An entry refers to its music item by "FileItemID"; entries of items that
// were not imported are dropped. An item whose path holds the unlinked mark
// keeps its entry, but without a path: the entry stays in its list as one
// the player cannot play until the user links a file again.
std::shared_ptr<SongItem> V7DataExporter::MakeListEntry(DbRowReader& row) const {
  auto found = m_music_items.find(row.GetInt("FileItemID"));
  if (found == m_music_items.end())
    return nullptr;
  const MusicEntry& music = found->second;
  auto song = std::make_shared<SongItem>();
  FillSongFromFile(*music.file, song.get());
  if (music.file->FileName == kUnlinkedFileMark)
    song->MusicFilePath.clear();
  // "MVItemID" names the music item that is the entry's MV.
  song->mv_file_id = music.mv_id;
  auto video = music.mv_id > 0 ? m_music_items.find(music.mv_id) : m_music_items.end();
  if (video != m_music_items.end())
    FillSongVideoFromFile(*video->second.file, song.get());
  song->PlayCount = music.play_count;
  song->CueBeginTime = music.start_time;
  song->SongID = row.GetInt("ItemID");
  song->SortID = row.GetInt("SortID");
  song->CreationTime = row.GetInt64("CreationTime");
  song->LastPlayTime = row.GetInt64("LastPlayTime");
  return song;
}

// "PlayLists": the default list (type 1) and the ordinary lists (type 0)
// that have entries; every other type is left to its own reader or not
// imported. Each list's entries are read after all lists.
bool V7DataExporter::ReadPlayLists() {
  sql::Connection& db = *m_db->connection();
  RowQuery query{
      "select * from PlayLists where (PlayListType = 0 and PlayListid in (select "
      "Playlistid from PlayListItems)) or PlayListType = 1 order by PlayListType",
      "PlayLists", L"PlayLists"};
  std::vector<int> list_ids;
  RowsRead lists = ReadRows(query, [&](DbRowReader& row, SourceTableTally& tally) {
    auto list = std::make_shared<PlayListInfo>();
    list->PlaylistID = row.GetInt("PlayListID");
    list->PlaylistName = row.GetString16("PlayListName");
    list->SortID = row.GetInt("SortID");
    list->PlaylistType = 2;
    if (row.GetInt("PlayListType") == 1) {
      list->PlaylistType = 0;
      list->PlaylistName = kDefaultListName;
    }
    list_ids.push_back(list->PlaylistID);
    tally.Made(list.get());
    m_model->m_list_songs[list->PlaylistID];  // its table exists even when empty
    m_model->m_play_lists.push_back(std::move(list));
    return true;
  });
  if (!lists.read && !lists.ok)
    return false;
  DropListsLeftOut();

  // The entries are read one list at a time, by list id. Generation 7 kept no
  // index for that, and without one every list would scan all entries of
  // all lists; the index goes into our own work copy only (the backup and
  // the intermediate copy were taken before). Without it (a read-only copy)
  // the lists are still read, only slower.
  if (!db.Execute("CREATE INDEX IF NOT EXISTS ImportListEntries ON PlayListItems(PlayListID)"))
    V7LOG(logging::LOG_FAILURE) << L"No index on {PlayListItems}; reading the lists without.";

  ReadProgressTicker ticker(this, static_cast<int64_t>(list_ids.size()));
  for (int id : list_ids) {
    if (!ReadListItems(id))
      lists.ok = false;
    ticker.Tick();
  }
  return lists.ok;
}

void V7DataExporter::DropListsLeftOut() {
  // Only counted: a failure here loses no list, the reader above has
  // reported its own.
  (void)ReadRows({kListsLeftOutQuery, "PlayLists"}, [&](DbRowReader& row, SourceTableTally& tally) {
    const int list_id = row.GetInt("PlayListID");
    int64_t entries = 0;
    (void)ReadRows(
        {(boost::format("select * from PlayListItems where PlayListID = %d") % list_id).str(),
         kListEntriesTable},
        [&](DbRowReader& entry, SourceTableTally& entry_tally) {
          ++entries;
          entry_tally.Dropped("GeneralList_" + std::to_string(list_id),
                              drop_reason::kEntryOfListNotImported, entry.GetInt("ItemID"),
                              MusicItemName(entry.GetInt("FileItemID")));
          return false;
        });
    tally.Dropped("GeneralListTable",
                  row.GetInt("ListType") == 0 ? drop_reason::kListWithoutEntries
                                              : drop_reason::kListTypeNotImported,
                  list_id, row.GetString16("PlayListName"), entries);
    return false;
  });
  // Entries whose list is gone (a NULL list id included).
  (void)ReadRows({"select * from PlayListItems i where not exists (select 1 from PlayLists l "
                  "where l.PlayListID = i.PlayListID)",
                  kListEntriesTable},
                 [&](DbRowReader& row, SourceTableTally& tally) {
                   tally.Dropped("GeneralList_" + std::to_string(row.GetInt("PlayListID")),
                                 drop_reason::kListEntryWithoutList, row.GetInt("ItemID"),
                                 MusicItemName(row.GetInt("FileItemID")));
                   return false;
                 });
}

bool V7DataExporter::ReadListItems(int list_id) {
  RowQuery query{
      (boost::format("select * from PlayListItems where playListID = %d order by SortId") % list_id)
          .str(),
      kListEntriesTable};
  SongList& songs = m_model->m_list_songs[list_id];
  const std::string target = "GeneralList_" + std::to_string(list_id);
  RowsRead entries = ReadRows(query, [&](DbRowReader& row, SourceTableTally& tally) {
    if (auto song = MakeListEntry(row)) {
      tally.Made(song.get());
      songs.push_back(std::move(song));
      return true;
    }
    DropEntry(&tally, target, row);
    return false;
  });
  V7LOG(logging::LOG_PROGRESS) << L" Size of PlayListItems(ID=" << list_id << L") is {TOTAL:"
                               << entries.read << L", LOADED:" << songs.size() << L"}.";
  return entries.ok;
}

// Entries of the lists of type 5, the lists of what was played last. They
// become the recently-played list of the new library ("RecentlyPlayedItem"),
// in the order of their lists and positions; "PlayListId" has no column
// there and is not carried.
bool V7DataExporter::ReadType5ListItems() {
  RowQuery query{
      "select * from PlayListItems where PlayListID in (select PlayListId from "
      "PlayLists where PlayListType=5) order by PlayListId, SortId",
      kRecentEntriesTable, L"RecentPlayListItems"};
  return ReadRows(query,
                  [this](DbRowReader& row, SourceTableTally& tally) {
                    if (auto song = MakeListEntry(row)) {
                      tally.Made(song.get());
                      m_model->m_recent_songs.push_back(std::move(song));
                      return true;
                    }
                    DropEntry(&tally, "RecentlyPlayedItem", row);
                    return false;
                  })
      .ok;
}

// "Downing": downloads not finished yet. "MusicID" is the music item's id.
// The display name is the row's "FileName", or when it has none the base
// name of "DestFileName" without extension.
bool V7DataExporter::ReadUnfinishedDownloads() {
  RowQuery query{"select * from Downing", "Downing", L"DownFile"};
  return ReadRows(query,
                  [this](DbRowReader& row, SourceTableTally& tally) {
                    auto download = std::make_shared<DownloadRecord>();
                    download->file_id = row.GetInt("MusicID");
                    download->FileID = download->file_id;
                    download->DestFileName = row.GetString16("DestFileName");
                    download->FileName = row.GetString16("FileName");
                    if (download->FileName.empty())
                      download->FileName = BaseNameWithoutExtension(download->DestFileName);
                    download->FileSize = row.GetInt("FileSize");
                    download->MD5 = HashOrZero(row.GetString16("FileHash"));
                    download->Method = row.GetInt("Method");
                    download->StartTime = row.GetInt64("StartTime");
                    download->DownType = row.GetInt("DownType");
                    download->DestFileNameSaveAs = row.GetString16("DestFileNameEx");
                    download->TempFileName = row.GetString16("TempFileName");
                    download->Percent = row.GetInt("Percent");
                    download->DownFailed = row.GetInt("DownFailed") != 0;
                    tally.Made(download.get());
                    m_model->m_downloads.push_back(std::move(download));
                    return true;
                  })
      .ok;
}

// "DownHistory": finished downloads. The row supplies no file hash (the
// hash stays all zero) and names the file by its path and by "InetHash", the
// catalogue's hash of the track. The download is tied to the library item
// with the same path; when none has it (the file was moved or renamed after
// its download), to the item whose "InetHash" or "FileHash" equals the
// row's (a downloaded file's catalogue hash is its content hash). A row
// that neither finds keeps no file and is dropped by the writer, reported.
bool V7DataExporter::ReadFinishedDownloads() {
  // The lowest id wins where several items share a path or a hash. The keys
  // are the items' own texts, which the model keeps beyond this reader.
  std::unordered_map<std::wstring_view, int> file_by_path;
  std::unordered_map<std::wstring_view, int> file_by_hash;
  auto keep_lowest = [](std::unordered_map<std::wstring_view, int>* map, std::wstring_view key,
                        int id) {
    auto [entry, added] = map->emplace(key, id);
    if (!added && id < entry->second)
      entry->second = id;
  };
  file_by_path.reserve(m_music_items.size());
  for (const auto& [id, music] : m_music_items) {
    if (!music.file->FileName.empty() && music.file->FileName != kUnlinkedFileMark)
      keep_lowest(&file_by_path, music.file->FileName.view(), id);
    for (const NullableText* hash : {&music.file->MpegMD5, &music.file->MD5}) {
      if (IsFileHash(*hash))
        keep_lowest(&file_by_hash, hash->text.view(), id);
    }
  }
  auto find = [](const std::unordered_map<std::wstring_view, int>& map, std::wstring_view key) {
    auto found = map.find(key);
    return found == map.end() ? 0 : found->second;
  };
  RowQuery query{"select * from DownHistory", "DownHistory", L"DownHistroy"};
  return ReadRows(query,
                  [&](DbRowReader& row, SourceTableTally& tally) {
                    auto download = std::make_shared<DownloadRecord>();
                    download->DestFileName = row.GetString16("FileName");
                    download->FileName = BaseNameWithoutExtension(download->DestFileName);
                    download->RelevanceFileHash = HashOrZero(row.GetString16("InetHash"));
                    int file_id = find(file_by_path, download->DestFileName);
                    if (file_id == 0)
                      file_id = find(file_by_hash, download->RelevanceFileHash.text.view());
                    download->file_id = file_id;
                    download->FileID = file_id;
                    download->FileSize = row.GetInt("FileSize");
                    download->MD5 = kNoFileHash;
                    download->Method = row.GetInt("Method");
                    download->StartTime = row.GetInt64("StartTime");
                    download->CompleteTime = row.GetInt64("CompleteTime");
                    download->Percent = 100;
                    tally.Made(download.get());
                    m_model->m_downloads.push_back(std::move(download));
                    return true;
                  })
      .ok;
}

// "ShareFolders": the folders the library watches.
bool V7DataExporter::ReadShareFolders() {
  RowQuery query{"select * from ShareFolders", "ShareFolders", L"ShareFolders"};
  return ReadRows(query,
                  [this](DbRowReader& row, SourceTableTally& tally) {
                    auto folder = std::make_shared<ShareFolderItem>();
                    folder->old_id = row.GetInt("ShareFolderID");
                    folder->Path = row.GetString16("FolderPath");
                    folder->LastModifyTime = row.GetInt64("LastModifyTime");
                    folder->AddType = row.GetInt("AddType");
                    m_share_folders.emplace(folder->old_id, folder);
                    tally.Made(folder.get());
                    m_model->m_share_folders.push_back(std::move(folder));
                    return true;
                  })
      .ok;
}

// "FolderItems": the files found in the watched folders with their sort
// letters. The new table is keyed by the file's path, which comes from the
// music item; a row whose music item was not imported has no path and is
// dropped. Artist and album also fill the music item's own fields when it
// has none.
bool V7DataExporter::ReadFolderItems() {
  sql::Connection& db = *m_db->connection();
  if (!db.DoesTableExist("FolderItems")) {
    V7LOG(logging::LOG_FAILURE) << L"Table {FolderItems} do not exists.";
    return false;
  }
  RowQuery query{"select * from FolderItems", "FolderItems", L"FolderItems"};
  return ReadRows(query,
                  [this](DbRowReader& row, SourceTableTally& tally) {
                    auto music = m_music_items.find(row.GetInt("FileItemID"));
                    if (music == m_music_items.end()) {
                      tally.Dropped("LocalFiles", drop_reason::kFolderFileMissing,
                                    row.GetInt("FileItemID"),
                                    MusicItemName(row.GetInt("FileItemID")));
                      return false;
                    }
                    ShareFileItem& file = *music->second.file;
                    auto local = std::make_shared<LocalFileInfo>();
                    local->old_file_id = file.old_id;
                    local->old_folder_id = row.GetInt("ShareFolderID");
                    auto folder = m_share_folders.find(local->old_folder_id);
                    if (folder != m_share_folders.end())
                      local->FolderPath = folder->second->Path;
                    local->FilePath = file.FileName;
                    local->FileSize = file.FileSize;
                    local->LastWriteTime = file.LastWriteTime;
                    local->Artist = row.GetString16("Artist");
                    local->Album = row.GetString16("Album");
                    local->SimpLetterByArtist = row.GetString16("SimpLetterByArtist");
                    local->FullLetterByArtist = row.GetString16("FullLetterByArtist");
                    local->SimpLetterByTitle = row.GetString16("SimpLetterByTitle");
                    local->FullLetterByTitle = row.GetString16("FullLetterByTitle");
                    local->SimpTitle = row.GetString16("SimpTitle");
                    if (file.Artist.empty())
                      file.Artist = local->Artist;
                    if (file.Album.empty())
                      file.Album = local->Album;
                    tally.Made(local.get());
                    m_model->m_local_files.push_back(std::move(local));
                    return true;
                  })
      .ok;
}

// "RadioListNJPlayedItems": hashes of the radio songs already played.
bool V7DataExporter::ReadPlayedRadioSongs() {
  sql::Connection& db = *m_db->connection();
  if (!db.DoesTableExist("RadioListNJPlayedItems"))
    return false;
  RowQuery query{"select * from RadioListNJPlayedItems", "RadioListNJPlayedItems",
                 L"RadioListNJPlayedItems"};
  return ReadRows(query,
                  [this](DbRowReader& row, SourceTableTally& tally) {
                    auto played = std::make_shared<PlayedRadioRecord>();
                    played->Hash = HashOrZero(row.GetString16("filehash"));
                    tally.Made(played.get());
                    m_model->m_played_radio.push_back(std::move(played));
                    return true;
                  })
      .ok;
}

// "RadioList": the channels. A channel's source row has no number of its
// own that the new tables could use, so the channels are numbered 1, 2, ...
// in the order read; that number is the channel's ID and the key of its
// song table. "listorder" is the sort position, "hotlevel" the heat,
// "lastsong" the last played position, "ugc*" the user list behind a
// channel. The songs of every channel follow; a missing song table is a
// failure of this reader, but the channels stay imported.
bool V7DataExporter::ReadRadioChannels() {
  sql::Connection& db = *m_db->connection();
  if (!db.DoesTableExist("RadioList")) {
    V7LOG(logging::LOG_FAILURE) << L"Table {RadioList} do not exists.";
    return false;
  }
  struct ChannelKey {
    std::string fm_id;
    int fm_type;
    int channel_id;
  };
  std::vector<ChannelKey> keys;
  RowQuery query{"select * from RadioList", "RadioList", L"RadioList"};
  RowsRead channels = ReadRows(query, [&](DbRowReader& row, SourceTableTally& tally) {
    auto channel = std::make_shared<RadioChannelInfo>();
    channel->ID = ++m_next_radio_channel_id;
    channel->FMID = row.GetString16("fmid");
    channel->FMName = row.GetString16("fmname");
    channel->FMType = row.GetInt("fmtype");
    channel->ClassID = row.GetInt("classid");
    channel->ClassName = row.GetString16("classname");
    channel->Offset = row.GetString16("offset");
    channel->Heat = row.GetInt("hotlevel");
    channel->ImageURL24 = row.GetString16("imgurl");
    channel->ImageURL32 = row.GetString16("imgurl32");
    channel->Description = row.GetString16("description");
    channel->SortID = row.GetInt("listorder");
    channel->IsCloud = row.GetInt("iscloud");
    channel->LastPlayPos = row.GetInt("lastsong");
    channel->FMUserID = row.GetInt("ugcuserid");
    channel->FMListID = row.GetInt("ugclistid");
    channel->FMListVersion = row.GetInt("ugclistversion");
    channel->FMStatus = row.GetInt("ugcstatus");
    keys.push_back({row.GetString("fmid"), channel->FMType, channel->ID});
    tally.Made(channel.get());
    m_model->m_radio_songs[channel->ID];  // its table exists even without songs
    m_model->m_radio_channels.push_back(std::move(channel));
    return true;
  });
  if (!channels.read && !channels.ok)
    return false;
  if (!db.DoesTableExist("RadioListSongs")) {
    V7LOG(logging::LOG_FAILURE) << L"Table {RadioListSongs} do not exists.";
    return false;
  }
  bool ok = channels.ok;
  for (const ChannelKey& key : keys)
    ok = ReadRadioSongs(key.fm_id, key.fm_type, key.channel_id) && ok;
  DropRadioSongsOfNoChannel();
  return ok;
}

void V7DataExporter::DropRadioSongsOfNoChannel() {
  // Only counted: the channels' songs are read above.
  (void)ReadRows({"select * from RadioListSongs s where not exists (select 1 from RadioList c "
                  "where c.fmid = s.fmid and c.fmtype = s.fmtype)",
                  "RadioListSongs"},
                 [](DbRowReader& row, SourceTableTally& tally) {
                   tally.Dropped("RadioChannel", drop_reason::kRadioSongWithoutChannel,
                                 row.GetInt("fileid"), row.GetString16("filename"));
                   return false;
                 });
}

// "RadioListSongs" of one channel, in their stored order, numbered from 1
// as entry id and sort position. "fileext" and "isfilehead" have no column
// in the new song table; "filetime" is the song's length.
bool V7DataExporter::ReadRadioSongs(const std::string& fm_id, int fm_type, int channel_id) {
  // The id goes into the statement as UTF-8 text; an apostrophe in it is
  // doubled so that the literal stays one.
  RowQuery query{(boost::format("select * from RadioListSongs where fmid='%s' and fmtype=%d") %
                  QuoteDoubled(fm_id) % fm_type)
                     .str(),
                 "RadioListSongs"};
  SongList& songs = m_model->m_radio_songs[channel_id];
  return ReadRows(query,
                  [&songs](DbRowReader& row, SourceTableTally& tally) {
                    auto song = std::make_shared<SongItem>();
                    song->SongID = static_cast<int>(songs.size()) + 1;
                    song->SortID = song->SongID;
                    song->MusicFileHash = HashOrZero(row.GetString16("filehash"));
                    song->MusicFileSize = row.GetInt("filesize");
                    song->MusicFileDuration = row.GetInt("filetime");
                    song->MusicFileBitrate = row.GetInt("filebitrate");
                    song->TitleName = row.GetString16("filename");
                    song->ServerFileID = row.GetInt("fileid");
                    song->ImageURL = row.GetString16("imgurl80");
                    tally.Made(song.get());
                    songs.push_back(std::move(song));
                    return true;
                  })
      .ok;
}

// "RadioListDislikeSongs": songs the user asked never to hear again;
// "filetype" is the kind of the dislike.
bool V7DataExporter::ReadDislikedRadioSongs() {
  sql::Connection& db = *m_db->connection();
  if (!db.DoesTableExist("RadioListDislikeSongs"))
    return false;
  RowQuery query{"select * from RadioListDislikeSongs", "RadioListDislikeSongs",
                 L"RadioListDislikeSongs"};
  return ReadRows(query,
                  [this](DbRowReader& row, SourceTableTally& tally) {
                    auto dislike = std::make_shared<DislikeRadioRecord>();
                    dislike->Hash = HashOrZero(row.GetString16("FileHash"));
                    dislike->DislikeType = row.GetInt("filetype");
                    tally.Made(dislike.get());
                    m_model->m_dislike_radio.push_back(std::move(dislike));
                    return true;
                  })
      .ok;
}

}  // namespace data_importer
