#include "tools/data_importer/source_readers/v7_data_exporter/v7_data_exporter.h"

#include <gtest/gtest.h>

#include <string>

#include "base/file_util.h"
#include "sql/connection.h"
#include "sql/statement.h"
#include "testing/fixtures/generation6_fixture.h"
#include "testing/fixtures/generation7_fixture.h"
#include "testing/test_support.h"
#include "tools/data_importer/environment/data_folder.h"
#include "tools/data_importer/data_importer_main.h"
#include "tools/data_importer/driver/import_run.h"
#include "testing/importer_test_util.h"
#include "tools/data_importer/run_record/import_report.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/target_store/build_sequence.h"
#include "tools/data_importer/target_store/import_model.h"

namespace data_importer {

namespace {

const char kZero[] = "00000000000000000000000000000000";
const char kDefaultName[] = "\xE9\xBB\x98\xE8\xAE\xA4\xE5\x88\x97\xE8\xA1\xA8";  // 默认列表
const char kMark[] = "\xE7\x94\xA8\xE6\x88\xB7\xE5\x8F\x96\xE6\xB6\x88\xE5\x85\xB3\xE8\x81\x94";

std::wstring Hash(int n) {
  return testing_support::NumberedHash(n, L'A');
}

V7Music Music(int id, const std::wstring& title) {
  return NumberedV7Music(id, title, L'A');
}

// A small source with every case the readers tell apart.
V7Database Sample() {
  V7Database db;
  db.music = {Music(1, L"\u7a3b\u9999"), Music(2, L"Don't Cry"), Music(3, L"\U0001D11E Clef"),
              Music(4, L"Halo")};
  db.music[1].mv_id = 4;
  db.music[1].play_count = 6;
  db.music[2].file_name = L" ";  // the user took the file away
  db.music[3].hash.clear();
  db.lists = {{10, 1, L"Stored default name", 0},  // the default list, empty
              {11, 0, L"Road", 1},
              {12, 0, L"No entries", 2},  // type 0 without entries: left out
              {13, 5, L"Played lately", 3},
              {14, 2, L"Other type", 4},
              {15, 0, L"It's mine \U0001F3B5", 5}};
  db.items = {{1, 11, 2, 0, 2}, {2, 11, 1, 1, 1}, {3, 11, 99, 0, 3},  // 99: never imported
              {4, 13, 4, 0, 0}, {5, 14, 1, 0, 0}, {6, 15, 3, 0, 0}};
  V7Download unfinished;
  unfinished.music_id = 4;
  unfinished.dest_file_name = L"D:\\Down\\Halo.mp3";
  unfinished.percent = 40;
  V7Download finished;
  finished.finished = true;
  finished.file_name = L"D:\\Music\\Don't Cry.mp3";  // the library item 2
  finished.inet_hash = Hash(202);
  V7Download stray;
  stray.finished = true;
  stray.file_name = L"D:\\Down\\Unknown.mp3";  // no library item: dropped
  db.downloads = {unfinished, finished, stray};
  db.folders = {{1, L"D:\\Music", 1, 1400000300}};
  db.folder_items = {{1, 1, L"\u5468\u6770\u502b", L"\u9b54\u6770\u5ea7", L"Z"},
                     {1, 77, L"Nobody", L"Nothing", L"N"}};  // music 77 unknown
  db.channels = {{L"fm'1", 0, L"First", 2, 10}, {L"fm2", 1, L"Second", 1, 20}};
  db.radio_songs = {{L"fm'1", 0, Hash(301), L"R one", 31},
                    {L"fm'1", 0, Hash(302), L"R two", 32},
                    {L"fm2", 1, Hash(303), L"R three", 33},
                    {L"fm2", 0, Hash(304), L"Other type", 34}};
  db.played_radio_hashes = {Hash(401)};
  db.disliked_radio_hashes = {L""};  // no hash: the all-zero one
  return db;
}

class V7DataExporterTest : public testing::Test {
 protected:
  base::FilePath v7() const { return Generation7Folder(m_profile.roaming()); }
  base::FilePath data(const wchar_t* name) const { return m_profile.data_folder().Append(name); }

