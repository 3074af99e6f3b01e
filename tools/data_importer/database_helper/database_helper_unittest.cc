#include "tools/data_importer/database_helper/database_helper.h"

#include <gtest/gtest.h>

#include <string>

#include "base/file_util.h"
#include "sql/statement.h"
#include "testing/test_support.h"
#include "tools/data_importer/database_helper/db_row_reader.h"

namespace data_importer {

namespace {

using testing_support::ScopedTempDir;

// A database with a table of 3000 rows and an index on its text column.
void MakeDatabase(const base::FilePath& path) {
  sql::Connection db;
  db.set_page_size(4096);
  ASSERT_TRUE(db.Open(path));
  ASSERT_TRUE(db.Execute("CREATE TABLE Songs(id integer PRIMARY KEY, name text)"));
  ASSERT_TRUE(db.Execute("CREATE INDEX SongNames ON Songs(name)"));
  EXPECT_TRUE(db.BeginTransaction());
  for (int i = 1; i <= 3000; ++i) {
    EXPECT_TRUE(db.Execute(("INSERT INTO Songs(name) VALUES ('a fairly long song title number " +
                            std::to_string(i) + "')")
                               .c_str()));
  }
  EXPECT_TRUE(db.CommitTransaction());
}

int RootPage(const base::FilePath& path, const std::string& name) {
  sql::Connection db;
  EXPECT_TRUE(db.Open(path));
  sql::Statement s(db.GetUniqueStatement(
      ("SELECT rootpage FROM sqlite_master WHERE name='" + name + "'").c_str()));
  return s.Step() ? s.ColumnInt(0) : 0;
}

// Opens |path| with the integrity check and answers its number of songs,
// or -1 unless it opened only after the repair.
int SongsAfterRepair(const base::FilePath& path) {
  DatabaseHelper helper;
  if (!helper.OpenAndCheck(path) || !helper.repaired())
    return -1;
  DbRowReader count(*helper.connection(), "SELECT count(*) AS n FROM Songs");
  return count.Step() ? count.GetInt("n") : -1;
}

TEST(DatabaseHelperTest, HealthyAndReadOnlyFilesOpen) {
  ScopedTempDir dir;
  base::FilePath path = dir.path().Append(L"healthy.db");
  MakeDatabase(path);
  testing_support::MakeReadOnly(path);

  DatabaseHelper helper;
  ASSERT_TRUE(helper.OpenAndCheck(path));
  EXPECT_FALSE(helper.repaired());
  // The read-only attribute was cleared, so the file takes writes.
  EXPECT_TRUE(helper.connection()->Execute("INSERT INTO Songs(name) VALUES ('new')"));
  EXPECT_TRUE(helper.CheckIntegrity());
  EXPECT_EQ(3001, GetMaxKeyId(&helper, "id", "Songs"));
}

// Lost free pages are fixed by the one VACUUM; a damaged table is beyond
// repair: the file is reported as not opened and the connection is closed.
TEST(DatabaseHelperTest, RepairsWhatVacuumCanAndClosesTheRest) {
  ScopedTempDir dir;
  base::FilePath lost_pages = dir.path().Append(L"freelist.db");
  MakeDatabase(lost_pages);
  {
    sql::Connection raw;
    ASSERT_TRUE(raw.Open(lost_pages));
    ASSERT_TRUE(raw.Execute("DELETE FROM Songs WHERE id > 2000"));
  }
  testing_support::ForgetFreePages(lost_pages);
  {
    sql::Connection raw;
    ASSERT_TRUE(raw.Open(lost_pages));
    sql::Statement check(raw.GetUniqueStatement("PRAGMA integrity_check"));
    ASSERT_TRUE(check.Step());
    ASSERT_NE("ok", check.ColumnString(0));  // the damage is real
  }
  EXPECT_EQ(2000, SongsAfterRepair(lost_pages));

  // A header that claims 2^31 + 2^28 pages (its size field trusted, as the
  // change counter it names is current; the engine's own size check misses
  // counts this large): it fails the check, the VACUUM rewrites the file
  // with its real size, and every row is kept.
  base::FilePath claims_more = dir.path().Append(L"header.db");
  MakeDatabase(claims_more);
  std::string bytes = testing_support::ReadBytes(claims_more);
  bytes.replace(28, 4, std::string("\x90\x00\x00\x00", 4));
  bytes.replace(92, 4, bytes.substr(24, 4));
  testing_support::WriteBytes(claims_more, bytes);
  EXPECT_EQ(3000, SongsAfterRepair(claims_more));

  base::FilePath table_damaged = dir.path().Append(L"table.db");
  MakeDatabase(table_damaged);
  testing_support::DamageDatabasePage(table_damaged, RootPage(table_damaged, "Songs"), 0, 64);
  DatabaseHelper broken;
  EXPECT_FALSE(broken.OpenAndCheck(table_damaged));
  EXPECT_FALSE(broken.connection()->is_open());

  base::FilePath not_a_database = dir.path().Append(L"text.db");
  EXPECT_TRUE(base::WriteFile(not_a_database, std::string(8192, 'x')));
  DatabaseHelper garbage;
  EXPECT_FALSE(garbage.OpenAndCheck(not_a_database));
  EXPECT_FALSE(garbage.connection()->is_open());
}

TEST(DatabaseHelperTest, AttachOnceAndCopyTables) {
  ScopedTempDir dir;
  base::FilePath source = dir.path().Append(L"source.db");
  MakeDatabase(source);
  DatabaseHelper helper;
  ASSERT_TRUE(helper.OpenAndCheck(dir.path().Append(L"target.db")));
  EXPECT_FALSE(helper.CopyTable("", "Songs"));  // nothing attached

  ASSERT_TRUE(helper.Attach(source, "src"));
  EXPECT_FALSE(helper.Attach(source, "other"));
  EXPECT_TRUE(helper.CopyTable("id <= 10", "Songs"));   // creates the table
  EXPECT_TRUE(helper.CopyTable("id > 2990", "Songs"));  // appends
  DbRowReader rows(*helper.connection(), "SELECT count(*) AS n, max(id) AS top FROM Songs");
  ASSERT_TRUE(rows.Step());
  EXPECT_EQ(20, rows.GetInt("n"));
  EXPECT_EQ(3000, rows.GetInt("top"));
  EXPECT_FALSE(helper.CopyTable("", "NoSuchTable"));

  // An attach that failed still blocks a second one.
  DatabaseHelper other;
  ASSERT_TRUE(other.OpenAndCheck(dir.path().Append(L"other.db")));
  EXPECT_FALSE(other.Attach(dir.path().Append(L"missing").Append(L"x.db"), "bad"));
  EXPECT_FALSE(other.Attach(source, "src"));
}

TEST(DatabaseHelperTest, StatementBuilders) {
  EXPECT_EQ(L"'it''s a ''''quoted'''' \"text\"'", EscapeSqlText(L"it's a ''quoted'' \"text\""));
  EXPECT_EQ(L"''", EscapeSqlText(L""));
  std::string literal;
  AppendSqlTextLiteral(std::wstring(L"a'\0b\u00e9", 5), &literal);
  EXPECT_EQ("'a''b\xC3\xA9'", literal);
  EXPECT_EQ("Insert Into T(a,b) values ('x',1)", BuildInsertStatement("T", "a,b", "'x',1"));
  EXPECT_EQ("GeneralList_5", SqlTableName("GeneralList_5"));
  EXPECT_EQ("\"GeneralList_-3\"", SqlTableName("GeneralList_-3"));

  ScopedTempDir dir;
  DatabaseHelper helper;
  EXPECT_EQ(1, GetMaxKeyId(&helper, "ID", "T"));  // not open
  ASSERT_TRUE(helper.OpenAndCheck(dir.path().Append(L"keys.db")));
  EXPECT_EQ(1, GetMaxKeyId(&helper, "ID", "T"));  // missing table
  EXPECT_TRUE(helper.connection()->Execute("CREATE TABLE T(ID integer PRIMARY KEY)"));
  EXPECT_EQ(1, GetMaxKeyId(&helper, "ID", "T"));  // empty table
  EXPECT_TRUE(helper.connection()->Execute("INSERT INTO T(ID) VALUES (41)"));
  EXPECT_EQ(41, GetMaxKeyId(&helper, "ID", "T"));
}

}  // namespace

}  // namespace data_importer
