#include "tools/data_importer/data_exporter.h"

#include <gtest/gtest.h>

#include "base/file_util.h"
#include "sql/connection.h"
#include "testing/test_support.h"

namespace {

TEST(DataExporterTest, DumpSummaries) {
  testing_support::ScopedTempDir dir;
  base::FilePath missing = dir.path().Append(L"VTData.db");
  EXPECT_EQ(L"{" + missing.value() + L"} do not exists.",
            DumpTableSummary(missing, Generation7DumpTables()));
  EXPECT_FALSE(base::PathExists(missing));  // nothing was created

  base::FilePath none = dir.path().Append(L"none.db");
  {
    sql::Connection db;
    ASSERT_TRUE(db.Open(none));
    EXPECT_TRUE(db.Execute("CREATE TABLE Unrelated(x)"));
  }
  EXPECT_EQ(L"SUMMARY OF DB FILE {" + none.value() + L"}: \n",
            DumpTableSummary(none, Generation7DumpTables()));

  base::FilePath some = dir.path().Append(L"some.db");
  {
    sql::Connection db;
    ASSERT_TRUE(db.Open(some));
    EXPECT_TRUE(db.Execute("CREATE TABLE PlayLists(PlayListID integer)"));
    EXPECT_TRUE(db.Execute("CREATE TABLE AppLists(ID integer)"));
    EXPECT_TRUE(db.Execute("INSERT INTO AppLists VALUES (1), (2), (NULL)"));
  }
  EXPECT_EQ(L"SUMMARY OF DB FILE {" + some.value() + L"}: \n"
                L"\tAppLists: COUNT(ID) is {2}.\n"
                L"\tPlayLists: COUNT(PlayListID) is {0}.\n",
            DumpTableSummary(some, Generation7DumpTables()));

  base::FilePath garbage = dir.path().Append(L"garbage.db");
  testing_support::WriteBytes(garbage, std::string(4096, 'g'));
  EXPECT_EQ(L"Failed to open database file {" + garbage.value() + L"}.\n",
            DumpTableSummary(garbage, Generation7DumpTables()));
}

}  // namespace
