#include "tools/data_importer/database_helper/index_witness.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "sql/connection.h"
#include "sql/statement.h"
#include "testing/test_support.h"

namespace data_importer {

namespace {

constexpr size_t kPage = 1024;

// Rows 1 to 400 of "T", minus those the player deleted (every fifth), with
// an index on a text column two levels deep; answers the index's root page.
int64_t WriteIndexed(const base::FilePath& path) {
  sql::Connection db;
  db.set_page_size(kPage);
  EXPECT_TRUE(db.Open(path));
  EXPECT_TRUE(
      db.Execute("CREATE TABLE T(ID INTEGER PRIMARY KEY, Name TEXT);"
                 "CREATE INDEX ByName ON T(Name);"
                 "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 400) "
                 "INSERT INTO T SELECT i, 'name ' || i || hex(randomblob(8)) FROM n;"
                 "DELETE FROM T WHERE ID % 5 = 0;"));
  sql::Statement root(
      db.GetUniqueStatement("SELECT rootpage FROM sqlite_master WHERE name = 'ByName'"));
  return root.Step() ? root.ColumnInt64(0) : 0;
}

// The index is read whole with every live row's id; a page pointing back at
// itself, a root out of the file or on the free list, and bytes that are no
// database end the walk without an id made up.
TEST(IndexWitnessTest, ReadsEveryEntryAndStopsAtWhatIsNoIndex) {
  testing_support::ScopedTempDir dir;
  base::FilePath path = dir.path().Append(L"indexed.db");
  const int64_t root = WriteIndexed(path);
  ASSERT_GT(root, 1);
  std::string bytes = testing_support::ReadBytes(path);

  IndexRowIds index = ReadIndexRowIds(bytes, static_cast<uint32_t>(root));
  EXPECT_TRUE(index.complete);
  std::sort(index.rowids.begin(), index.rowids.end());
  ASSERT_EQ(320u, index.rowids.size());
  for (size_t i = 0; i < index.rowids.size(); ++i)
    EXPECT_EQ(static_cast<int64_t>(i + 1 + i / 4), index.rowids[i]);

  // The root is an interior page: its right child made the root itself.
  std::string looped = bytes;
  const size_t at = (root - 1) * kPage;
  ASSERT_EQ('\x02', looped[at]);
  for (int i = 0; i < 4; ++i)
    looped[at + 8 + i] = static_cast<char>(root >> (8 * (3 - i)));
  index = ReadIndexRowIds(looped, static_cast<uint32_t>(root));
  EXPECT_FALSE(index.complete);
  EXPECT_LT(index.rowids.size(), 320u);
  for (int64_t id : index.rowids)
    EXPECT_NE(0, id % 5);

  EXPECT_FALSE(ReadIndexRowIds(bytes, 100000).complete);
  EXPECT_TRUE(ReadIndexRowIds(bytes, 100000).rowids.empty());
  // The table's pages are no index pages.
  EXPECT_TRUE(ReadIndexRowIds(bytes, 2).rowids.empty());
  std::string freed = bytes;
  for (int i = 0; i < 4; ++i)  // the first free-list trunk is the root
    freed[32 + i] = static_cast<char>(root >> (8 * (3 - i)));
  EXPECT_TRUE(ReadIndexRowIds(freed, static_cast<uint32_t>(root)).rowids.empty());
  EXPECT_TRUE(ReadIndexRowIds(std::string(8 * kPage, 'x'), 2).rowids.empty());
  EXPECT_TRUE(ReadIndexRowIds(bytes.substr(0, 50), 2).rowids.empty());
}

}  // namespace

}  // namespace data_importer
