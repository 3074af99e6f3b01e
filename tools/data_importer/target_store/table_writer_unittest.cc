#include "tools/data_importer/target_store/table_writer.h"

#include <gtest/gtest.h>

#include "testing/test_support.h"
#include "tools/data_importer/database_helper/database_helper.h"
#include "tools/data_importer/database_helper/db_row_reader.h"

namespace data_importer {

namespace {

int CountRows(DatabaseHelper* db, const char* table) {
  DbRowReader count(*db->connection(), std::string("select count(*) as n from ") + table);
  return count.Step() ? count.GetInt("n") : -1;
}

// A table's rows stay only once committed: a writer that returns early (or
// fails half-way) leaves the table as it was before, never half written.
TEST(TableTransactionTest, RowsStayOnlyWhenCommitted) {
  testing_support::ScopedTempDir dir;
  DatabaseHelper db;
  ASSERT_TRUE(db.OpenAndCheck(dir.path().Append(L"t.db")));
  TableDef def{"T", "CREATE TABLE IF NOT EXISTS T(x INTEGER)"};
  {
    TableTransaction table(&db, def);
    ASSERT_TRUE(table.Execute("INSERT INTO T VALUES (1)"));
    ASSERT_TRUE(table.Execute("INSERT INTO T VALUES (2)"));
  }
  EXPECT_EQ(0, CountRows(&db, "T"));  // rolled back, the table itself kept
  {
    TableTransaction table(&db, def);
    ASSERT_TRUE(table.Execute("INSERT INTO T VALUES (3)"));
    EXPECT_TRUE(table.Commit());
    // A second commit has nothing left to commit; the rows stay.
    EXPECT_TRUE(table.Commit());
  }
  EXPECT_EQ(1, CountRows(&db, "T"));
}

}  // namespace

}  // namespace data_importer
