#include "tools/data_importer/source_readers/v8_data_exporter/v8_data_exporter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "base/file_util.h"
#include "sql/connection.h"
#include "testing/test_support.h"
#include "tools/data_importer/environment/data_folder.h"
#include "tools/data_importer/data_importer_main.h"
#include "testing/importer_test_util.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/target_store/build_sequence.h"

namespace data_importer {

namespace {

using testing_support::ReadBytes;

class V8DataExporterTest : public testing::Test {
 protected:
  void SetUp() override {
    m_record.Initialise(TestDataFolder());
    m_model.m_progress = &m_record;
  }

  base::FilePath Data(const wchar_t* name) const { return m_profile.data_folder().Append(name); }

  // A plain database made by |statements|, 4096-byte pages.
  static void MakeDatabase(const base::FilePath& path, const std::vector<std::string>& statements) {
    ASSERT_TRUE(base::CreateDirectory(path.DirName()));
    sql::Connection db;
    db.set_page_size(4096);
    ASSERT_TRUE(db.Open(path));
    for (const std::string& statement : statements)
      ASSERT_TRUE(db.Execute(statement.c_str())) << statement;
  }

  ExportResult Export() {
    const RunContext run_context = TestRunContext();
    V8DataExporter exporter(run_context, &m_model);
    return exporter.ExportData();
  }

