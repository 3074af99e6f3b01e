// The sample of the first releases' plain databases, imported by a whole
// run: downloads, local files, cloud lists and NULLs come back in the
// finished encrypted files as the old files held them.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "sql/connection.h"
#include "testing/fixtures/reimport_fixture.h"
#include "testing/importer_test_util.h"
#include "tools/data_importer/data_importer_main.h"
#include "tools/data_importer/target_store/build_sequence.h"

namespace data_importer {

namespace {

class ReimportSampleTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(WriteSampleReimportDatabases(m_profile.data_folder()));
    ASSERT_TRUE(m_source_music.Open(Data(L"VTMusic.db")));
    ASSERT_TRUE(m_source_lists.Open(Data(L"vantu.db")));
    DataImporterMain();
    ASSERT_EQ(L"4", m_profile.DBCheck(L"ImportEnd"));
    ASSERT_TRUE(m_music.OpenWithKey(Data(L"VTMusicV3.db"), kVersion3DatabaseKey));
    ASSERT_TRUE(m_lists.OpenWithKey(Data(L"playlistV3.db"), kVersion3DatabaseKey));
  }

  base::FilePath Data(const wchar_t* name) const { return m_profile.data_folder().Append(name); }

  // The values of |column| in row order, NULL told apart from text.
  static std::vector<std::string> Column(sql::Connection* db,
                                         const std::string& table,
                                         const std::string& column) {
    return QueryRows(db, "SELECT quote(" + column + ") FROM \"" + table + "\" ORDER BY rowid");
  }

  TestProfile m_profile;
  sql::Connection m_source_music;
  sql::Connection m_source_lists;
  sql::Connection m_music;
  sql::Connection m_lists;
};

// Each download table holds exactly its own rows again, access times and
// types included, and every download names the file at its destination.
TEST_F(ReimportSampleTest, DownloadsAreNeitherDoubledNorMoved) {
  EXPECT_EQ(L"", m_profile.DBCheck(L"ImportState"));
  EXPECT_EQ((std::vector<std::string>{"11|0|100|1500000011", "12|0|100|1500000012",
                                      "13|20|100|1500000013", "14|0|40|1500000014"}),
            QueryRows(&m_music,
                      "SELECT DownloadID, DownType, Percent, AccessTime FROM "
                      "DownloadItem ORDER BY ID"));
  EXPECT_EQ((std::vector<std::string>{"11|0|1600000011", "12|0|1600000012", "13|20|1600000013",
                                      "15|1|1500000015", "16|0|1500000016"}),
            QueryRows(&m_music,
                      "SELECT DownloadID, DownType, AccessTime FROM "
                      "DownloadHistoryItem ORDER BY ID"));
  EXPECT_EQ(std::vector<std::string>{"4"},
            QueryRows(&m_music,
                      "SELECT count(*) FROM DownloadItem d JOIN ShareFileItems f ON "
                      "f.id = d.FileID AND f.FileName = d.DestFileName"));
}

// Folder paths Windows takes for a library folder name that folder; one
// that names none is kept and counted.
TEST_F(ReimportSampleTest, LocalFilesKeepTheirFolder) {
  EXPECT_EQ((std::vector<std::string>{
                "D:\\Music\\Song 1.mp3|D:\\Music", "D:\\Music\\Song 2.mp3|D:\\Music",
                "D:\\Music\\Song 3.mp3|D:\\Music", "E:\\Downloads\\Fresh.mp3|E:\\Downloads",
                "F:\\Elsewhere\\Old.mp3|F:\\Elsewhere"}),
            QueryRows(&m_music, "SELECT FilePath, FolderPath FROM LocalFiles ORDER BY FilePath"));
  base::Value report = ReadImportReport(m_profile.data_folder());
  EXPECT_EQ(1, report["kept_unlinked"]["local_file_folder_not_in_library"]);
  ExpectReportReconciles(report, m_profile.data_folder());
}

