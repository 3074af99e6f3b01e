#include "tools/data_importer/database_helper/db_row_reader.h"

#include <gtest/gtest.h>

#include "sql/connection.h"
#include "testing/test_support.h"

namespace data_importer {

namespace {

class DbRowReaderTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(m_db.Open(m_dir.path().Append(L"rows.db")));
    EXPECT_TRUE(
        m_db.Execute("CREATE TABLE Items(ItemID integer, Title text, Size integer, Gain real)"));
    EXPECT_TRUE(m_db.Execute("INSERT INTO Items VALUES (1, 'It''s \u00e9', 5000000000, 1.5)"));
    EXPECT_TRUE(m_db.Execute("INSERT INTO Items VALUES (2, NULL, NULL, NULL)"));
  }

  testing_support::ScopedTempDir m_dir;
  sql::Connection m_db;
};

// Names match in any case, once per reader; absent columns read as neutral
// values on every row.
TEST_F(DbRowReaderTest, ColumnsByNameWithOneScanPerName) {
  DbRowReader reader(m_db,
                     "SELECT ItemID, Title, Size, Gain, 7 AS x, 8 AS X FROM Items ORDER BY 1");
  ASSERT_TRUE(reader.IsValid());
  ASSERT_TRUE(reader.Step());
  EXPECT_EQ(1, reader.GetInt("itemid"));
  EXPECT_EQ(L"It's \u00e9", reader.GetString16("TITLE"));
  EXPECT_EQ("It's \xC3\xA9", reader.GetString("title"));
  EXPECT_EQ(5000000000, reader.GetInt64("Size"));
  EXPECT_EQ(1.5, reader.GetDouble("gain"));
  EXPECT_EQ(7, reader.GetInt("X"));  // the first of two names differing in case
  EXPECT_EQ(0, reader.GetInt("Missing"));
  EXPECT_EQ(L"", reader.GetString16("Missing"));
  ASSERT_TRUE(reader.Step());
  EXPECT_EQ(2, reader.GetInt("ItemID"));
  EXPECT_EQ(L"", reader.GetString16("Title"));  // NULL
  EXPECT_EQ(0, reader.GetInt64("Size"));
  EXPECT_EQ(0.0, reader.GetDouble("Missing"));
  EXPECT_FALSE(reader.Step());
  // itemid, TITLE, title, Size, gain, X, Missing, ItemID, Title: names are
  // cached as asked, so each distinct spelling was scanned once.
  EXPECT_EQ(9, reader.column_scans());
}

TEST_F(DbRowReaderTest, InvalidStatementReadsNeutral) {
  DbRowReader reader(m_db, "SELECT FROM nowhere");
  EXPECT_FALSE(reader.IsValid());
  EXPECT_FALSE(reader.Step());
  EXPECT_EQ(0, reader.GetInt("ItemID"));
  EXPECT_EQ(L"", reader.GetString16("Title"));
  DbRowReader missing_table(m_db, "SELECT * FROM NoSuchTable");
  EXPECT_FALSE(missing_table.IsValid());
  EXPECT_FALSE(missing_table.Step());
}

}  // namespace

}  // namespace data_importer
