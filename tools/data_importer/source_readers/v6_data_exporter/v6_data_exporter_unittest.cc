#include "tools/data_importer/source_readers/v6_data_exporter/v6_data_exporter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <tuple>
#include <string>

#include "base/file_util.h"
#include "base/json_file.h"
#include "base/utf_string_conversions.h"
#include "sql/connection.h"
#include "testing/fixtures/generation6_fixture.h"
#include "tools/data_importer/target_store/build_sequence.h"
#include "tools/data_importer/environment/data_folder.h"
#include "tools/data_importer/data_importer_main.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/driver/import_run.h"
#include "testing/importer_test_util.h"
#include "tools/data_importer/run_record/import_report.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/driver/task_decision.h"

namespace data_importer {

namespace {

std::wstring Hash(int n) {
  return testing_support::NumberedHash(n, L'A');
}

V6Music Music(int id, const std::wstring& title, int mv_id = 0) {
  return NumberedV6Music(id, title, L'A', mv_id);
}

// A "V1" database with every case the reader distinguishes.
V6V1Database SampleV1() {
  V6V1Database db;
  db.videos = {{7, L"D:\\MV\\clip.mkv", L"", Hash(700)}};
  db.music = {Music(1, L"\u7a3b\u9999"), Music(2, L"Don't Cry", 7), Music(3, L"Halo"),
              Music(4, L"Hopp\u00edpolla")};
  db.music[3].hash.clear();                           // no hash: the all-zero hash
  db.lists = {{10, 3, L"Stored default name", 0, 5},  // default list, empty
              {11, 0, L"Road", 1234, 1},
              {12, 6, L"Mine", 0, 2},
              {13, 10, L"Gone", 0, 3},  // every item's music is missing
              {14, 1, L"Cloud", 0, 4},
              {15, 2, L"Radio", 0, 6},
              {16, 4, L"Four", 0, 7},
              {17, 11, L"Eleven", 0, 8}};
  db.items = {{1, 11, 1, 0, 5}, {2, 11, 2, 1, 0}, {3, 11, 99, 2, 0},  // 99: music gone
              {4, 12, 3, 0, 0}, {5, 12, 4, 1, 0}, {6, 13, 98, 0, 0},
              {7, 14, 1, 0, 0}, {8, 15, 1, 0, 0}};
  db.downloads = {{3, Hash(3), L"D:\\Down\\Halo.mp3", false},      // by id
                  {0, Hash(2), L"D:\\Down\\Don't Cry.mp3", true},  // by hash
                  {0, L"", L"D:\\Down\\Unknown.mp3", true},        // no hash: dropped
                  {50, Hash(50), L"D:\\Down\\Other.mp3", false}};  // not imported
  return db;
}

class V6DataExporterTest : public testing::Test {
 protected:
  base::FilePath program() const {
    return m_profile.root().Append(L"Program Files").Append(L"VanTa6");
  }

  void Register() {
    EXPECT_TRUE(base::WriteFile(m_profile.root().Append(L"user.reg"), V6RegistryText(program())));
    TestProfile::Touch(program().Append(L"VanTa6.exe"));
  }

  std::unique_ptr<sql::Connection> OpenFinal(const wchar_t* name) {
    auto db = std::make_unique<sql::Connection>();
    EXPECT_TRUE(db->OpenWithKey(m_profile.data_folder().Append(name), kVersion3DatabaseKey));
    return db;
  }

  std::string Log() {
    std::string log;
    EXPECT_TRUE(base::ReadFileToString(m_profile.data_folder().Append(L"DataImporter.log"), &log));
    return log;
  }

