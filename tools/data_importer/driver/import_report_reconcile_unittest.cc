// The import report adds up for the generation-7 import, the re-import of
// the current generation's plain databases and the version-2 tasks: every
// source row is found again as a written row, a drop with its reason, or (a
// repeated download history row) merged into the download it repeats.

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "base/file_util.h"
#include "base/json_file.h"
#include "sql/connection.h"
#include "sql/statement.h"
#include "testing/fixtures/generation7_fixture.h"
#include "testing/fixtures/version2_fixture.h"
#include "tools/data_importer/environment/data_folder.h"
#include "tools/data_importer/data_importer_main.h"
#include "tools/data_importer/run_record/import_report.h"
#include "testing/importer_test_util.h"
#include "testing/test_support.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/target_store/build_sequence.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/target_store/import_model_test_util.h"
#include "tools/data_importer/version3_upgrade/upgrade_tasks.h"

namespace data_importer {

namespace {

int64_t CountQuery(sql::Connection* db, const std::string& query) {
  sql::Statement count(db->GetUniqueStatement(query.c_str()));
  return count.Step() ? count.ColumnInt64(0) : -1;
}

std::string FirstText(sql::Connection* db, const std::string& query) {
  sql::Statement row(db->GetUniqueStatement(query.c_str()));
  return row.Step() ? row.ColumnString(0) : std::string();
}

int64_t Dropped(const base::Value& report, const std::string& reason) {
  const base::Value* drop = FindEntry(report["dropped"], "reason", reason);
  return drop ? (*drop)["count"].get<int64_t>() : 0;
}

// The source tables of |report| as table -> (rows read, rows merged).
std::map<std::string, std::pair<int64_t, int64_t>> SourceTables(const base::Value& report) {
  std::map<std::string, std::pair<int64_t, int64_t>> tables;
  for (const auto& table : report["source_tables"]) {
    auto& counts = tables[table["table"].get<std::string>()];
    counts.first += table["rows_read"].get<int64_t>();
    counts.second += table["rows_merged"].get<int64_t>();
  }
  return tables;
}

// Rows per user table of a database, opened plain or with the version-3 key.
std::map<std::string, int64_t> Rows(const base::FilePath& path, bool keyed) {
  std::map<std::string, int64_t> rows;
  sql::Connection db;
  if (keyed ? !db.OpenWithKey(path, kVersion3DatabaseKey) : !db.Open(path))
    return rows;
  for (const std::string& table : TableNames(&db))
    rows[table] = TableRowCount(&db, table);
  return rows;
}

class ImportReportReconcileTest : public testing::Test {
 protected:
  base::FilePath Data(const wchar_t* name) const { return m_profile.data_folder().Append(name); }

  base::Value ReadReport() { return ReadImportReport(m_profile.data_folder()); }

