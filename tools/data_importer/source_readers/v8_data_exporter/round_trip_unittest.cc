// The contract between the re-import and the writers: databases our build
// wrote, stored plain as "VTMusic.db" and "vantu.db" and imported again,
// build into databases whose every table holds the same rows.

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
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/target_store/import_model_test_util.h"

namespace data_importer {

namespace {

class RoundTripTest : public testing::TestWithParam<uint32_t> {
 protected:
  base::FilePath Data(const wchar_t* name) const { return m_profile.data_folder().Append(name); }
  base::FilePath First(const wchar_t* name) const {
    return m_profile.root().Append(L"first").Append(name);
  }

  // Builds |model| into the version-3 databases, then moves them aside to
  // "first/" and leaves their plain copies as the older files of the data
  // folder.
  void BuildAndStorePlain(ImportModel* model) {
    ProgressRecord record;
    record.Initialise(TestDataFolder());
    model->m_progress = &record;
    ASSERT_TRUE(IsOk(BuildDatabases(model, m_profile.data_folder())));
    model->m_progress = nullptr;
    ASSERT_TRUE(base::CreateDirectory(First(L"")));
    for (const wchar_t* name : {L"VTMusicV3.db", L"playlistV3.db"})
      ASSERT_TRUE(base::ReplaceFile(Data(name), First(name)));
    ASSERT_TRUE(
        ExportPlainDatabase(First(L"VTMusicV3.db"), kVersion3DatabaseKey, Data(L"VTMusic.db")));
    ASSERT_TRUE(
        ExportPlainDatabase(First(L"playlistV3.db"), kVersion3DatabaseKey, Data(L"vantu.db")));
    ASSERT_TRUE(base::DeleteFile(m_profile.ini()));
  }

  // Every table of the two databases of |name|, schema and rows.
  void ExpectSameTables(const wchar_t* name, const std::vector<std::string>& expected_tables) {
    SCOPED_TRACE(testing::Message() << "database " << base::FilePath(name).AsUTF8Unsafe());
    sql::Connection first, second;
    ASSERT_TRUE(first.OpenWithKey(First(name), kVersion3DatabaseKey));
    ASSERT_TRUE(second.OpenWithKey(Data(name), kVersion3DatabaseKey));
    std::vector<std::string> tables = TableNames(&first);
    for (const std::string& table : expected_tables)
      EXPECT_NE(tables.end(), std::find(tables.begin(), tables.end(), table)) << table;
    ASSERT_EQ(tables, TableNames(&second));
    for (const std::string& table : tables) {
      SCOPED_TRACE(table);
      EXPECT_EQ(StoredSchema(&first, table), StoredSchema(&second, table));
      std::vector<std::string> rows = TypedRows(&first, table);
      // Only the list generated without entries is empty.
      EXPECT_EQ(table == "GeneralList_0", rows.empty());
      EXPECT_EQ(rows, TypedRows(&second, table));
    }
  }

  TestProfile m_profile;
};

// A generated model with every record type goes the whole way: build,
// decrypt, the run's own task decision and re-import, build again.
TEST_P(RoundTripTest, EveryTableHoldsTheSameRows) {
  ImportModel model;
  FillGeneratedModel(&model, GetParam());
  BuildAndStorePlain(&model);
  std::string music_before = testing_support::ReadBytes(Data(L"VTMusic.db"));
  std::string lists_before = testing_support::ReadBytes(Data(L"vantu.db"));

  DataImporterMain();

  EXPECT_EQ(L"4", m_profile.DBCheck(L"ImportEnd"));  // no failure bit
  EXPECT_EQ(L"100", m_profile.DBCheck(L"ImportProgress"));
  ExpectSameTables(L"VTMusicV3.db",
                   {"ShareFileItems", "ShareFolders", "LocalFiles", "AppTools",
                    "RecentlyPlayedItem", "RadioChannelTable", "RadioChannel_-9",
                    "RadioChannel_555", "DislikeRadioItem", "PlayedNJRadioItem", "DownloadItem",
                    "DownloadHistoryItem", "UserLoginHistory", "KeywordSearchHistory"});
  ExpectSameTables(L"playlistV3.db",
                   {"GeneralListTable", "GeneralList_-3", "GeneralList_0", "GeneralList_-77",
                    "GeneralList_2147483647", "GeneralList_-2147483648"});
  // The originals are only ever copied.
  EXPECT_EQ(music_before, testing_support::ReadBytes(Data(L"VTMusic.db")));
  EXPECT_EQ(lists_before, testing_support::ReadBytes(Data(L"vantu.db")));
}

INSTANTIATE_TEST_SUITE_P(Seeds, RoundTripTest, testing::Values(1u, 20261123u));

}  // namespace

}  // namespace data_importer