  std::unique_ptr<sql::Connection> OpenFinal(const wchar_t* name) {
    auto db = std::make_unique<sql::Connection>();
    EXPECT_TRUE(db->OpenWithKey(data(name), kVersion3DatabaseKey));
    return db;
  }

  std::string Log() {
    std::string log;
    EXPECT_TRUE(base::ReadFileToString(data(L"DataImporter.log"), &log));
    return log;
  }

  // Runs one export into a fresh model; answers ExportData's result.
  ExportResult Export(ImportModel* model) {
    const RunContext run_context = TestRunContext();
    V7DataExporter exporter(run_context, model);
    return exporter.ExportData();
  }

  TestProfile m_profile;
};

// The whole run: every table's rows land in the new databases with their
// ids translated, and the generation-7 folder stays byte for byte as it was.
TEST_F(V7DataExporterTest, ImportedEndToEnd) {
  ASSERT_TRUE(Sample().Write(v7().Append(L"VTData.db")));
  ASSERT_TRUE(base::WriteFile(v7().Append(L"PlugCusData.VST"), "plug"));
  std::string before = FolderFingerprint(v7());

  DataImporterMain();

  EXPECT_EQ(before, FolderFingerprint(v7()));
  EXPECT_EQ(L"4", m_profile.DBCheck(L"ImportEnd"));
  EXPECT_EQ(L"", m_profile.DBCheck(L"ImportState"));
  EXPECT_EQ(L"10:0,11:2,15:1", m_profile.DBCheck(L"ImportPlayLists"));
  EXPECT_EQ("plug", testing_support::ReadBytes(data(L"PlugData.VST")));
  EXPECT_TRUE(base::PathExists(data(L"VT7Data.db")));
  EXPECT_TRUE(base::PathExists(data(L"DataImporter.db")));
  EXPECT_TRUE(base::PathExists(GetDatedBackupFolder(TestRunContext()).Append(L"VT7Data.db")));

  auto music = OpenFinal(L"VTMusicV3.db");
  auto lists = OpenFinal(L"playlistV3.db");
  // Item 1's kind is its first entry's ItemType; the blank path is marked.
  EXPECT_EQ((std::vector<std::string>{
                "D:\\Music\\\xE7\xA8\xBB\xE9\xA6\x99.mp3|1|AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA1",
                "D:\\Music\\Don't Cry.mp3|0|AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA2",
                std::string(kMark) + "|0|AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA3",
                "D:\\Music\\Halo.mp3|0|" + std::string(kZero)}),
            QueryRows(music.get(),
                      "SELECT FileName, ShareFileType, MD5 FROM ShareFileItems ORDER BY id"));
  EXPECT_EQ((std::vector<std::string>{"10|" + std::string(kDefaultName) + "|0|0", "11|Road|2|1",
                                      "15|It's mine \xF0\x9F\x8E\xB5|2|5"}),
            QueryRows(lists.get(),
                      "SELECT PlayListID, PlaylistName, PlaylistType, SortID "
                      "FROM GeneralListTable ORDER BY PlayListID"));
  EXPECT_EQ(
      (std::vector<std::string>{"2|\xE7\xA8\xBB\xE9\xA6\x99|0|1", "1|Don't Cry|6|2"}),
      QueryRows(lists.get(),
                "SELECT SongID, TitleName, PlayCount, SortID FROM GeneralList_11 ORDER BY SortID"));
  // The unlinked entry stays, without a path.
  EXPECT_EQ((std::vector<std::string>{"\xF0\x9D\x84\x9E Clef|"}),
            QueryRows(lists.get(), "SELECT TitleName, MusicFilePath FROM GeneralList_15"));
  EXPECT_TRUE(lists->DoesTableExist("GeneralList_10"));
  EXPECT_FALSE(lists->DoesTableExist("GeneralList_12"));
  EXPECT_FALSE(lists->DoesTableExist("GeneralList_13"));
  EXPECT_FALSE(lists->DoesTableExist("GeneralList_14"));
  EXPECT_EQ((std::vector<std::string>{"Halo|D:\\Music\\Halo.mp3"}),
            QueryRows(music.get(), "SELECT TitleName, MusicFilePath FROM RecentlyPlayedItem"));

  EXPECT_EQ((std::vector<std::string>{"Halo|40|D:\\Down\\Halo.mp3.tmp", "Don't Cry|100|"}),
            QueryRows(music.get(),
                      "SELECT FileName, Percent, TempFileName FROM DownloadItem ORDER BY ID"));
  EXPECT_EQ((std::vector<std::string>{"Don't Cry|AAAAAAAAAAAAAAAAAAAAAAAAAAAAA202"}),
            QueryRows(music.get(), "SELECT FileName, RelevanceFileHash FROM DownloadHistoryItem"));

  EXPECT_EQ((std::vector<std::string>{"D:\\Music|1"}),
            QueryRows(music.get(), "SELECT Path, AddType FROM ShareFolders"));
  EXPECT_EQ((std::vector<std::string>{"D:\\Music\\\xE7\xA8\xBB\xE9\xA6\x99.mp3|D:\\Music|"
                                      "\xE5\x91\xA8\xE6\x9D\xB0\xE5\x80\xAB|Z|Zt"}),
            QueryRows(music.get(),
                      "SELECT FilePath, FolderPath, Artist, FullLetterByArtist, "
                      "FullLetterByTitle FROM LocalFiles"));

  EXPECT_EQ((std::vector<std::string>{"1|fm'1|First|0|2|10", "2|fm2|Second|1|1|20"}),
            QueryRows(music.get(),
                      "SELECT ID, FMID, FMName, FMType, SortID, Heat "
                      "FROM RadioChannelTable ORDER BY ID"));
  EXPECT_EQ((std::vector<std::string>{"1|R one|AAAAAAAAAAAAAAAAAAAAAAAAAAAAA301|31",
                                      "2|R two|AAAAAAAAAAAAAAAAAAAAAAAAAAAAA302|32"}),
            QueryRows(music.get(),
                      "SELECT SongID, TitleName, MusicFileHash, ServerFileID "
                      "FROM RadioChannel_1 ORDER BY SongID"));
  EXPECT_EQ((std::vector<std::string>{"R three"}),
            QueryRows(music.get(), "SELECT TitleName FROM RadioChannel_2"));
  EXPECT_EQ((std::vector<std::string>{"AAAAAAAAAAAAAAAAAAAAAAAAAAAAA401"}),
            QueryRows(music.get(), "SELECT Hash FROM PlayedNJRadioItem"));
  EXPECT_EQ((std::vector<std::string>{kZero}),
            QueryRows(music.get(), "SELECT Hash FROM DislikeRadioItem"));

  std::string log = Log();
  EXPECT_NE(std::string::npos, log.find("[V7数据导入] Size of FileItems is {4}."));
  EXPECT_NE(std::string::npos,
            log.find("[V7数据导入]  Size of PlayListItems(ID=11) is {TOTAL:3, LOADED:2}."));
}

// The links between records: a finished download whose file moved finds it
// by its catalogue hash, an entry carries its music item's MV, playability
// follows one rule in every song table, and files without a path (the
// unlinked mark) stay out of "LocalFiles".
TEST_F(V7DataExporterTest, DownloadsVideosAndUnlinkedFiles) {
  V7Database db;
  db.music = {Music(1, L"Moved"), Music(2, L"With video"), Music(3, L"The video"),
              Music(4, L"Gone one"), Music(5, L"Gone two")};
  db.music[0].inet_hash = Hash(901);
  db.music[1].mv_id = 3;
  db.music[2].file_name = L"D:\\Video\\The video.mkv";
  db.music[2].duration = 180000;
  db.music[3].file_name = L" ";
  db.music[4].file_name = L" ";
  db.lists = {{10, 1, L"Default", 0}, {13, 5, L"Played lately", 1}};
  db.items = {{1, 10, 2, 0, 1}, {2, 10, 4, 0, 2}, {3, 13, 1, 0, 1}, {4, 13, 4, 0, 2}};
  V7Download moved;  // renamed after its download; its catalogue hash is item 1's
  moved.finished = true;
  moved.file_name = L"D:\\Down\\Moved (1).mp3";
  moved.inet_hash = Hash(901);
  V7Download by_file_hash;  // the catalogue hash is item 2's content hash
  by_file_hash.finished = true;
  by_file_hash.file_name = L"D:\\Down\\Elsewhere.mp3";
  by_file_hash.inet_hash = Hash(2);
  V7Download by_path;  // the path wins over a hash naming another item
  by_path.finished = true;
  by_path.file_name = L"D:\\Music\\With video.mp3";
  by_path.inet_hash = Hash(901);
  V7Download stray;
  stray.finished = true;
  stray.file_name = L"D:\\Down\\Unknown.mp3";
  stray.inet_hash = Hash(999);
  db.downloads = {moved, by_file_hash, by_path, stray};
  db.folders = {{1, L"D:\\Music", 1, 1400000300}};
  db.folder_items = {{1, 1, L"A", L"B", L"C"}, {1, 4, L"A", L"B", L"C"}, {1, 5, L"A", L"B", L"C"}};
  ASSERT_TRUE(db.Write(v7().Append(L"VTData.db")));

  DataImporterMain();

  EXPECT_EQ(L"4", m_profile.DBCheck(L"ImportEnd"));
  auto music = OpenFinal(L"VTMusicV3.db");
  auto lists = OpenFinal(L"playlistV3.db");
  EXPECT_EQ((std::vector<std::string>{"Moved (1)|1", "Elsewhere|2", "With video|2"}),
            QueryRows(music.get(),
                      "SELECT h.FileName, d.FileID FROM DownloadHistoryItem h "
                      "JOIN DownloadItem d ON d.ID = h.ID ORDER BY h.ID"));
  EXPECT_EQ((std::vector<std::string>{
                "With video|D:\\Video\\The video.mkv|AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA3|180000|1",
                "Gone one|||0|0"}),
            QueryRows(lists.get(),
                      "SELECT TitleName, MVFilePath, MVFileHash, MVFileDuration, "
                      "MusicFilePlayable FROM GeneralList_10 ORDER BY SortID"));
  EXPECT_EQ((std::vector<std::string>{"Moved|1", "Gone one|0"}),
            QueryRows(music.get(),
                      "SELECT TitleName, MusicFilePlayable FROM RecentlyPlayedItem "
                      "ORDER BY SongID"));
  EXPECT_EQ((std::vector<std::string>{"D:\\Music\\Moved.mp3"}),
            QueryRows(music.get(), "SELECT FilePath FROM LocalFiles"));

  base::Value report = ReadImportReport(m_profile.data_folder());
  const base::Value* history =
      FindEntry(report["flows"], "from", "DownHistory", "to", "DownloadItem");
  ASSERT_TRUE(history);
  EXPECT_EQ(3, (*history)["written"]);
  EXPECT_EQ(1, (*history)["dropped_by_reason"]["download_unresolved"]);
  const base::Value* local = FindEntry(report["flows"], "from", "FolderItems", "to", "LocalFiles");
  ASSERT_TRUE(local);
  EXPECT_EQ(1, (*local)["written"]);
  EXPECT_EQ(2, (*local)["dropped_by_reason"]["unlinked_file"]);
  ExpectReportReconciles(report, m_profile.data_folder());
}

// Where several library items share a finished download's path or hash,
// the lowest item id wins, in whatever order the items were stored.
TEST_F(V7DataExporterTest, FinishedDownloadTakesTheLowestItemId) {
  V7Database db;
  db.music = {Music(9, L"Twice"), Music(3, L"Twice"), Music(8, L"Eight"), Music(4, L"Four"),
              Music(6, L"Six")};
  db.music[2].inet_hash = Hash(77);
  db.music[3].inet_hash = Hash(77);
  db.music[4].inet_hash = Hash(77);
  db.lists = {{10, 1, L"Default", 0}};
  db.items = {{1, 10, 9, 0, 1}};
  V7Download by_path;
  by_path.finished = true;
  by_path.file_name = L"D:\\Music\\Twice.mp3";
  V7Download by_hash;
  by_hash.finished = true;
  by_hash.file_name = L"D:\\Down\\Moved.mp3";
  by_hash.inet_hash = Hash(77);
  db.downloads = {by_path, by_hash};
  ASSERT_TRUE(db.Write(v7().Append(L"VTData.db")));

  ImportModel model;
  ASSERT_EQ(ExportResult::kExported, Export(&model));
  ASSERT_EQ(2u, model.m_downloads.size());
  EXPECT_EQ(3, model.m_downloads[0]->file_id);
  EXPECT_EQ(4, model.m_downloads[1]->file_id);
}

// "ImportProgress" moves by tenths of the music items and of the lists and
// by 5 after each reader, each value in "DBCheck" while the read goes on, and
// stops at 49 although readers are left.
TEST_F(V7DataExporterTest, ProgressMovesWhileReading) {
  V7Database db;
  for (int id = 1; id <= 20; ++id)
    db.music.push_back(Music(id, L"Song " + std::to_wstring(id)));
  for (int list = 0; list < 10; ++list) {
    db.lists.push_back({100 + list, 0, L"List " + std::to_wstring(list), list});
    db.items.push_back({list + 1, 100 + list, list + 1, 0, 0});
  }
  ASSERT_TRUE(db.Write(v7().Append(L"VTData.db")));

  ProgressRecord record;
  record.Initialise(TestDataFolder());
  record.SetProgress(10);
  ImportModel model(&record);
  ProgressTrace trace(&record, m_profile);
  ASSERT_EQ(ExportResult::kExported, Export(&model));

  std::vector<int> deltas;
  for (int long_reader = 0; long_reader < 2; ++long_reader) {
    for (int tenth : Tenths())
      deltas.push_back(tenth);
    deltas.push_back(5);
  }
  deltas.insert(deltas.end(), 8, 5);  // the other eight readers
  EXPECT_EQ(ExpectedReadProgress(10, deltas), trace.seen());
  EXPECT_EQ(L"49", m_profile.DBCheck(L"ImportProgress"));
  EXPECT_EQ(20u, model.m_share_files.size());
}

// Missing tables cost their own records and bit 16 only; a source without
// "FileItems" imports nothing and the run writes no databases.
TEST_F(V7DataExporterTest, MissingTables) {
  V7Database db = Sample();
  db.omit_tables = {"RadioList", "FolderItems"};
  ASSERT_TRUE(db.Write(v7().Append(L"VTData.db")));
  {
    ProgressRecord record;
    record.Initialise(TestDataFolder());
    ImportModel model(&record);
    EXPECT_EQ(ExportResult::kExported, Export(&model));
    EXPECT_EQ(L"16", m_profile.DBCheck(L"ImportState"));
    EXPECT_TRUE(model.m_radio_channels.empty());
    EXPECT_TRUE(model.m_local_files.empty());
    // The readers after the radio channels still ran.
    EXPECT_EQ(1u, model.m_dislike_radio.size());
    EXPECT_EQ(1u, model.m_played_radio.size());
    EXPECT_EQ(4u, model.m_share_files.size());
    EXPECT_EQ(3u, model.m_downloads.size());
    EXPECT_GT(record.progress(), 0);
    EXPECT_LE(record.progress(), 49);
  }

  EXPECT_TRUE(base::DeleteFile(data(L"VT7Data.db")));
  db.omit_tables = {"FileItems"};
  ASSERT_TRUE(db.Write(v7().Append(L"VTData.db")));
  ProgressRecord record;
  record.Initialise(TestDataFolder());
  record.set_import_kind(ProgressRecord::kKindGeneration7);
  RunImport(TestRunContext(), &record);
  EXPECT_EQ(L"1", m_profile.DBCheck(L"ImportState"));
  EXPECT_EQ(L"5", m_profile.DBCheck(L"ImportEnd"));
  EXPECT_FALSE(base::PathExists(data(L"VTMusicV3.db")));
  EXPECT_FALSE(base::PathExists(data(L"playlistV3.db")));
}

// A second run reads the work copy of the first even when the generation-7
// folder is gone; without either, the export reports state 1 and the
// debugger line.
TEST_F(V7DataExporterTest, WorkCopyReusedAndNoSource) {
  ASSERT_TRUE(Sample().Write(v7().Append(L"VTData.db")));
  {
    ImportModel model;
    ASSERT_EQ(ExportResult::kExported, Export(&model));
    EXPECT_FALSE(base::PathExists(data(L"PlugData.VST")));  // none in the source
  }
  ASSERT_TRUE(base::DeleteFile(v7(), true));
  {
    ImportModel model;
    EXPECT_EQ(ExportResult::kExported, Export(&model));
    EXPECT_EQ(4u, model.m_share_files.size());
    EXPECT_EQ(3u, model.m_play_lists.size());
    EXPECT_EQ(2u, model.m_radio_channels.size());
  }
  EXPECT_FALSE(base::PathExists(v7()));  // nothing was created there

  ASSERT_TRUE(base::DeleteFile(data(L"VT7Data.db")));
  ProgressRecord record;
  record.Initialise(TestDataFolder());
  ImportModel model(&record);
  EXPECT_EQ(ExportResult::kNothingExported, Export(&model));
  EXPECT_EQ(L"1", m_profile.DBCheck(L"ImportState"));
  EXPECT_TRUE(model.m_share_files.empty());
}

// The folder and file names are found in any letter case, and generation 7
// wins over a generation-6 installation in the same profile.
TEST_F(V7DataExporterTest, OtherLetterCaseAndWinsOverGeneration6) {
  base::FilePath folder = m_profile.roaming().Append(L"VANTU7");
  ASSERT_TRUE(Sample().Write(folder.Append(L"vtdata.DB")));
  ASSERT_TRUE(base::WriteFile(folder.Append(L"plugcusdata.vst"), "plug"));
  base::FilePath program = m_profile.root().Append(L"VanTa6");
  V6V1Database v6;
  v6.music = {{1, L"D:\\v6.mp3", L"v6", L"", 0}};
  ASSERT_TRUE(v6.Write(program.Append(L"VTData.db")));
  ASSERT_TRUE(base::WriteFile(m_profile.root().Append(L"user.reg"), V6RegistryText(program)));

  DataImporterMain();

  EXPECT_EQ(L"4", m_profile.DBCheck(L"ImportEnd"));
  EXPECT_EQ("plug", testing_support::ReadBytes(data(L"PlugData.VST")));
  EXPECT_FALSE(base::PathExists(data(L"VT6Data.db")));
  auto music = OpenFinal(L"VTMusicV3.db");
  EXPECT_EQ((std::vector<std::string>{"4"}),
            QueryRows(music.get(), "SELECT COUNT(*) FROM ShareFileItems"));
}

// Overwrites the free-page count and first free page in the file header:
// the pages are lost, which the integrity check reports and VACUUM mends.
void LoseFreePages(const base::FilePath& path) {
  {
    sql::Connection db;
    ASSERT_TRUE(db.Open(path));
    ASSERT_TRUE(db.Execute("CREATE TABLE Junk(x text)"));
    ASSERT_TRUE(
        db.Execute("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
                   "WHERE i < 2000) INSERT INTO Junk SELECT printf('%0400d', i) FROM n"));
    ASSERT_TRUE(db.Execute("DROP TABLE Junk"));
  }
  std::string bytes = testing_support::ReadBytes(path);
  bytes.replace(32, 8, std::string(8, '\0'));
  testing_support::WriteBytes(path, bytes);
}

// A source that one VACUUM repairs is read; one beyond repair ends with
// state 1 and no databases.
TEST_F(V7DataExporterTest, RepairedAndUnrepairableSources) {
  base::FilePath source = v7().Append(L"VTData.db");
  ASSERT_TRUE(Sample().Write(source));
  LoseFreePages(source);
  {
    ProgressRecord record;
    record.Initialise(TestDataFolder());
    ImportModel model(&record);
    EXPECT_EQ(ExportResult::kExported, Export(&model));
    EXPECT_EQ(4u, model.m_share_files.size());
    EXPECT_EQ(L"", m_profile.DBCheck(L"ImportState"));
  }

  EXPECT_TRUE(base::DeleteFile(data(L"VT7Data.db")));
  ASSERT_TRUE(Sample().Write(source));
  {
    sql::Connection db;
    ASSERT_TRUE(db.Open(source));
    sql::Statement root(
        db.GetUniqueStatement("SELECT rootpage FROM sqlite_master WHERE name = 'FileItems'"));
    ASSERT_TRUE(root.Step());
    int page = root.ColumnInt(0);
    db.Close();
    std::string bytes = testing_support::ReadBytes(source);
    size_t at = static_cast<size_t>(page - 1) * 4096;
    ASSERT_LT(at + 64, bytes.size());
    for (size_t i = 0; i < 64; ++i)
      bytes[at + i] = static_cast<char>(0xA5 ^ i);
    testing_support::WriteBytes(source, bytes);
  }
  // The library table is lost, but the rest of the file is still read from
  // its salvage copy: the lists come across (their entries, whose songs are
  // gone, are dropped), and the lost table keeps its failure bit.
  ProgressRecord record;
  record.Initialise(TestDataFolder());
  record.set_import_kind(ProgressRecord::kKindGeneration7);
  RunImport(TestRunContext(), &record);
  EXPECT_EQ(L"4", m_profile.DBCheck(L"ImportState"));
  EXPECT_TRUE(base::PathExists(data(L"VTMusicV3.db")));
  base::Value report = record.report()->ToJson();
  const base::Value* lost = FindEntry(report["salvage"], "table", "FileItems");
  ASSERT_NE(nullptr, lost);
  EXPECT_EQ(0, (*lost)["rows_salvaged"]);
  EXPECT_EQ(false, (*lost)["complete"]);
  const base::Value* lists = FindEntry(report["salvage"], "table", "PlayLists");
  ASSERT_NE(nullptr, lists);
  EXPECT_EQ(6, (*lists)["rows_salvaged"]);
  EXPECT_EQ(true, (*lists)["complete"]);
  EXPECT_FALSE(base::PathExists(base::FilePath(data(L"VT7Data.db").value() + L".salvage")));
}

// NULL in every column of every table reads as 0 or empty, never crashes,
// and the hashes become the all-zero hash.
TEST_F(V7DataExporterTest, NullsInEveryColumn) {
  V7Database db;  // every table, no rows
  base::FilePath source = v7().Append(L"VTData.db");
  ASSERT_TRUE(db.Write(source));
  {
    sql::Connection raw;
    ASSERT_TRUE(raw.Open(source));
    for (const char* table : {"FileItems", "PlayLists", "PlayListItems", "Downing", "DownHistory",
                              "ShareFolders", "FolderItems", "RadioListNJPlayedItems", "RadioList",
                              "RadioListSongs", "RadioListDislikeSongs"}) {
      ASSERT_TRUE(raw.Execute(("INSERT INTO " + std::string(table) + " DEFAULT VALUES").c_str()))
          << table;
    }
    // The row ids filled the integer keys; make them NULL where they are not
    // the row id itself.
    ASSERT_TRUE(raw.Execute("UPDATE PlayLists SET PlayListType = 1"));
  }
  ProgressRecord record;
  record.Initialise(TestDataFolder());
  ImportModel model(&record);
  ASSERT_EQ(ExportResult::kExported, Export(&model));
  EXPECT_EQ(L"", m_profile.DBCheck(L"ImportState"));
  ASSERT_EQ(1u, model.m_share_files.size());
  const ShareFileItem& file = *model.m_share_files[0];
  EXPECT_EQ(L"", file.FileName);
  EXPECT_EQ(0, file.ShareFileType);
  EXPECT_EQ(kZero, std::string(file.MD5.text.str().begin(), file.MD5.text.str().end()));
  ASSERT_EQ(1u, model.m_play_lists.size());
  EXPECT_EQ(L"\u9ed8\u8ba4\u5217\u8868", model.m_play_lists[0]->PlaylistName);
  ASSERT_EQ(2u, model.m_downloads.size());
  EXPECT_EQ(L"", model.m_downloads[0]->FileName);
  EXPECT_EQ(1u, model.m_radio_channels.size());
  EXPECT_EQ(L"", model.m_radio_channels[0]->FMID);
  EXPECT_EQ(1u, model.m_dislike_radio.size());
  EXPECT_EQ(1u, model.m_played_radio.size());
}

TEST_F(V7DataExporterTest, DumpAndDatabasePath) {
  ImportModel model;
  const RunContext run_context = TestRunContext();
  V7DataExporter exporter(run_context, &model);
  EXPECT_EQ(v7().Append(L"VTData.db").value(), exporter.GetDatabasePath().value());
  ASSERT_TRUE(Sample().Write(v7().Append(L"VTData.db")));
  std::wstring dump = exporter.Dump(exporter.GetDatabasePath());
  EXPECT_NE(std::wstring::npos, dump.find(L"\tFileItems: COUNT(FileItemID) is {4}.\n"));
  EXPECT_NE(std::wstring::npos, dump.find(L"\tRadioList: COUNT(ID) is {2}.\n"));
}

}  // namespace

}  // namespace data_importer