// The cloud lists move to the playlist file, row for row, as the upgrade
// moves them: the lists, the songs of list 3 (list 0 has no table there),
// the operations and the accompaniments; the older layout's table stays
// behind. Each carried table is counted in the report from its source rows
// to the rows in the finished file, each one left behind as dropped.
TEST_F(ReimportSampleTest, CloudListsMoveToThePlaylistFile) {
  for (const char* table :
       {"CloudListTable", "NewCloudList_3", "CloudOperation", "CloudAccompanimentItemSet"}) {
    SCOPED_TRACE(table);
    EXPECT_TRUE(m_lists.DoesTableExist(table));
    EXPECT_EQ(TypedRows(&m_source_music, table), TypedRows(&m_lists, table));
    EXPECT_FALSE(m_music.DoesTableExist(table));
  }
  EXPECT_FALSE(m_lists.DoesTableExist("NewCloudList_0"));
  EXPECT_FALSE(m_lists.DoesTableExist("CloudList_Sync"));
  EXPECT_FALSE(m_music.DoesTableExist("CloudList_Sync"));

  base::Value report = ReadImportReport(m_profile.data_folder());
  for (const auto& [table, rows] :
       std::vector<std::pair<std::string, int64_t>>{{"CloudListTable", 2},
                                                    {"NewCloudList_3", 4},
                                                    {"CloudOperation", 3},
                                                    {"CloudAccompanimentItemSet", 2}}) {
    SCOPED_TRACE(table);
    const base::Value* source = FindEntry(report["source_tables"], "table", table);
    ASSERT_TRUE(source);
    EXPECT_EQ(rows, (*source)["rows_read"]);
    const base::Value* flow = FindEntry(report["flows"], "to", table);
    ASSERT_TRUE(flow);
    EXPECT_EQ(table, (*flow)["from"]);
    EXPECT_EQ(rows, (*flow)["written"]);
    const base::Value* target = FindEntry(report["target_tables"], "table", table);
    ASSERT_TRUE(target);
    EXPECT_EQ(rows, (*target)["rows_counted"]);
  }
  // What the move leaves behind is read and dropped, with its reason.
  for (const char* table : {"NewCloudList_0", "CloudList_Sync"}) {
    SCOPED_TRACE(table);
    const base::Value* flow = FindEntry(report["flows"], "from", table);
    ASSERT_TRUE(flow);
    EXPECT_EQ(1, (*flow)["read"]);
    EXPECT_EQ(0, (*flow)["written"]);
    EXPECT_EQ(1, (*flow)["dropped_by_reason"]["cloud_list_left_behind"]);
  }
  ExpectReportReconciles(report, m_profile.data_folder());
}

// Every table of both old files, cloud lists included, is in the report
// with the rows it holds.
TEST_F(ReimportSampleTest, EveryTableIsCounted) {
  base::Value report = ReadImportReport(m_profile.data_folder());
  size_t tables = 0;
  for (sql::Connection* db : {&m_source_music, &m_source_lists}) {
    for (const std::string& table : TableNames(db)) {
      SCOPED_TRACE(table);
      ++tables;
      const base::Value* counted = FindEntry(report["source_tables"], "table", table);
      ASSERT_TRUE(counted);
      EXPECT_EQ(TableRowCount(db, table), (*counted)["rows_read"]);
    }
  }
  EXPECT_EQ(tables, report["source_tables"].size()) << report["source_tables"].dump();
}

// Every column that may hold NULL holds the old file's NULLs and texts again,
// row for row; the sample has NULLs in each.
TEST_F(ReimportSampleTest, NullComesBackAsNull) {
  const std::vector<std::pair<std::string, std::string>> music_columns = {
      {"ShareFileItems", "MD5"},
      {"ShareFileItems", "MpegMD5"},
      {"DownloadItem", "MD5"},
      {"DownloadItem", "RelevanceFileHash"},
      {"DownloadHistoryItem", "MD5"},
      {"DownloadHistoryItem", "RelevanceFileHash"},
      {"RecentlyPlayedItem", "MusicFileHash"},
      {"RecentlyPlayedItem", "MVFileHash"},
      {"DislikeRadioItem", "Hash"},
      {"PlayedNJRadioItem", "Hash"},
      {"AppTools", "Path"}};
  for (const auto& [table, column] : music_columns) {
    SCOPED_TRACE(table + "." + column);
    std::vector<std::string> before = Column(&m_source_music, table, column);
    EXPECT_NE(before.end(), std::find(before.begin(), before.end(), "NULL"));
    EXPECT_EQ(before, Column(&m_music, table, column));
  }
  for (const char* table : {"GeneralList_1", "GeneralList_2"}) {
    for (const char* column : {"MusicFileHash", "MVFileHash"}) {
      SCOPED_TRACE(std::string(table) + "." + column);
      std::vector<std::string> before = Column(&m_source_lists, table, column);
      EXPECT_NE(before.end(), std::find(before.begin(), before.end(), "NULL"));
      EXPECT_EQ(before, Column(&m_lists, table, column));
    }
  }
}

}  // namespace

}  // namespace data_importer