  TestProfile m_profile;
  ProgressRecord m_record;
  ImportModel m_model;
};

TEST_F(V8DataExporterTest, NeitherFileImportsNothing) {
  ASSERT_TRUE(base::CreateDirectory(m_profile.data_folder()));
  TestProfile::Touch(Data(L"VTMusic.db.bak"));
  EXPECT_EQ(ExportResult::kNothingExported, Export());
  EXPECT_EQ(1u, m_record.state());
  EXPECT_TRUE(m_model.m_share_files.empty());
  EXPECT_FALSE(base::PathExists(Data(L"VT8Music.db")));
}

// The library file alone, in another letter case, its tables short of
// columns and holding NULLs: what is there is read, the rest is neutral.
TEST_F(V8DataExporterTest, LibraryAloneWithMissingColumnsAndNulls) {
  MakeDatabase(
      Data(L"vtmusic.DB"),
      {"CREATE TABLE ShareFileItems(FileName text, MD5 char(32), ShareFileType integer, "
       "ReplayGain real)",
       "INSERT INTO ShareFileItems VALUES ('C:\\a.mp3', NULL, 0, NULL), "
       "('C:\\b.mkv', '0123456789ABCDEF0123456789ABCDEF', 2, -1.5), (NULL, NULL, NULL, NULL)",
       "CREATE TABLE ShareFolders(id integer PRIMARY KEY, Path text)",
       "INSERT INTO ShareFolders VALUES (3, 'C:\\'), (9, 'D:\\')",
       "CREATE TABLE LocalFiles(FilePath text, FolderPath text, FileSize integer)",
       "INSERT INTO LocalFiles VALUES ('C:\\a.mp3', 'D:\\', NULL), ('E:\\z.mp3', 'E:\\', 5)",
       "CREATE TABLE RecentlyPlayedItem(SongID integer PRIMARY KEY, MusicFilePath text, "
       "MVFileHash text, PlayCount integer)",
       "INSERT INTO RecentlyPlayedItem VALUES (4, 'C:\\a.mp3', "
       "'0123456789ABCDEF0123456789ABCDEF', NULL), (5, 'C:\\gone.mp3', NULL, 8)",
       "CREATE TABLE DownloadItem(ID integer PRIMARY KEY, DownloadID integer, DestFileName "
       "text, FileID integer, Percent integer, DownType integer)",
       "INSERT INTO DownloadItem VALUES (1, 5, 'C:\\a.mp3', 0, 100, 0), "
       "(2, 6, 'X', 2, 10, 0), (3, 7, 'Y', 1, 10, 0)",
       "CREATE TABLE DownloadHistoryItem(ID integer PRIMARY KEY, DownloadID integer, "
       "DestFileName text, DownType integer)",
       "INSERT INTO DownloadHistoryItem VALUES (1, 5, 'C:\\a.mp3', 0), (2, 8, 'C:\\a.mp3', 20)",
       "CREATE TABLE RadioChannel_12(SongID integer PRIMARY KEY, TitleName text)",
       "INSERT INTO RadioChannel_12 VALUES (1, 'x')",
       "CREATE TABLE RadioChannel_012(SongID integer PRIMARY KEY)",
       "CREATE TABLE \"RadioChannel_-4\"(SongID integer PRIMARY KEY)"});
  std::string original = ReadBytes(Data(L"vtmusic.DB"));

  EXPECT_EQ(ExportResult::kExported, Export());
  EXPECT_EQ(1u, m_record.state());  // "vantu.db" is missing; nothing failed
  EXPECT_EQ(original, ReadBytes(Data(L"vtmusic.DB")));
  EXPECT_TRUE(base::PathExists(Data(L"VT8Music.db")));

  // Without an "id" column the files are numbered in row order.
  ASSERT_EQ(3u, m_model.m_share_files.size());
  const ShareFileItem& audio = *m_model.m_share_files[0];
  EXPECT_EQ(1, audio.old_id);
  EXPECT_EQ(L"C:\\a.mp3", audio.FileName);
  EXPECT_TRUE(audio.MD5.is_null);
  EXPECT_EQ(0.0, audio.ReplayGain);
  EXPECT_EQ(2, m_model.m_share_files[1]->old_id);
  EXPECT_EQ(-1.5, m_model.m_share_files[1]->ReplayGain);
  EXPECT_EQ(3, m_model.m_share_files[2]->old_id);
  EXPECT_EQ(L"", m_model.m_share_files[2]->FileName);

  ASSERT_EQ(2u, m_model.m_share_folders.size());
  EXPECT_EQ(9, m_model.m_share_folders[1]->old_id);
  ASSERT_EQ(2u, m_model.m_local_files.size());
  EXPECT_EQ(9, m_model.m_local_files[0]->old_folder_id);
  EXPECT_EQ(1, m_model.m_local_files[0]->old_file_id);
  EXPECT_EQ(0, m_model.m_local_files[0]->FileSize);
  EXPECT_EQ(0, m_model.m_local_files[1]->old_folder_id);  // a folder the library lacks
  EXPECT_EQ(5, m_model.m_local_files[1]->FileSize);

  // Entries find the audio file by path and the MV by hash.
  ASSERT_EQ(2u, m_model.m_recent_songs.size());
  EXPECT_EQ(1, m_model.m_recent_songs[0]->music_file_id);
  EXPECT_EQ(2, m_model.m_recent_songs[0]->mv_file_id);
  EXPECT_EQ(0, m_model.m_recent_songs[0]->PlayCount);
  EXPECT_EQ(0, m_model.m_recent_songs[1]->music_file_id);
  EXPECT_EQ(8, m_model.m_recent_songs[1]->PlayCount);

  // Downloads: by destination path, not by the FileID of a video, by the
  // FileID of an audio file; each history row is a record of the history
  // alone, the one of download 5 with that download's file, the one of
  // download 8 with the file at its path.
  using Tables = DownloadRecord::Tables;
  ASSERT_EQ(5u, m_model.m_downloads.size());
  EXPECT_EQ(1, m_model.m_downloads[0]->file_id);
  EXPECT_EQ(0, m_model.m_downloads[1]->file_id);
  EXPECT_EQ(1, m_model.m_downloads[2]->file_id);
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(Tables::kItemOnly, m_model.m_downloads[i]->tables);
  EXPECT_EQ(5, m_model.m_downloads[3]->DownloadID);
  EXPECT_EQ(1, m_model.m_downloads[3]->file_id);
  EXPECT_EQ(8, m_model.m_downloads[4]->DownloadID);
  EXPECT_EQ(20, m_model.m_downloads[4]->DownType);
  EXPECT_EQ(1, m_model.m_downloads[4]->file_id);
  for (int i = 3; i < 5; ++i)
    EXPECT_EQ(Tables::kHistoryOnly, m_model.m_downloads[i]->tables);

  // Channel tables by their names as the writers give them.
  ASSERT_EQ(2u, m_model.m_radio_songs.size());
  EXPECT_EQ(1u, m_model.m_radio_songs[12].size());
  EXPECT_EQ(L"x", m_model.m_radio_songs[12][0]->TitleName);
  EXPECT_TRUE(m_model.m_radio_songs[-4].empty());
  EXPECT_TRUE(m_model.m_play_lists.empty());
}

// The list file alone: lists and every entry table come back, entries
// without a library to find their files in.
TEST_F(V8DataExporterTest, ListsAlone) {
  MakeDatabase(Data(L"VANTU.db"),
               {"CREATE TABLE GeneralListTable(PlayListID integer PRIMARY KEY, PlaylistName text, "
                "SortID integer)",
                "INSERT INTO GeneralListTable VALUES (-3, 'Default', 0), (6, 'Mine', 1)",
                "CREATE TABLE \"GeneralList_-3\"(SongID integer PRIMARY KEY, TitleName text, "
                "MusicFilePath text)",
                "INSERT INTO \"GeneralList_-3\" VALUES (2, 'b', 'C:\\b.mp3'), (1, 'a', NULL)",
                "CREATE TABLE GeneralList_9(SongID integer PRIMARY KEY)",
                "CREATE TABLE GeneralListX(SongID integer PRIMARY KEY)"});
  EXPECT_EQ(ExportResult::kExported, Export());
  EXPECT_EQ(1u, m_record.state());
  ASSERT_EQ(2u, m_model.m_play_lists.size());
  EXPECT_EQ(6, m_model.m_play_lists[1]->PlaylistID);
  EXPECT_EQ(L"Mine", m_model.m_play_lists[1]->PlaylistName);
  ASSERT_EQ(2u, m_model.m_list_songs.size());
  const SongList& songs = m_model.m_list_songs[-3];
  ASSERT_EQ(2u, songs.size());
  EXPECT_EQ(1, songs[0]->SongID);  // in row order
  EXPECT_EQ(L"C:\\b.mp3", songs[1]->MusicFilePath);
  EXPECT_EQ(0, songs[1]->music_file_id);
  EXPECT_TRUE(m_model.m_list_songs[9].empty());
}

// "ImportProgress" moves by tenths of the files and of the list entries, by
// 5 after each table reader, and stops at 49; each value is in "DBCheck"
// while the read goes on. The list file alone shows the list readers' steps,
// the library alone those of its readers (every one of them runs, also for a
// table that is not there).
TEST_F(V8DataExporterTest, ProgressMovesWhileReading) {
  std::vector<std::string> lists = {
      "CREATE TABLE GeneralListTable(PlayListID integer PRIMARY KEY, PlaylistName text)",
      "INSERT INTO GeneralListTable VALUES (1, 'One'), (2, 'Two')",
      "CREATE TABLE GeneralList_1(SongID integer PRIMARY KEY, MusicFilePath text)",
      "CREATE TABLE GeneralList_2(SongID integer PRIMARY KEY, MusicFilePath text)"};
  for (int song = 1; song <= 20; ++song)
    lists.push_back("INSERT INTO GeneralList_" + std::to_string(song % 2 + 1) + " VALUES (" +
                    std::to_string(song) + ", 'C:\\s.mp3')");
  MakeDatabase(Data(L"VANTU.db"), lists);
  m_record.SetProgress(10);
  {
    ProgressTrace trace(&m_record, m_profile);
    EXPECT_EQ(ExportResult::kExported, Export());
    std::vector<int> deltas = {5};  // the list table
    for (int tenth : Tenths())
      deltas.push_back(tenth);
    deltas.push_back(5);
    EXPECT_EQ(ExpectedReadProgress(10, deltas), trace.seen());
    EXPECT_EQ(L"30", m_profile.DBCheck(L"ImportProgress"));
  }

  ASSERT_TRUE(base::DeleteFile(Data(L"VANTU.db")));
  ASSERT_TRUE(base::DeleteFile(Data(L"VT8Playlist.db")));
  std::vector<std::string> library = {
      "CREATE TABLE ShareFileItems(id integer PRIMARY KEY, FileName text)"};
  for (int file = 1; file <= 10; ++file)
    library.push_back("INSERT INTO ShareFileItems VALUES (" + std::to_string(file) + ", 'C:\\" +
                      std::to_string(file) + ".mp3')");
  MakeDatabase(Data(L"VTMusic.db"), library);
  m_record.SetProgress(10);
  ImportModel model(&m_record);
  ProgressTrace trace(&m_record, m_profile);
  const RunContext run_context = TestRunContext();
  V8DataExporter exporter(run_context, &model);
  EXPECT_EQ(ExportResult::kExported, exporter.ExportData());
  std::vector<int> deltas = Tenths();
  deltas.insert(deltas.end(), 12, 5);  // the files' table and the eleven others
  EXPECT_EQ(ExpectedReadProgress(10, deltas), trace.seen());
  EXPECT_EQ(10u, model.m_share_files.size());
}

// Downloads, local files and NULLs come back as they were: each download
// table its own rows, neither doubled nor moved between the tables, local
// files in the library folder that Windows would take their folder path
// for, a NULL where the column takes one.
TEST_F(V8DataExporterTest, DownloadsAndFoldersComeBackAsTheyWere) {
  MakeDatabase(
      Data(L"VTMusic.db"),
      {"CREATE TABLE ShareFileItems(id integer PRIMARY KEY, FileName text, MD5 char(32))",
       "INSERT INTO ShareFileItems VALUES (1, 'D:\\Music\\a.mp3', NULL), "
       "(2, 'D:\\Music\\b.mp3', NULL), (3, 'D:\\Music\\c.mp3', NULL)",
       "CREATE TABLE ShareFolders(id integer PRIMARY KEY, Path text)",
       "INSERT INTO ShareFolders VALUES (1, 'D:\\Music')",
       "CREATE TABLE LocalFiles(FilePath text, FolderPath text)",
       "INSERT INTO LocalFiles VALUES ('D:\\Music\\a.mp3', 'd:\\music'), "
       "('D:\\Music\\b.mp3', 'D:\\Music\\'), ('E:\\c.mp3', 'E:\\Elsewhere')",
       "CREATE TABLE DownloadItem(ID integer PRIMARY KEY, DownloadID integer, DestFileName "
       "text, FileID integer, Percent integer, DownType integer, AccessTime integer)",
       // 5 finished (its history row's access time drifted), 6 unfinished.
       "INSERT INTO DownloadItem VALUES (1, 5, 'D:\\Music\\a.mp3', 1, 100, 0, 111), "
       "(2, 6, 'D:\\Music\\b.mp3', 2, 40, 0, 0)",
       "CREATE TABLE DownloadHistoryItem(ID integer PRIMARY KEY, DownloadID integer, "
       "DestFileName text, DownType integer, AccessTime integer)",
       // 5 again; 7 of another type; 8 whose download the user removed.
       "INSERT INTO DownloadHistoryItem VALUES (1, 5, 'D:\\Music\\a.mp3', 0, 222), "
       "(2, 7, 'D:\\Music\\b.mp3', 1, 0), (3, 8, 'D:\\Music\\c.mp3', 0, 0)",
       "CREATE TABLE AppTools(ID INTEGER PRIMARY KEY NOT NULL, Path VARCHAR(260) NULL)",
       "INSERT INTO AppTools VALUES (1, NULL), (2, ''), (3, 'C:\\tool.exe')"});
  MakeDatabase(Data(L"vantu.db"),
               {"CREATE TABLE GeneralListTable(PlayListID integer PRIMARY KEY, PlaylistName text)",
                "INSERT INTO GeneralListTable VALUES (1, 'One')",
                "CREATE TABLE GeneralList_1(SongID integer PRIMARY KEY, MusicFilePath text)",
                "INSERT INTO GeneralList_1 VALUES (1, 'D:\\Music\\a.mp3')"});

  DataImporterMain();

  EXPECT_EQ(L"4", m_profile.DBCheck(L"ImportEnd"));
  sql::Connection built;
  ASSERT_TRUE(built.OpenWithKey(Data(L"VTMusicV3.db"), kVersion3DatabaseKey));
  EXPECT_EQ(
      (std::vector<std::string>{"5|1|111", "6|2|0"}),
      QueryRows(&built, "SELECT DownloadID, FileID, AccessTime FROM DownloadItem ORDER BY ID"));
  EXPECT_EQ((std::vector<std::string>{"5|0|222", "7|1|0", "8|0|0"}),
            QueryRows(&built,
                      "SELECT DownloadID, DownType, AccessTime FROM DownloadHistoryItem "
                      "ORDER BY ID"));
  EXPECT_EQ((std::vector<std::string>{"D:\\Music\\a.mp3|D:\\Music", "D:\\Music\\b.mp3|D:\\Music",
                                      "E:\\c.mp3|E:\\Elsewhere"}),
            QueryRows(&built, "SELECT FilePath, FolderPath FROM LocalFiles ORDER BY FilePath"));

  // A NULL comes back as NULL where the column allows it.
  EXPECT_EQ((std::vector<std::string>{"1|1|", "2|0|", "3|0|C:\\tool.exe"}),
            QueryRows(&built, "SELECT ID, Path IS NULL, Path FROM AppTools ORDER BY ID"));

  base::Value report = ReadImportReport(m_profile.data_folder());
  EXPECT_EQ(1, report["kept_unlinked"]["local_file_folder_not_in_library"]);
  ExpectReportReconciles(report, m_profile.data_folder());
}

// The cloud lists of an older music database go into the new playlist file
// where the cloud-list move puts them: the list table, the song table of
// every list above 0, the accompaniments and the pending operations.
TEST_F(V8DataExporterTest, CloudListsAreCarried) {
  MakeDatabase(
      Data(L"VTMusic.db"),
      {"CREATE TABLE ShareFileItems(id integer PRIMARY KEY, FileName text)",
       "INSERT INTO ShareFileItems VALUES (1, 'D:\\Music\\a.mp3')",
       "CREATE TABLE CloudListTable(CloudListID integer, Name text)",
       "INSERT INTO CloudListTable VALUES (3, 'Mine'), (0, 'Zero')",
       "CREATE TABLE NewCloudList_3(SongID integer, TitleName text)",
       "INSERT INTO NewCloudList_3 VALUES (1, 'It''s one'), (2, 'two')",
       "CREATE TABLE NewCloudList_0(SongID integer)", "INSERT INTO NewCloudList_0 VALUES (1)",
       "CREATE TABLE CloudOperation(ID integer)", "INSERT INTO CloudOperation VALUES (1), (2)",
       "CREATE TABLE CloudAccompanimentItemSet(ID integer)",
       "INSERT INTO CloudAccompanimentItemSet VALUES (7)",
       "CREATE TABLE CloudList_Sync(ID integer)", "INSERT INTO CloudList_Sync VALUES (1)"});
  MakeDatabase(Data(L"vantu.db"),
               {"CREATE TABLE GeneralListTable(PlayListID integer PRIMARY KEY, PlaylistName text)",
                "INSERT INTO GeneralListTable VALUES (1, 'One')",
                "CREATE TABLE GeneralList_1(SongID integer PRIMARY KEY, MusicFilePath text)",
                "INSERT INTO GeneralList_1 VALUES (1, 'D:\\Music\\a.mp3')"});

  DataImporterMain();

  EXPECT_EQ(L"4", m_profile.DBCheck(L"ImportEnd"));
  EXPECT_EQ(L"", m_profile.DBCheck(L"ImportState"));
  sql::Connection lists;
  ASSERT_TRUE(lists.OpenWithKey(Data(L"playlistV3.db"), kVersion3DatabaseKey));
  EXPECT_EQ((std::vector<std::string>{"3|Mine", "0|Zero"}),
            QueryRows(&lists, "SELECT CloudListID, Name FROM CloudListTable ORDER BY rowid"));
  EXPECT_EQ((std::vector<std::string>{"1|It's one", "2|two"}),
            QueryRows(&lists, "SELECT SongID, TitleName FROM NewCloudList_3 ORDER BY SongID"));
  EXPECT_FALSE(lists.DoesTableExist("NewCloudList_0"));
  EXPECT_FALSE(lists.DoesTableExist("CloudList_Sync"));
  EXPECT_EQ(std::vector<std::string>{"2"},
            QueryRows(&lists, "SELECT count(*) FROM CloudOperation"));
  EXPECT_EQ(std::vector<std::string>{"7"},
            QueryRows(&lists, "SELECT ID FROM CloudAccompanimentItemSet"));
  sql::Connection music;
  ASSERT_TRUE(music.OpenWithKey(Data(L"VTMusicV3.db"), kVersion3DatabaseKey));
  EXPECT_FALSE(music.DoesTableExist("CloudListTable"));
}

// A library file that one VACUUM repairs is imported whole; its original
// stays as it was, damage included.
TEST_F(V8DataExporterTest, RepairableLibraryImportedEndToEnd) {
  std::vector<std::string> statements = {
      "CREATE TABLE ShareFileItems(id integer PRIMARY KEY, FileName text, MD5 char(32))", "BEGIN"};
  for (int i = 1; i <= 3000; ++i) {
    statements.push_back(
        "INSERT INTO ShareFileItems(FileName) VALUES ('D:\\Music\\a fairly long "
        "file name number " +
        std::to_string(i) + ".mp3')");
  }
  statements.push_back("COMMIT");
  statements.push_back("DELETE FROM ShareFileItems WHERE id > 2000");
  MakeDatabase(Data(L"VTMusic.db"), statements);
  testing_support::ForgetFreePages(Data(L"VTMusic.db"));
  MakeDatabase(Data(L"vantu.db"),
               {"CREATE TABLE GeneralListTable(PlayListID integer PRIMARY KEY, PlaylistName text)",
                "INSERT INTO GeneralListTable VALUES (1, 'One')",
                "CREATE TABLE GeneralList_1(SongID integer PRIMARY KEY, MusicFilePath text)",
                "INSERT INTO GeneralList_1 VALUES (7, 'D:\\Music\\a fairly long file name number "
                "1500.mp3'), (8, 'D:\\Music\\a fairly long file name number 2500.mp3')"});
  std::string music = ReadBytes(Data(L"VTMusic.db"));
  std::string lists = ReadBytes(Data(L"vantu.db"));

  DataImporterMain();

  EXPECT_EQ(L"4", m_profile.DBCheck(L"ImportEnd"));
  EXPECT_EQ(L"1:1", m_profile.DBCheck(L"ImportPlayLists"));  // the deleted file's entry is gone
  sql::Connection built;
  ASSERT_TRUE(built.OpenWithKey(Data(L"VTMusicV3.db"), kVersion3DatabaseKey));
  EXPECT_EQ(std::vector<std::string>{"2000"},
            QueryRows(&built, "SELECT count(*) FROM ShareFileItems"));
  EXPECT_EQ(music, ReadBytes(Data(L"VTMusic.db")));
  EXPECT_EQ(lists, ReadBytes(Data(L"vantu.db")));
  // The dated backup holds the originals under their own names.
  base::FileEnumerator backups(GetDatedBackupFolder(TestRunContext()), L"*.db");
  std::vector<std::wstring> names;
  for (base::FilePath file = backups.Next(); !file.empty(); file = backups.Next())
    names.push_back(file.BaseName().value());
  std::sort(names.begin(), names.end());
  EXPECT_EQ((std::vector<std::wstring>{L"VTMusic.db", L"vantu.db"}), names);
}

// A library file beyond repair fails every library reader; the lists are
// still read and the build still runs.
TEST_F(V8DataExporterTest, LibraryBeyondRepair) {
  MakeDatabase(Data(L"VTMusic.db"),
               {"CREATE TABLE ShareFileItems(id integer PRIMARY KEY, FileName text)",
                "INSERT INTO ShareFileItems(FileName) VALUES ('a'), ('b')"});
  std::vector<std::string> root;
  {
    sql::Connection db;
    ASSERT_TRUE(db.Open(Data(L"VTMusic.db")));
    root = QueryRows(&db, "SELECT rootpage FROM sqlite_master WHERE name='ShareFileItems'");
  }
  ASSERT_EQ(1u, root.size());
  testing_support::DamageDatabasePage(Data(L"VTMusic.db"), std::stoi(root[0]), 0, 64);
  MakeDatabase(Data(L"vantu.db"),
               {"CREATE TABLE GeneralListTable(PlayListID integer PRIMARY KEY, PlaylistName text)",
                "INSERT INTO GeneralListTable VALUES (4, 'Four')"});

  EXPECT_EQ(ExportResult::kExported, Export());
  EXPECT_EQ(ProgressRecord::kStateMusicFailed | ProgressRecord::kStateTableFailed,
            m_record.state());
  EXPECT_TRUE(m_model.m_share_files.empty());
  ASSERT_EQ(1u, m_model.m_play_lists.size());
  EXPECT_EQ(L"Four", m_model.m_play_lists[0]->PlaylistName);
}

}  // namespace

}  // namespace data_importer