  TestProfile m_profile;
};

// The whole run through the registry: libraries, lists, list entries and
// downloads arrive in the new databases, lyrics and backups are copied, and
// the installation is left byte for byte as it was.
TEST_F(V6DataExporterTest, V1ImportedEndToEndThroughTheRegistry) {
  ASSERT_TRUE(SampleV1().Write(program().Append(L"VTData.db")));
  EXPECT_TRUE(base::CreateDirectory(program().Append(L"Lyric")));
  EXPECT_TRUE(base::WriteFile(program().Append(L"Lyric").Append(L"\u7a3b\u9999.krc"), "krc"));
  EXPECT_TRUE(base::WriteFile(program().Append(L"Lyric").Append(L"notes.txt"), "x"));
  Register();
  std::string before = FolderFingerprint(program());

  DataImporterMain();

  EXPECT_EQ(before, FolderFingerprint(program()));
  EXPECT_EQ(L"4", m_profile.DBCheck(L"ImportEnd"));
  EXPECT_EQ(L"", m_profile.DBCheck(L"ImportState"));
  EXPECT_EQ(L"100", m_profile.DBCheck(L"ImportProgress"));
  EXPECT_EQ(L"10:0,11:2,12:2", m_profile.DBCheck(L"ImportPlayLists"));
  EXPECT_TRUE(
      base::PathExists(m_profile.data_folder().Append(L"Lyric").Append(L"\u7a3b\u9999.krc")));
  EXPECT_FALSE(base::PathExists(m_profile.data_folder().Append(L"Lyric").Append(L"notes.txt")));
  EXPECT_TRUE(base::PathExists(m_profile.data_folder().Append(L"VT6Data.db")));
  EXPECT_TRUE(base::PathExists(m_profile.data_folder().Append(L"DataImporter.db")));
  EXPECT_TRUE(base::PathExists(GetDatedBackupFolder(TestRunContext()).Append(L"VT6Data.db")));

  auto music = OpenFinal(L"VTMusicV3.db");
  auto playlists = OpenFinal(L"playlistV3.db");
  EXPECT_EQ((std::vector<std::string>{
                "D:\\MV\\clip.mkv|2|AAAAAAAAAAAAAAAAAAAAAAAAAAAAA700",
                "D:\\Music\\\xE7\xA8\xBB\xE9\xA6\x99.mp3|0|AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA1",
                "D:\\Music\\Don't Cry.mp3|0|AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA2",
                "D:\\Music\\Halo.mp3|0|AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA3",
                "D:\\Music\\Hopp\xC3\xADpolla.mp3|0|00000000000000000000000000000000"}),
            QueryRows(music.get(),
                      "SELECT FileName, ShareFileType, MD5 FROM ShareFileItems ORDER BY id"));
  EXPECT_EQ((std::vector<std::string>{"10|\xE9\xBB\x98\xE8\xAE\xA4\xE5\x88\x97\xE8\xA1\xA8|0|0",
                                      "11|Road-1234|2|1", "12|Mine|2|2"}),
            QueryRows(playlists.get(),
                      "SELECT PlayListID, PlaylistName, PlaylistType, SortID "
                      "FROM GeneralListTable ORDER BY SortID"));
  EXPECT_EQ((std::vector<std::string>{"1|\xE7\xA8\xBB\xE9\xA6\x99|5", "2|Don't Cry|0"}),
            QueryRows(playlists.get(),
                      "SELECT SongID, TitleName, PlayCount FROM GeneralList_11 ORDER BY SortID"));
  // An entry whose music item names an MV carries the MV's half.
  EXPECT_EQ((std::vector<std::string>{
                "1|||0|0|0|0",
                "2|D:\\MV\\clip.mkv|AAAAAAAAAAAAAAAAAAAAAAAAAAAAA700|4000000|240000|1500|"
                "1300000000"}),
            QueryRows(playlists.get(),
                      "SELECT SongID, MVFilePath, MVFileHash, MVFileSize, "
                      "MVFileDuration, MVFileBitrate, MVFileLastModifyTime "
                      "FROM GeneralList_11 ORDER BY SortID"));
  EXPECT_TRUE(playlists->DoesTableExist("GeneralList_10"));
  EXPECT_FALSE(playlists->DoesTableExist("GeneralList_13"));
  EXPECT_FALSE(playlists->DoesTableExist("GeneralList_14"));
  // FileID names the download's file in the new library (the MV took id 1,
  // so old and new ids differ); the priorities are the table's defaults.
  EXPECT_EQ((std::vector<std::string>{"Halo|0|D:\\Music\\Halo.mp3|2|1",
                                      "Don't Cry|100|D:\\Music\\Don't Cry.mp3|2|1"}),
            QueryRows(music.get(),
                      "SELECT d.FileName, Percent, s.FileName, OrderPriority, "
                      "SpeedPriority FROM DownloadItem d JOIN ShareFileItems s "
                      "ON s.id = d.FileID ORDER BY d.ID"));
  EXPECT_EQ((std::vector<std::string>{"Don't Cry"}),
            QueryRows(music.get(), "SELECT FileName FROM DownloadHistoryItem"));

  // Each list's entries are looked up through an index of our work copy
  // (the installation's file is untouched, see the fingerprint above).
  sql::Connection work;
  ASSERT_TRUE(work.Open(m_profile.data_folder().Append(L"VT6Data.db")));
  std::vector<std::string> plan = QueryRows(
      &work,
      "EXPLAIN QUERY PLAN SELECT * FROM PlayListItems WHERE PlayListID = 11 ORDER BY SortId");
  ASSERT_FALSE(plan.empty());
  EXPECT_NE(std::string::npos, plan[0].find("USING INDEX DataImporter_PlayListItems_PlayListID"))
      << plan[0];

  std::string log = Log();
  EXPECT_NE(std::string::npos, log.find("[V6数据导入] V6 DB version is {V1}."));
  EXPECT_NE(
      std::string::npos,
      log.find("[V6数据导入] There is no items under {TABLE: PlayListItems, PlayListID: 13}."));
  EXPECT_NE(std::string::npos,
            log.find("[V6数据导入]  Size of PlayListItems(ID=11) is {TOTAL:3, LOADED:2}."));
  EXPECT_NE(std::string::npos, log.find("[V6数据导入] Size of FileItems is {4}."));
}

// "V1" wins over library files; a second export finds the work copy of the
// first and needs neither registry nor installation.
TEST_F(V6DataExporterTest, V1WinsAndTheWorkCopyIsReused) {
  ASSERT_TRUE(SampleV1().Write(program().Append(L"VTData.db")));
  V6V2Library library;
  library.lists = {{1, 3, L"x", 0, 0}};
  library.items = {{1, 1, L"E:\\", L"v2.mp3", L"v2", Hash(1)}};
  ASSERT_TRUE(library.Write(program().Append(L"VTLibrary.db")));
  Register();
  for (int run = 0; run < 2; ++run) {
    ProgressRecord record;
    record.Initialise(TestDataFolder());
    ImportModel model(&record);
    const RunContext run_context = TestRunContext();
    V6DataExporter exporter(run_context, &model);
    ASSERT_EQ(ExportResult::kExported, exporter.ExportData()) << run;
    EXPECT_EQ(5u, model.m_share_files.size()) << run;
    EXPECT_EQ(3u, model.m_play_lists.size()) << run;
    EXPECT_EQ(L"", m_profile.DBCheck(L"ImportState"));
    // Second run: no registry, no installation.
    EXPECT_TRUE(base::DeleteFile(m_profile.root().Append(L"user.reg")));
    EXPECT_TRUE(base::DeleteFile(program(), true));
  }
  EXPECT_FALSE(base::PathExists(m_profile.data_folder().Append(L"VTLibrary.db")));
  EXPECT_NE(std::string::npos, Log().find("V6 DB version is {V1}."));
}

// The "V2" layout through the source folder of the command line: every
// library file's lists, entries found by "<ItemID>_<N>", and the downloads
// of the first file.
TEST_F(V6DataExporterTest, V2ImportedFromTheSourceFolder) {
  base::FilePath source = m_profile.root().Append(L"Old Player");
  V6V2Library first;
  // List 3 has no entries: skipped. (The default list would be kept.)
  first.lists = {{1, 3, L"", 0, 0}, {2, 0, L"Road", 77, 1}, {3, 0, L"Empty", 0, 2}};
  first.items = {{1, 1, L"E:\\Music", L"a.mp3", L"A", Hash(1)},
                 {2, 2, L"E:\\Music\\", L"b.mp3", L"", L""}};
  first.downloads = {{0, Hash(1), L"E:\\Music\\a.mp3", true}};
  ASSERT_TRUE(first.Write(source.Append(L"VTLibrary.db")));
  V6V2Library second;
  second.lists = {{5, 10, L"Second", 0, 0}};
  second.items = {{1, 5, L"F:\\", L"c.mp3", L"C", Hash(3)}};
  ASSERT_TRUE(second.Write(source.Append(L"VTLibrary2.db")));
  std::string before = FolderFingerprint(source);

  std::wstring task = DecideTask(TestRunContext(source));
  ASSERT_EQ(L"importvantu6", task);
  ProgressRecord record;
  record.Initialise(TestDataFolder());
  record.set_import_kind(ImportKindOfTask(task));
  RunImport(TestRunContext(), &record);

  EXPECT_EQ(before, FolderFingerprint(source));
  EXPECT_EQ(L"4", m_profile.DBCheck(L"ImportEnd"));
  auto music = OpenFinal(L"VTMusicV3.db");
  auto playlists = OpenFinal(L"playlistV3.db");
  EXPECT_EQ((std::vector<std::string>{"E:\\Music\\a.mp3|AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA1",
                                      "E:\\Music\\b.mp3|00000000000000000000000000000000",
                                      "F:\\c.mp3|AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA3"}),
            QueryRows(music.get(), "SELECT FileName, MD5 FROM ShareFileItems ORDER BY FileName"));
  EXPECT_EQ((std::vector<std::string>{"1|\xE9\xBB\x98\xE8\xAE\xA4\xE5\x88\x97\xE8\xA1\xA8",
                                      "2|Road-77", "5|Second"}),
            QueryRows(playlists.get(),
                      "SELECT PlayListID, PlaylistName FROM GeneralListTable "
                      "ORDER BY PlayListID"));
  EXPECT_EQ((std::vector<std::string>{"b.mp3"}),
            QueryRows(playlists.get(), "SELECT TitleName FROM GeneralList_2"));
  EXPECT_EQ((std::vector<std::string>{"C"}),
            QueryRows(playlists.get(), "SELECT TitleName FROM GeneralList_5"));
  EXPECT_EQ((std::vector<std::string>{"a"}),
            QueryRows(music.get(), "SELECT FileName FROM DownloadHistoryItem"));
  EXPECT_NE(std::string::npos, Log().find("V6 DB version is {V2}."));
}

// Two library files of an installation whose list ids collide: every list
// arrives with all its entries; the list met second under a taken id gets
// the next id above the largest (9 + 1, whichever file is read first). A
// pending download is found by its hash only: its "MusicID" means nothing
// across library files.
TEST_F(V6DataExporterTest, V2ListsWithCollidingIdsAndDownloadsByHash) {
  V6V2Library first;
  first.lists = {{1, 3, L"", 0, 0}, {2, 0, L"Road", 0, 1}};
  first.items = {{1, 1, L"E:\\", L"a.mp3", L"A", Hash(1)},
                 {2, 2, L"E:\\", L"b.mp3", L"B", Hash(2)}};
  first.downloads = {{1, Hash(77), L"D:\\Down\\stray.mp3", false},  // item 1's id, no hash match
                     {500, Hash(3), L"D:\\Down\\c.mp3", false}};    // c.mp3 of the second file
  ASSERT_TRUE(first.Write(program().Append(L"VTLibrary.db")));
  V6V2Library second;
  // Stored ids in another order than the lists' sort order.
  second.lists = {{2, 0, L"Other", 0, 2}, {9, 6, L"Nine", 0, 1}, {4, 10, L"Four", 0, 3}};
  second.items = {{1, 9, L"F:\\", L"c.mp3", L"C", Hash(3)},
                  {2, 2, L"F:\\", L"d.mp3", L"D", Hash(4)},
                  {3, 4, L"F:\\", L"e.mp3", L"E", Hash(5)},
                  {3, 4, L"F:\\", L"f.mp3", L"F", Hash(6)}};  // a repeated ItemID
  ASSERT_TRUE(second.Write(program().Append(L"VTLibrary2.db")));
  Register();

  DataImporterMain();

  EXPECT_EQ(L"4", m_profile.DBCheck(L"ImportEnd"));
  auto music = OpenFinal(L"VTMusicV3.db");
  auto playlists = OpenFinal(L"playlistV3.db");
  EXPECT_EQ((std::vector<std::string>{"1", "2", "4", "9", "10"}),
            QueryRows(playlists.get(), "SELECT PlayListID FROM GeneralListTable ORDER BY 1"));
  // Each list with its own entries, whatever id it ended with.
  std::vector<std::string> contents;
  for (const std::string& row :
       QueryRows(playlists.get(), "SELECT PlayListID, PlaylistName FROM GeneralListTable")) {
    std::string id = row.substr(0, row.find('|'));
    std::string text = row.substr(row.find('|') + 1) + ":";
    for (const std::string& title : QueryRows(playlists.get(),
                                              "SELECT TitleName FROM "
                                              "GeneralList_" +
                                                  id + " ORDER BY TitleName"))
      text += title;
    contents.push_back(text);
  }
  std::sort(contents.begin(), contents.end());
  EXPECT_EQ((std::vector<std::string>{"Four:EF", "Nine:C", "Other:D", "Road:B",
                                      "\xE9\xBB\x98\xE8\xAE\xA4\xE5\x88\x97\xE8\xA1\xA8:A"}),
            contents);
  // The repeated ItemID is kept under the next free SongID.
  EXPECT_EQ((std::vector<std::string>{"3", "4"}),
            QueryRows(playlists.get(), "SELECT SongID FROM GeneralList_4 ORDER BY 1"));
  // The second file's lists keep their stored order, ids notwithstanding.
  std::vector<std::string> names =
      QueryRows(playlists.get(), "SELECT PlaylistName FROM GeneralListTable ORDER BY SortID");
  auto at = [&names](const char* name) { return std::find(names.begin(), names.end(), name); };
  EXPECT_LT(at("Nine"), at("Other"));
  EXPECT_LT(at("Other"), at("Four"));
  EXPECT_NE(names.end(), at("Four"));

  EXPECT_EQ((std::vector<std::string>{"c|F:\\c.mp3"}),
            QueryRows(music.get(),
                      "SELECT d.FileName, s.FileName FROM DownloadItem d "
                      "JOIN ShareFileItems s ON s.id = d.FileID"));
  EXPECT_EQ((std::vector<std::string>{"1"}),
            QueryRows(music.get(), "SELECT COUNT(*) FROM DownloadItem"));
}

// The read moves "ImportProgress" by 5 after each table reader and by 1 per
// tenth of a long reader's rows (music items; lists with their entries),
// and never past 49, where the build takes over. Each value is in "DBCheck"
// while the read goes on, as the player sees it.
TEST_F(V6DataExporterTest, ProgressMovesWhileReading) {
  V6V1Database db;
  for (int id = 1; id <= 20; ++id)
    db.music.push_back(Music(id, L"Song " + std::to_wstring(id)));
  for (int list = 0; list < 10; ++list) {
    db.lists.push_back({100 + list, 0, L"List " + std::to_wstring(list), 0, list + 1});
    for (int entry = 0; entry < 2; ++entry)
      db.items.push_back({list * 2 + entry + 1, 100 + list, list * 2 + entry + 1, entry, 0});
  }
  ASSERT_TRUE(db.Write(program().Append(L"VTData.db")));
  Register();

  ProgressRecord record;
  record.Initialise(TestDataFolder());
  record.SetProgress(10);  // as the entry point does before the read
  ImportModel model(&record);
  const RunContext run_context = TestRunContext();
  V6DataExporter exporter(run_context, &model);
  ProgressTrace trace(&record, m_profile);
  ASSERT_EQ(ExportResult::kExported, exporter.ExportData());

  // Music videos, the music items (by tenths, then their table step), the
  // lists (by tenths, then their step), the two download tables.
  std::vector<int> deltas = {5};
  for (int long_reader = 0; long_reader < 2; ++long_reader) {
    for (int tenth : Tenths())
      deltas.push_back(tenth);
    deltas.push_back(5);
  }
  deltas.insert(deltas.end(), {5, 5});
  EXPECT_EQ(ExpectedReadProgress(10, deltas), trace.seen());
  EXPECT_EQ(49, trace.seen().back());  // the last step only reaches the ceiling
  EXPECT_EQ(L"49", m_profile.DBCheck(L"ImportProgress"));
}

// Missing tables cost their own records and bits only; a database without
// music items, or no source at all, is reported as state 1.
TEST_F(V6DataExporterTest, MissingTablesAndMissingSources) {
  V6V1Database db = SampleV1();
  db.omit_tables = {"MVItems", "Downing"};
  ASSERT_TRUE(db.Write(program().Append(L"VTData.db")));
  Register();
  {
    ProgressRecord record;
    record.Initialise(TestDataFolder());
    ImportModel model(&record);
    const RunContext run_context = TestRunContext();
    V6DataExporter exporter(run_context, &model);
    EXPECT_EQ(ExportResult::kExported, exporter.ExportData());
    EXPECT_EQ(4u, model.m_share_files.size());
    EXPECT_EQ(3u, model.m_play_lists.size());
    EXPECT_TRUE(model.m_downloads.empty());
    EXPECT_EQ(L"16", m_profile.DBCheck(L"ImportState"));
    EXPECT_NE(std::string::npos, Log().find("Table {MVItems} do not exists."));
  }

  EXPECT_TRUE(base::DeleteFile(m_profile.data_folder().Append(L"VT6Data.db")));
  db.omit_tables = {"MusicItems"};
  ASSERT_TRUE(db.Write(program().Append(L"VTData.db")));
  {
    ProgressRecord record;
    record.Initialise(TestDataFolder());
    ImportModel model(&record);
    const RunContext run_context = TestRunContext();
    V6DataExporter exporter(run_context, &model);
    // Nothing read of a source that was found: no empty library is built,
    // so that the next run tries again.
    EXPECT_EQ(ExportResult::kNothingExported, exporter.ExportData());
    EXPECT_TRUE(model.m_share_files.empty());
    EXPECT_EQ(L"1", m_profile.DBCheck(L"ImportState"));
    EXPECT_NE(std::string::npos, Log().find("Table {MusicItems} do not exists."));
  }

  EXPECT_TRUE(base::DeleteFile(m_profile.data_folder().Append(L"VT6Data.db")));
  EXPECT_TRUE(base::DeleteFile(program(), true));
  ProgressRecord record;
  record.Initialise(TestDataFolder());
  record.set_import_kind(ProgressRecord::kKindGeneration6);
  RunImport(TestRunContext(), &record);
  EXPECT_EQ(L"1", m_profile.DBCheck(L"ImportState"));
  EXPECT_EQ(L"5", m_profile.DBCheck(L"ImportEnd"));
  EXPECT_FALSE(base::PathExists(m_profile.data_folder().Append(L"VTMusicV3.db")));
  EXPECT_FALSE(base::PathExists(m_profile.data_folder().Append(L"playlistV3.db")));
}

// A library file that exists but cannot be read is not passed over: a folder
// under a library file's name, or a copy that does not open, is logged and
// reported with the bits of the readers it would have fed; the good file is
// still imported. When no file can be read at all, nothing is imported.
TEST_F(V6DataExporterTest, UnreadableLibraryFilesAreReported) {
  V6V2Library good;
  good.lists = {{1, 3, L"", 0, 0}};
  good.items = {{1, 1, L"E:\\", L"a.mp3", L"A", Hash(1)}};
  good.downloads = {{1, Hash(1), L"D:\\Down\\a.mp3", true}};
  ASSERT_TRUE(good.Write(program().Append(L"VTLibrary.db")));
  ASSERT_TRUE(base::CreateDirectory(program().Append(L"VTLibrary2.db")));
  Register();
  {
    ProgressRecord record;
    record.Initialise(TestDataFolder());
    ImportModel model(&record);
    const RunContext run_context = TestRunContext();
    V6DataExporter exporter(run_context, &model);
    EXPECT_EQ(ExportResult::kExported, exporter.ExportData());
    EXPECT_EQ(1u, model.m_share_files.size());
    EXPECT_EQ(L"6", m_profile.DBCheck(L"ImportState"));  // music items 4 + lists 2
    EXPECT_NE(std::string::npos, Log().find("VTLibrary2.db} is not a readable file."));
  }

  // A first library file whose copy is no database: its downloads, music
  // items and lists are all reported.
  for (const wchar_t* name : {L"VTLibrary.db", L"VTLibrary2.db"})
    ASSERT_TRUE(base::DeleteFile(m_profile.data_folder().Append(name), true));
  ASSERT_TRUE(base::DeleteFile(program().Append(L"VTLibrary2.db"), true));
  ASSERT_TRUE(base::WriteFile(program().Append(L"VTLibrary.db"), std::string(3000, 'x')));
  ProgressRecord record;
  record.Initialise(TestDataFolder());
  ImportModel model(&record);
  const RunContext run_context = TestRunContext();
  V6DataExporter exporter(run_context, &model);
  EXPECT_EQ(ExportResult::kNothingExported, exporter.ExportData());  // nothing could be read
  EXPECT_EQ(L"23", m_profile.DBCheck(L"ImportState"));               // 16 + 4 + 2, and 1
  EXPECT_NE(std::string::npos, Log().find("VTLibrary.db} does not open."));
  EXPECT_NE(std::wstring::npos, model.report()->failure().find(L"start again"));
}

// The "V2" copies an earlier run left are read again only while their
// source files are unchanged: a library file changed since is copied again
// and its new rows come across, an unchanged one is reused. A damaged
// "VTLibrary.db" is salvaged once, though both its downloads and its
// library are read from it.
TEST_F(V6DataExporterTest, V2CopiesFollowTheirSourcesAndAreSalvagedOnce) {
  V6V2Library first;
  first.lists = {{1, 3, L"", 0, 0}};
  for (int i = 1; i <= 300; ++i) {
    first.items.push_back({i, 1, L"E:\\Music\\A long folder name to fill the pages",
                           L"song " + std::to_wstring(i) + L".mp3", L"Song", Hash(i)});
  }
  first.downloads = {{0, Hash(1), L"E:\\Music\\a.mp3", true}};
  ASSERT_TRUE(first.Write(program().Append(L"VTLibrary.db")));
  V6V2Library second;
  second.lists = {{5, 10, L"Second", 0, 0}};
  second.items = {{1, 5, L"F:\\", L"c.mp3", L"C", Hash(1000)}};
  ASSERT_TRUE(second.Write(program().Append(L"VTLibrary2.db")));
  Register();
  auto run = [this](const char* when) {
    ProgressRecord record;
    record.Initialise(TestDataFolder());
    ImportModel model(&record);
    const RunContext run_context = TestRunContext();
    V6DataExporter exporter(run_context, &model);
    EXPECT_EQ(ExportResult::kExported, exporter.ExportData()) << when;
    // Why each work copy was made or reused, by its name.
    std::map<std::string, std::string> why;
    const base::Value report = model.report()->ToJson();
    for (const base::Value& source : report["sources"]) {
      const std::string path = source["read_from"].get<std::string>();
      why[base::FilePath::FromUTF8Unsafe(path).BaseName().AsUTF8Unsafe()] =
          source["work_copy"].get<std::string>();
    }
    return std::make_pair(model.m_share_files.size(), why);
  };
  const std::string copy1 = "VTLibrary.db";
  const std::string copy2 = "VTLibrary2.db";

  auto [songs, why] = run("first run");
  EXPECT_EQ(301u, songs);
  EXPECT_EQ("copied", why[copy2]);

  std::tie(songs, why) = run("unchanged");
  EXPECT_EQ(301u, songs);
  EXPECT_EQ("reused: the source is unchanged since the copy", why[copy1]);
  EXPECT_EQ("reused: the source is unchanged since the copy", why[copy2]);

  second.items.push_back({2, 5, L"F:\\", L"d.mp3", L"D", Hash(1001)});
  ASSERT_TRUE(second.Write(program().Append(L"VTLibrary2.db")));
  std::tie(songs, why) = run("changed");
  EXPECT_EQ(302u, songs);
  EXPECT_EQ("reused: the source is unchanged since the copy", why[copy1]);
  EXPECT_EQ("copied again: the source changed since the copy", why[copy2]);

  // A leaf of "PlayListItems" in the middle of the file zeroed.
  std::string bytes = testing_support::ReadBytes(program().Append(L"VTLibrary.db"));
  const size_t page = bytes.size() / 4096 / 2;
  bytes.replace(page * 4096, 4096, 4096, '\0');
  testing_support::WriteBytes(program().Append(L"VTLibrary.db"), bytes);
  auto salvages = [this] {
    std::string log = Log();
    size_t count = 0;
    for (size_t at = log.find("Salvaged {PlayListItems}"); at != std::string::npos;
         at = log.find("Salvaged {PlayListItems}", at + 1))
      ++count;
    return count;
  };
  const size_t before = salvages();
  std::tie(songs, why) = run("damaged");
  EXPECT_EQ("copied again: the source changed since the copy", why[copy1]);
  EXPECT_GT(songs, 250u);
  EXPECT_LT(songs, 302u);
  EXPECT_EQ(before + 1, salvages());
}

}  // namespace

}  // namespace data_importer
