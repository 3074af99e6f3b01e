#include "tools/data_importer/database_helper/salvage_copy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "sql/connection.h"
#include "sql/statement.h"
#include "testing/test_support.h"
#include "tools/data_importer/database_helper/database_helper.h"

namespace data_importer {

namespace {

constexpr int kRows = 3000;
constexpr size_t kPage = 4096;

// "Songs" of kRows rows (ids 1 to kRows, some 200 bytes each, so about 18
// to a page) and a small "Lists" table; with |index| an index on the titles,
// made after the rows, so that its pages lie at the end of the file.
void WriteDatabase(const base::FilePath& path, bool index) {
  sql::Connection db;
  db.set_page_size(4096);
  ASSERT_TRUE(db.Open(path));
  ASSERT_TRUE(
      db.Execute("CREATE TABLE Songs(ID INTEGER PRIMARY KEY, Title TEXT, Pad TEXT);"
                 "CREATE TABLE Lists(ListID INTEGER, Name TEXT);"
                 "INSERT INTO Lists VALUES(1, 'Road'), (2, 'It''s mine');"));
  ASSERT_TRUE(db.Execute(("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
                          "WHERE i < " +
                          std::to_string(kRows) +
                          ") INSERT INTO Songs SELECT i, 'Song ' || i, hex(randomblob(90)) "
                          "FROM n")
                             .c_str()));
  if (index) {
    ASSERT_TRUE(db.Execute("CREATE INDEX SongTitles ON Songs(Title)"));
  }
}

// Overwrites page |page| (from 1) of the file with |fill|.
void DamagePage(const base::FilePath& path, size_t page, char fill) {
  std::string bytes = testing_support::ReadBytes(path);
  ASSERT_LE(page * kPage, bytes.size());
  bytes.replace((page - 1) * kPage, kPage, kPage, fill);
  testing_support::WriteBytes(path, bytes);
}

// What a plain "SELECT *" of |table| returns before it stops.
int64_t PlainRead(const base::FilePath& path, const std::string& table, bool* complete) {
  sql::Connection db;
  if (!db.Open(path)) {
    *complete = false;
    return 0;
  }
  sql::Statement rows(db.GetUniqueStatement(("SELECT * FROM " + table).c_str()));
  int64_t count = 0;
  while (rows.Step())
    ++count;
  *complete = rows.Succeeded();
  return count;
}

std::vector<int64_t> SongIds(const base::FilePath& path) {
  sql::Connection db;
  std::vector<int64_t> ids;
  if (!db.Open(path))
    return ids;
  sql::Statement rows(db.GetUniqueStatement("SELECT ID FROM Songs ORDER BY ID"));
  while (rows.Step())
    ids.push_back(rows.ColumnInt64(0));
  return ids;
}

// The ids of |before| that |after| lacks.
std::vector<int64_t> Missing(const std::vector<int64_t>& before,
                             const std::vector<int64_t>& after) {
  std::vector<int64_t> missing;
  std::set_difference(before.begin(), before.end(), after.begin(), after.end(),
                      std::back_inserter(missing));
  return missing;
}

const SalvagedTable* Find(const SalvageResult& result, const std::string& name) {
  for (const SalvagedTable& table : result.tables) {
    if (table.name == name)
      return &table;
  }
  return nullptr;
}

// A damaged page in the middle of a table costs the rows on it, not the
// rest of the table, which a plain read loses; the damaged file's index
// names exactly the rows lost, never one the old player deleted, and the
// copy is sound and has the index built anew.
TEST(SalvageCopyTest, ReadsPastADamagedPageAndNamesTheLostRows) {
  testing_support::ScopedTempDir dir;
  base::FilePath damaged = dir.path().Append(L"damaged.db");
  base::FilePath fresh = dir.path().Append(L"fresh.db");
  WriteDatabase(damaged, /*index=*/true);
  {
    // Rows the old player deleted leave gaps in the row ids, also on the
    // page damaged below.
    sql::Connection db;
    ASSERT_TRUE(db.Open(damaged));
    ASSERT_TRUE(db.Execute("DELETE FROM Songs WHERE ID % 7 = 0"));
  }
  const std::vector<int64_t> live = SongIds(damaged);
  DamagePage(damaged, 60, '\0');  // a leaf of "Songs", a third of the way in

  bool complete = true;
  int64_t plain = PlainRead(damaged, "Songs", &complete);
  ASSERT_FALSE(complete);
  ASSERT_LT(plain, kRows - 100);

  SalvageResult result = SalvageCopy(damaged, fresh);
  ASSERT_TRUE(result.ok);
  const SalvagedTable* songs = Find(result, "Songs");
  ASSERT_NE(nullptr, songs);
  EXPECT_FALSE(songs->complete);
  const int64_t kLive = static_cast<int64_t>(live.size());
  EXPECT_GT(songs->rows_copied, kLive - 40);  // one page of ~18 rows lost
  EXPECT_LT(songs->rows_copied, kLive);
  const std::vector<int64_t> lost = Missing(live, SongIds(fresh));
  ASSERT_FALSE(lost.empty());
  EXPECT_EQ(lost, songs->lost_rowids);
  // The deleted rows inside the damaged range are not among them.
  ASSERT_GT(lost.back() - lost.front(), 7);
  for (int64_t id : songs->lost_rowids)
    EXPECT_NE(0, id % 7) << id;
  const SalvagedTable* lists = Find(result, "Lists");
  ASSERT_NE(nullptr, lists);
  EXPECT_TRUE(lists->complete);
  EXPECT_EQ(2, lists->rows_copied);

  DatabaseHelper copy;
  ASSERT_TRUE(copy.OpenAndCheck(fresh));
  EXPECT_FALSE(copy.repaired());
  sql::Connection* db = copy.connection();
  // Row ids and values are kept: the last row, past the damage, is whole.
  int64_t after = kRows;
  sql::Statement row(db->GetUniqueStatement(
      ("SELECT Title FROM Songs WHERE ID = " + std::to_string(after)).c_str()));
  ASSERT_TRUE(row.Step());
  EXPECT_EQ("Song " + std::to_string(after), row.ColumnString(0));
  sql::Statement index(db->GetUniqueStatement(
      "SELECT count(*) FROM sqlite_master WHERE type = 'index' AND name = 'SongTitles'"));
  ASSERT_TRUE(index.Step());
  EXPECT_EQ(1, index.ColumnInt(0));
  copy.Close();

  // An index entry whose row id was damaged into another (2500 into 32767)
  // no longer proves the index: only the rows in the range the walk
  // skipped are named, not the made-up one.
  std::string bytes = testing_support::ReadBytes(damaged);
  const std::string entry = std::string("Song 2500") + "\x09\xc4";
  size_t at = bytes.find(entry);
  ASSERT_NE(std::string::npos, at);
  ASSERT_EQ(std::string::npos, bytes.find(entry, at + 1));
  bytes.replace(at + entry.size() - 2, 2, "\x7f\xff");
  testing_support::WriteBytes(damaged, bytes);
  result = SalvageCopy(damaged, fresh);
  ASSERT_TRUE(result.ok);
  songs = Find(result, "Songs");
  ASSERT_NE(nullptr, songs);
  EXPECT_EQ(lost, songs->lost_rowids);
}

// A page of the table in place of another hands back its rows twice and
// hides those it replaced, without an error: the index, read whole and
// naming every copied row, names the hidden ones.
TEST(SalvageCopyTest, IndexNamesTheRowsADuplicatedPageHides) {
  testing_support::ScopedTempDir dir;
  base::FilePath damaged = dir.path().Append(L"damaged.db");
  base::FilePath fresh = dir.path().Append(L"fresh.db");
  WriteDatabase(damaged, /*index=*/true);
  const std::vector<int64_t> live = SongIds(damaged);
  std::string bytes = testing_support::ReadBytes(damaged);
  bytes.replace(60 * kPage, kPage, bytes.substr(59 * kPage, kPage));  // page 60 over 61
  testing_support::WriteBytes(damaged, bytes);

  SalvageResult result = SalvageCopy(damaged, fresh);
  ASSERT_TRUE(result.ok);
  const SalvagedTable* songs = Find(result, "Songs");
  ASSERT_NE(nullptr, songs);
  const std::vector<int64_t> lost = Missing(live, SongIds(fresh));
  ASSERT_GT(lost.size(), 5u);
  EXPECT_EQ(lost, songs->lost_rowids);
  EXPECT_TRUE(songs->lost_rows());
  EXPECT_TRUE(Find(result, "Lists")->lost_rowids.empty());
}

// Damage to an index alone loses nothing; a table whose every page is
// gone copies nothing and says so; the damaged file is not written.
TEST(SalvageCopyTest, DamagedIndexLosesNothingAndTheSourceStaysAsItWas) {
  testing_support::ScopedTempDir dir;
  base::FilePath damaged = dir.path().Append(L"damaged.db");
  base::FilePath fresh = dir.path().Append(L"fresh.db");
  WriteDatabase(damaged, /*index=*/true);
  size_t pages = testing_support::ReadBytes(damaged).size() / kPage;
  DamagePage(damaged, pages - 1, '\x5a');  // a page of the index, made last
  DatabaseHelper check;
  ASSERT_TRUE(check.OpenReadOnly(damaged));
  ASSERT_FALSE(check.CheckIntegrity());
  check.Close();
  const std::string before = testing_support::ReadBytes(damaged);

  SalvageResult result = SalvageCopy(damaged, fresh);
  ASSERT_TRUE(result.ok);
  const SalvagedTable* songs = Find(result, "Songs");
  ASSERT_NE(nullptr, songs);
  EXPECT_TRUE(songs->complete);
  EXPECT_EQ(kRows, songs->rows_copied);
  EXPECT_TRUE(songs->lost_rowids.empty());
  EXPECT_EQ(before, testing_support::ReadBytes(damaged));

  // The root page of "Lists" is page 3 (after the schema and "Songs").
  DamagePage(damaged, 3, '\xff');
  result = SalvageCopy(damaged, fresh);
  ASSERT_TRUE(result.ok);
  const SalvagedTable* lists = Find(result, "Lists");
  ASSERT_NE(nullptr, lists);
  EXPECT_EQ(0, lists->rows_copied);
  EXPECT_FALSE(lists->complete);
  EXPECT_EQ(kRows, Find(result, "Songs")->rows_copied);

  // Not a database at all: nothing to salvage.
  testing_support::WriteBytes(damaged, std::string(3 * kPage, 'x'));
  EXPECT_FALSE(SalvageCopy(damaged, fresh).ok);
}

}  // namespace

}  // namespace data_importer