  TestProfile m_profile;
};

// The sample installation has an entry whose music is gone, a list without
// entries and a list of a type that is not imported (with entries); added
// here: a recently-played entry and a folder item whose music is gone, a
// download that finds no file, an entry of no list and a radio song of no
// channel. Every row of each source table, counted in the source itself, is
// accounted for.
TEST_F(ImportReportReconcileTest, Generation7EveryRowAccountedFor) {
  V7Database db = MakeSampleV7Database({30, 2, 20, 6, 2});
  db.items.push_back({9001, 5, 7777, 0, 50, 0, 0});
  db.items.push_back({9002, 4321, 1, 0, 0, 0, 0});
  db.radio_songs.push_back({L"gone", 3, L"DDDDDDDDDDDDDDDDDDDDDDDDDDDDDDDD", L"Lone Song", 555});
  db.folder_items.push_back({1, 8888, L"Nobody", L"Nowhere", L"Nx"});
  V7Download lost;
  lost.music_id = 9999;
  lost.dest_file_name = L"D:\\Down\\Lost.mp3";
  lost.hash = L"EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEE";
  db.downloads.push_back(lost);
  base::FilePath source = Generation7Folder(m_profile.roaming()).Append(L"VTData.db");
  ASSERT_TRUE(db.Write(source));

  DataImporterMain();
  base::Value report = ReadReport();
  ASSERT_TRUE(report.is_object());
  EXPECT_EQ("importvantu7", report["task"]["name"]);
  EXPECT_EQ(3, report["task"]["import_kind"]);

  sql::Connection src;
  ASSERT_TRUE(src.Open(source));
  const std::map<std::string, std::string> expected = {
      {"FileItems", "select count(*) from FileItems"},
      // The lists of what was played last count by their entries.
      {"PlayLists", "select count(*) from PlayLists where PlayListType <> 5"},
      {"PlayListItems",
       "select count(*) from PlayListItems where PlayListID not in (select PlayListID from "
       "PlayLists where PlayListType = 5)"},
      {"PlayListItems (recently played)",
       "select count(*) from PlayListItems where PlayListID in (select PlayListID from "
       "PlayLists where PlayListType = 5)"},
      {"Downing", "select count(*) from Downing"},
      {"DownHistory", "select count(*) from DownHistory"},
      {"ShareFolders", "select count(*) from ShareFolders"},
      {"FolderItems", "select count(*) from FolderItems"},
      {"RadioListNJPlayedItems", "select count(*) from RadioListNJPlayedItems"},
      {"RadioList", "select count(*) from RadioList"},
      {"RadioListSongs", "select count(*) from RadioListSongs"},
      {"RadioListDislikeSongs", "select count(*) from RadioListDislikeSongs"},
  };
  auto tables = SourceTables(report);
  EXPECT_EQ(expected.size(), tables.size()) << report["source_tables"].dump();
  for (const auto& [table, query] : expected) {
    int64_t rows = CountQuery(&src, query);
    EXPECT_LT(0, rows) << table;
    EXPECT_EQ(rows, tables[table].first) << table;
  }
  ExpectReportReconciles(report, m_profile.data_folder());

  EXPECT_EQ(2, Dropped(report, "list_entry_song_missing"));
  EXPECT_EQ(1, Dropped(report, "list_without_entries"));
  EXPECT_EQ(1, Dropped(report, "list_type_not_imported"));
  EXPECT_EQ(1, Dropped(report, "folder_file_missing"));
  EXPECT_EQ(1, Dropped(report, "download_unresolved"));
  EXPECT_EQ(1, Dropped(report, "list_entry_without_list"));
  // The sample's song of another channel type, and the one added here.
  EXPECT_EQ(2, Dropped(report, "radio_song_without_channel"));
  const base::Value* other_type = FindEntry(report["dropped"], "reason", "list_type_not_imported");
  ASSERT_TRUE(other_type);
  EXPECT_EQ("Cloud list", (*other_type)["examples"][0]["name"]);
  EXPECT_EQ("PlayLists", (*other_type)["examples"][0]["table"]);
  const int64_t cloud_entries =
      CountQuery(&src, "select count(*) from PlayListItems where PlayListID = " +
                           std::to_string((*other_type)["examples"][0]["old_id"].get<int64_t>()));
  EXPECT_LT(0, cloud_entries);
  EXPECT_EQ(cloud_entries, (*other_type)["examples"][0]["entries"]);
  EXPECT_EQ(cloud_entries, Dropped(report, "list_entry_of_list_not_imported"));
  const base::Value* lone = FindEntry(report["dropped"], "reason", "radio_song_without_channel");
  ASSERT_TRUE(lone);
  EXPECT_EQ("Lone Song", (*lone)["examples"][1]["name"]);
  const base::Value* recent = nullptr;
  for (const auto& flow : report["flows"]) {
    if (flow["to"] == "RecentlyPlayedItem")
      recent = &flow;
  }
  ASSERT_TRUE(recent);
  EXPECT_EQ("PlayListItems (recently played)", (*recent)["from"]);
  EXPECT_EQ(1, (*recent)["dropped_by_reason"]["list_entry_song_missing"]);
  EXPECT_EQ(CountQuery(&src, expected.at("PlayListItems (recently played)")) - 1,
            (*recent)["written"]);
}

// A damaged generation-7 library whose index on the songs survives: the
// songs on the damaged page are counted as read and dropped by id
// ("source_rows_unreadable"), never one the old player deleted, and the
// report still adds up.
TEST_F(ImportReportReconcileTest, Generation7LostSongsCountedByIdFromTheirIndex) {
  V7SampleSize size;
  size.songs = 600;
  ASSERT_TRUE(WriteSampleV7Installation(m_profile.roaming(), size));
  base::FilePath source = Generation7Folder(m_profile.roaming()).Append(L"VTData.db");
  std::set<int64_t> live;
  std::string name;
  {
    sql::Connection db;
    ASSERT_TRUE(db.Open(source));
    ASSERT_TRUE(
        db.Execute("DELETE FROM FileItems WHERE FileItemID % 13 = 0;"
                   "CREATE INDEX FileItemsByHash ON FileItems(FileHash);"));
    sql::Statement ids(db.GetUniqueStatement("SELECT FileItemID FROM FileItems"));
    while (ids.Step())
      live.insert(ids.ColumnInt64(0));
    name = FirstText(&db, "SELECT FileName FROM FileItems WHERE FileItemID = 300");
  }
  // The page of the song table that holds song 300, zeroed.
  std::string bytes = testing_support::ReadBytes(source);
  const size_t at = bytes.find(name);
  ASSERT_FALSE(name.empty());
  ASSERT_NE(std::string::npos, at);
  bytes.replace(at / 4096 * 4096, 4096, 4096, '\0');
  testing_support::WriteBytes(source, bytes);

  DataImporterMain();
  base::Value report = ReadReport();
  ASSERT_TRUE(report.is_object());
  const base::Value* salvaged = FindEntry(report["salvage"], "table", "FileItems");
  ASSERT_NE(nullptr, salvaged);
  const int64_t lost = (*salvaged)["rows_known_lost"].get<int64_t>();
  EXPECT_LT(0, lost);
  EXPECT_EQ(static_cast<int64_t>(live.size()), (*salvaged)["rows_salvaged"].get<int64_t>() + lost);
  EXPECT_EQ(static_cast<int64_t>(live.size()), SourceTables(report)["FileItems"].first);
  EXPECT_EQ(lost, Dropped(report, "source_rows_unreadable"));
  const base::Value* drop = FindEntry(report["dropped"], "reason", "source_rows_unreadable");
  ASSERT_NE(nullptr, drop);
  ASSERT_FALSE((*drop)["examples"].empty());
  for (const base::Value& example : (*drop)["examples"]) {
    EXPECT_EQ("FileItems", example["table"]);
    EXPECT_EQ(1u, live.count(example["old_id"].get<int64_t>())) << example.dump();
  }
  ExpectReportReconciles(report, m_profile.data_folder());
}

// Plain databases an earlier release left: a list entry and a download whose
// files are not in the library are dropped; the download history rows that
// repeat finished downloads are merged into them, and one that repeats none
// becomes a download of its own.
TEST_F(ImportReportReconcileTest, ReimportEveryRowAccountedFor) {
  base::FilePath music = m_profile.data_folder().Append(L"VTMusic.db");
  base::FilePath lists = m_profile.data_folder().Append(L"vantu.db");
  {
    ImportModel model;
    FillGeneratedModel(&model, 7);
    ProgressRecord record;
    record.Initialise(TestDataFolder());
    model.m_progress = &record;
    ASSERT_TRUE(IsOk(BuildDatabases(&model, m_profile.data_folder())));
    model.m_progress = nullptr;
  }
  base::FilePath first = m_profile.root().Append(L"first");
  ASSERT_TRUE(base::CreateDirectory(first));
  for (const wchar_t* name : {L"VTMusicV3.db", L"playlistV3.db"})
    ASSERT_TRUE(base::ReplaceFile(m_profile.data_folder().Append(name), first.Append(name)));
  ASSERT_TRUE(ExportPlainDatabase(first.Append(L"VTMusicV3.db"), kVersion3DatabaseKey, music));
  ASSERT_TRUE(ExportPlainDatabase(first.Append(L"playlistV3.db"), kVersion3DatabaseKey, lists));
  ASSERT_TRUE(base::DeleteFile(m_profile.ini()));

  int64_t history_rows = 0;
  std::string entry_table;
  {
    sql::Connection db;
    ASSERT_TRUE(db.Open(music));
    history_rows = CountQuery(&db, "select count(*) from DownloadHistoryItem");
    ASSERT_LT(0, history_rows);
    std::string path = FirstText(&db,
                                 "select FileName from ShareFileItems where "
                                 "ShareFileType <> 2 and FileName <> '' order by id");
    ASSERT_FALSE(path.empty());
    ASSERT_TRUE(db.Execute(
        "INSERT INTO DownloadItem(FileID, DownloadID, FileName, DestFileName, MD5) VALUES "
        "(987654, 1, 'Lost', 'Z:\\lost.mp3', 'EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEE')"));
    ASSERT_TRUE(db.Execute(("INSERT INTO DownloadHistoryItem(DownloadID, FileName, DestFileName) "
                            "VALUES (4242, 'Only in the history', '" +
                            path + "')")
                               .c_str()));
  }
  {
    sql::Connection db;
    ASSERT_TRUE(db.Open(lists));
    entry_table = FirstText(&db,
                            "select name from sqlite_master where type = 'table' and "
                            "name like 'GeneralList^_%' escape '^' order by name");
    ASSERT_FALSE(entry_table.empty());
    ASSERT_TRUE(db.Execute(("INSERT INTO \"" + entry_table +
                            "\"(SongID, TitleName, MusicFilePath, MusicFileHash) VALUES "
                            "(999999, 'Gone song', 'Z:\\gone.mp3', "
                            "'DDDDDDDDDDDDDDDDDDDDDDDDDDDDDDDD')")
                               .c_str()));
  }

  DataImporterMain();
  base::Value report = ReadReport();
  ASSERT_TRUE(report.is_object());
  EXPECT_EQ("importvantu8", report["task"]["name"]);
  EXPECT_EQ(4, report["task"]["import_kind"]);

  // Every table of both files, counted in the work copies the run read.
  auto tables = SourceTables(report);
  size_t source_tables = 0;
  for (const wchar_t* name : {L"VT8Music.db", L"VT8Playlist.db"}) {
    sql::Connection db;
    ASSERT_TRUE(db.Open(m_profile.data_folder().Append(name)));
    for (const std::string& table : TableNames(&db)) {
      ++source_tables;
      EXPECT_EQ(TableRowCount(&db, table), tables[table].first) << table;
    }
  }
  EXPECT_EQ(source_tables, tables.size()) << report["source_tables"].dump();
  // Every history row is a row of the history again, none merged away.
  EXPECT_EQ(0, tables["DownloadHistoryItem"].second);
  ExpectReportReconciles(report, m_profile.data_folder());

  EXPECT_EQ(1, Dropped(report, "download_unresolved"));
  const base::Value* missing = FindEntry(report["dropped"], "reason", "list_entry_song_missing");
  ASSERT_TRUE(missing);
  EXPECT_EQ(1, (*missing)["count"]);
  EXPECT_EQ(entry_table, (*missing)["examples"][0]["table"]);
  EXPECT_EQ("Gone song", (*missing)["examples"][0]["name"]);
  // The history row of its own stays in the history, and there only.
  sql::Connection finished;
  ASSERT_TRUE(
      finished.OpenWithKey(m_profile.data_folder().Append(L"VTMusicV3.db"), kVersion3DatabaseKey));
  EXPECT_EQ(0, CountQuery(&finished,
                          "select count(*) from DownloadItem where FileName = "
                          "'Only in the history'"));
  EXPECT_EQ(history_rows + 1, CountQuery(&finished, "select count(*) from DownloadHistoryItem"));
}

// The copy of the version-2 databases: each table's rows, counted in the
// source, are all written and counted again in the finished encrypted file;
// a file that loses rows after the copy is caught by that count; a copy
// that cannot be encrypted drops its rows with their reason.
TEST_F(ImportReportReconcileTest, Version2CopyCountsEveryTableTwice) {
  ASSERT_TRUE(WriteSampleVersion2Databases(m_profile.data_folder()));
  std::map<std::string, int64_t> read = Rows(Data(L"VTMusicV2.db"), false);
  for (const auto& [table, rows] : Rows(Data(L"playlist.db"), false))
    read[table] = rows;
  ASSERT_LT(5u, read.size());

  DataImporterMain();
  base::Value report = ReadReport();
  ASSERT_TRUE(report.is_object());
  EXPECT_EQ("copyv8dbv2", report["task"]["name"]);
  EXPECT_EQ("encrypted", report["upgrade"]["music"]);
  EXPECT_EQ("encrypted", report["upgrade"]["playlist"]);
  ASSERT_EQ(2u, report["sources"].size());
  EXPECT_EQ("version 2", report["sources"][0]["layout"]);
  EXPECT_EQ(read.size(), report["source_tables"].size());
  for (const auto& table : report["source_tables"])
    EXPECT_EQ(read[table["table"]], table["rows_read"]) << table.dump();
  ExpectReportReconciles(report, m_profile.data_folder());
  std::map<std::string, int64_t> written = Rows(Data(L"VTMusicV3.db"), true);
  for (const auto& [table, rows] : Rows(Data(L"playlistV3.db"), true))
    written[table] = rows;
  ASSERT_EQ(read.size(), report["target_tables"].size());
  for (const auto& target : report["target_tables"]) {
    EXPECT_EQ(written[target["table"]], target["rows_counted"]) << target.dump();
    EXPECT_EQ(true, target["matches"]) << target.dump();
  }
  EXPECT_TRUE(report["dropped"].empty());
  std::string stages;
  for (const auto& stage : report["stages"])
    stages += stage["name"].get<std::string>() + ",";
  EXPECT_EQ("TaskDecision,Copy,Count,", stages);

  // A row lost from the finished file after the copy.
  {
    ImportReport lost;
    ProgressRecord record;
    record.set_report(&lost);
    record.Initialise(TestDataFolder());
    (void)RunVersion2Copy(TestDataFolder(), &record, [&](const char* stage) {
      if (std::string(stage) != "Copy")
        return;  // a step of the commit that puts the copies in place
      sql::Connection db;
      ASSERT_TRUE(db.OpenWithKey(Data(L"VTMusicV3.db"), kVersion3DatabaseKey));
      ASSERT_TRUE(
          db.Execute("DELETE FROM ShareFileItems WHERE rowid = (SELECT max(rowid) "
                     "FROM ShareFileItems)"));
    });
    base::Value json = lost.ToJson();
    const base::Value* files = FindEntry(json["target_tables"], "table", "ShareFileItems");
    ASSERT_TRUE(files);
    EXPECT_EQ(read["ShareFileItems"], (*files)["rows_sent"]);
    EXPECT_EQ(read["ShareFileItems"] - 1, (*files)["rows_counted"]);
    EXPECT_EQ(false, (*files)["matches"]);
  }

  // The encrypted sibling of the music copy cannot be made: its rows are
  // dropped and neither finished file is counted, since the playlist copy
  // is withheld with it.
  ASSERT_TRUE(base::DeleteFile(Data(L"VTMusicV3.db")));
  ASSERT_TRUE(base::DeleteFile(Data(L"playlistV3.db")));
  TestProfile::Touch(Data(L"VTMusicV2.db.tmp.enc").Append(L"blocker"));
  DataImporterMain();
  report = ReadReport();
  EXPECT_EQ("encrypt_failed", report["upgrade"]["music"]);
  const base::Value* files = FindEntry(report["flows"], "from", "ShareFileItems");
  ASSERT_TRUE(files);
  EXPECT_EQ(0, (*files)["written"]);
  EXPECT_EQ(read["ShareFileItems"], (*files)["dropped_by_reason"]["copy_not_encrypted"]);
  const base::Value* music = FindEntry(report["target_databases"], "database", "VTMusicV3.db");
  ASSERT_TRUE(music);
  EXPECT_EQ(false, (*music)["read_back"]);
  EXPECT_EQ("withheld", report["upgrade"]["playlist"]);
  const base::Value* lists = FindEntry(report["flows"], "from", "GeneralListTable");
  ASSERT_TRUE(lists);
  EXPECT_EQ(0, (*lists)["written"]);
  EXPECT_EQ((*lists)["read"], (*lists)["dropped_by_reason"]["copy_not_encrypted"]);
  const base::Value* playlist = FindEntry(report["target_databases"], "database", "playlistV3.db");
  ASSERT_TRUE(playlist);
  EXPECT_EQ(false, (*playlist)["read_back"]);
}

// The upgrade of the version-3 databases: the cloud tables moved, each with
// the rows read in the music database and counted in the finished playlist
// database; without a cloud list to use it, the moved "CloudOperation" is
// dropped again, and counted as dropped with its reason.
TEST_F(ImportReportReconcileTest, Version3UpgradeCountsTheMovedTables) {
  ASSERT_TRUE(WriteSampleVersion3Databases(m_profile.data_folder(), kVersion3DatabaseKey));
  std::map<std::string, int64_t> before = Rows(Data(L"VTMusicV3.db"), true);
  DataImporterMain();
  base::Value report = ReadReport();
  ASSERT_TRUE(report.is_object());
  EXPECT_EQ("updatevantu8", report["task"]["name"]);
  EXPECT_EQ("moved", report["upgrade"]["cloud_lists"]);
  EXPECT_EQ(2, report["upgrade"]["cloud_lists_moved"]);
  ASSERT_EQ(1u, report["sources"].size());
  EXPECT_EQ("version 3", report["sources"][0]["layout"]);
  std::map<std::string, int64_t> after = Rows(Data(L"playlistV3.db"), true);
  std::set<std::string> moved;
  for (const auto& flow : report["flows"]) {
    std::string table = flow["to"];
    moved.insert(table);
    EXPECT_EQ(flow["from"], flow["to"]);
    EXPECT_EQ(before[table], flow["read"]) << table;
    EXPECT_EQ(before[table], flow["written"]) << table;
  }
  EXPECT_EQ((std::set<std::string>{"CloudAccompanimentItemSet", "CloudListTable", "CloudOperation",
                                   "NewCloudList_3", "NewCloudList_7"}),
            moved);
  ASSERT_EQ(moved.size(), report["target_tables"].size());
  for (const auto& target : report["target_tables"]) {
    EXPECT_EQ(after[target["table"]], target["rows_counted"]) << target.dump();
    EXPECT_EQ(true, target["matches"]) << target.dump();
  }

  CurrentMusicDatabase music;
  music.cloud_lists = {{0, L"zero", 2}};
  ASSERT_TRUE(music.Write(Data(L"VTMusicV3.db"), kVersion3DatabaseKey));
  ASSERT_TRUE(CurrentPlaylistDatabase().Write(Data(L"playlistV3.db"), kVersion3DatabaseKey));
  DataImporterMain();
  report = ReadReport();
  const base::Value* operations = FindEntry(report["flows"], "from", "CloudOperation");
  ASSERT_TRUE(operations);
  EXPECT_EQ(3, (*operations)["read"]);
  EXPECT_EQ(0, (*operations)["written"]);
  EXPECT_EQ(3, (*operations)["dropped_by_reason"]["cloud_lists_missing"]);
  const base::Value* none = FindEntry(report["target_tables"], "table", "CloudOperation");
  ASSERT_TRUE(none);
  EXPECT_EQ(0, (*none)["rows_sent"]);
  const base::Value* lists = FindEntry(report["target_tables"], "table", "CloudListTable");
  ASSERT_TRUE(lists);
  EXPECT_EQ(true, (*lists)["matches"]);
}

}  // namespace

}  // namespace data_importer
