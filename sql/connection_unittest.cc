#include "sql/connection.h"

#include <sqlite3.h>

#if !defined(_WIN32)
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <gtest/gtest.h>

#include "base/file_util.h"
#include "sql/statement.h"
#include "testing/test_support.h"

namespace sql {
namespace {

constexpr wchar_t kKey[] = L"3C5A0F1E9D2B47A6B8E1C4D7F0A29B63";

#if !defined(_WIN32)
// The stock sqlcipher tool runs on the Linux build only.
std::string SqlcipherQuery(const base::FilePath& path,
                           const std::string& key_line,
                           const std::string& query,
                           int* status) {
  std::string output;
  *status = testing_support::RunCommand("sqlcipher '" + path.AsUTF8Unsafe() + "' 2>&1",
                                        key_line + query + "\n", &output);
  return output;
}

#endif  // !defined(_WIN32)

// A plain database becomes an encrypted one in place: the connection stays
// usable, the file no longer reads as plain, and the stock tool reads it
// with the key alone.
TEST(ConnectionTest, DbEncryptEndToEnd) {
  testing_support::ScopedTempDir dir;
  base::FilePath path = dir.path().Append(L"music.db");
  Connection db;
  EXPECT_FALSE(db.DbEncrypt(kKey));  // not open
  ASSERT_TRUE(db.Open(path));
  ASSERT_TRUE(db.Execute("CREATE TABLE T(id integer PRIMARY KEY, name text)"));
  EXPECT_TRUE(db.BeginTransaction());
  for (int i = 0; i < 500; ++i)
    EXPECT_TRUE(db.Execute("INSERT INTO T(name) VALUES ('it''s \xE4\xB8\xAD')"));
  EXPECT_TRUE(db.CommitTransaction());

  ASSERT_TRUE(db.DbEncrypt(kKey));
  EXPECT_TRUE(db.is_open());
  {
    Statement count(db.GetUniqueStatement("SELECT count(*), max(name) FROM T"));
    ASSERT_TRUE(count.Step());
    EXPECT_EQ(500, count.ColumnInt(0));
    EXPECT_EQ(L"it's \u4e2d", count.ColumnString16(1));
  }
  db.Close();
  EXPECT_NE(0, testing_support::ReadBytes(path).compare(0, 15, "SQLite format 3"));
  EXPECT_TRUE(testing_support::ReadBytes(base::FilePath(path.value() + L".enc")).empty());

  Connection plain;
  EXPECT_FALSE(plain.Open(path));
  Connection wrong;
  EXPECT_FALSE(wrong.OpenWithKey(path, L"0000"));
  Connection keyed;
  ASSERT_TRUE(keyed.OpenWithKey(path, kKey));
  EXPECT_TRUE(keyed.DoesTableExist("t"));
  EXPECT_FALSE(Connection().OpenWithKey(dir.path().Append(L"absent.db"), kKey));

#if !defined(_WIN32)
  // The stock sqlcipher tool runs on the Linux build only.
  int status = 0;
  std::string output =
      SqlcipherQuery(path, "PRAGMA key = 'wrong';\n", "SELECT count(*) FROM T;", &status);
  EXPECT_EQ(std::string::npos, output.find("500")) << output;
  output = SqlcipherQuery(path, "", "SELECT count(*) FROM T;", &status);
  EXPECT_EQ(std::string::npos, output.find("500")) << output;
  output = SqlcipherQuery(path, "PRAGMA key = '3C5A0F1E9D2B47A6B8E1C4D7F0A29B63';\n",
                          "SELECT count(*) FROM T;", &status);
  EXPECT_EQ(0, status);
  EXPECT_NE(std::string::npos, output.find("500")) << output;
#endif  // !defined(_WIN32)
}

#if !defined(_WIN32)
// Kill tests fork a child process and kill it: the Windows build has no fork.
// Kills the process once SQLite has run |steps| progress callbacks.
int KillAfterSteps(void* steps) {
  if (--*static_cast<int*>(steps) <= 0)
    raise(SIGKILL);
  return 0;
}

// Runs DbEncrypt in a child process that kills itself after |steps|
// progress callbacks of its connection (a power cut or a killed player, at
// a point chosen by the step count). Answers true when the child finished.
bool EncryptInChildKilledAfter(const base::FilePath& path, int steps) {
  pid_t pid = fork();
  if (pid == 0) {
    Connection db;
    if (!db.Open(path))
      _exit(3);
    sqlite3_progress_handler(db.db(), 16, KillAfterSteps, &steps);
    _exit(db.DbEncrypt(kKey) ? 0 : 4);
  }
  int status = 0;
  waitpid(pid, &status, 0);
  if (WIFSIGNALED(status))
    return false;
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
  return true;
}

// Wherever the process dies inside DbEncrypt, the file is the untouched
// plain database or the finished encrypted one, never something between;
// and the next DbEncrypt succeeds over whatever a killed one left behind.
TEST(ConnectionTest, DbEncryptKilledAnywhereLeavesPlainOrEncrypted) {
  testing_support::ScopedTempDir dir;
  base::FilePath path = dir.path().Append(L"VTMusicV3.db");
  {
    Connection db;
    ASSERT_TRUE(db.Open(path));
    ASSERT_TRUE(db.Execute("CREATE TABLE T(id integer PRIMARY KEY, name text)"));
    ASSERT_TRUE(db.Execute("CREATE INDEX TName ON T(name)"));
    ASSERT_TRUE(db.BeginTransaction());
    for (int i = 0; i < 3000; ++i)
      ASSERT_TRUE(db.Execute("INSERT INTO T(name) VALUES (hex(randomblob(40)))"));
    ASSERT_TRUE(db.CommitTransaction());
  }
  const std::string plain = testing_support::ReadBytes(path);

  int kills = 0;
  bool finished = false;
  for (int steps = 1; !finished && steps < (1 << 22); steps *= 2) {
    finished = EncryptInChildKilledAfter(path, steps);
    if (!finished)
      ++kills;
    std::string now = testing_support::ReadBytes(path);
    if (now == plain)
      continue;
    Connection keyed;
    ASSERT_TRUE(keyed.OpenWithKey(path, kKey)) << "half-written file after " << steps;
    Statement count(keyed.GetUniqueStatement("SELECT count(*) FROM T"));
    ASSERT_TRUE(count.Step());
    EXPECT_EQ(3000, count.ColumnInt(0)) << steps;
    keyed.Close();
    // Encrypted already: start the next round from the plain file again.
    testing_support::WriteBytes(path, plain);
  }
  EXPECT_TRUE(finished);
  EXPECT_GT(kills, 3);

  // Leftovers of a killed export do not stop the next encryption.
  testing_support::WriteBytes(path, plain);
  EXPECT_FALSE(EncryptInChildKilledAfter(path, 200));
  Connection db;
  ASSERT_TRUE(db.Open(path));
  ASSERT_TRUE(db.DbEncrypt(kKey));
  db.Close();
  EXPECT_FALSE(base::PathExists(base::FilePath(path.value() + L".enc")));
  EXPECT_FALSE(base::PathExists(base::FilePath(path.value() + L".enc-journal")));
  Connection keyed;
  ASSERT_TRUE(keyed.OpenWithKey(path, kKey));
  Statement count(keyed.GetUniqueStatement("SELECT count(*) FROM T"));
  ASSERT_TRUE(count.Step());
  EXPECT_EQ(3000, count.ColumnInt(0));
}

#endif  // !defined(_WIN32)

// The file format does not follow the library's defaults: with other
// process-wide defaults (as a later library line brings), files are still
// written in the version-3 format that a separate 3.x tool reads with the
// passphrase alone, and our own connections still read them.
TEST(ConnectionTest, CipherFormatIsPinned) {
  testing_support::ScopedTempDir dir;
  Connection settings;
  ASSERT_TRUE(settings.Open(dir.path().Append(L"settings.db")));
  ASSERT_TRUE(
      settings.Execute("PRAGMA cipher_default_kdf_iter = 4000;"
                       "PRAGMA cipher_default_page_size = 4096;"
                       "PRAGMA cipher_default_use_hmac = OFF;"));
  base::FilePath path = dir.path().Append(L"pinned.db");
  {
    Connection db;
    ASSERT_TRUE(db.Open(path));
    ASSERT_TRUE(db.Execute("CREATE TABLE T(x); INSERT INTO T VALUES (41), (42)"));
    ASSERT_TRUE(db.DbEncrypt(kKey));
    Statement page_size(db.GetUniqueStatement("PRAGMA cipher_page_size"));
    ASSERT_TRUE(page_size.Step());
    EXPECT_EQ("1024", page_size.ColumnString(0));
  }
  Connection reader;
  bool reopened = reader.OpenWithKey(path, kKey);
  ASSERT_TRUE(
      settings.Execute("PRAGMA cipher_default_kdf_iter = 64000;"
                       "PRAGMA cipher_default_page_size = 1024;"
                       "PRAGMA cipher_default_use_hmac = ON;"));
  EXPECT_TRUE(reopened);
#if !defined(_WIN32)
  // The stock sqlcipher tool runs on the Linux build only.
  int status = 0;
  std::string output = SqlcipherQuery(path, "PRAGMA key = '3C5A0F1E9D2B47A6B8E1C4D7F0A29B63';\n",
                                      "SELECT sum(x) FROM T;", &status);
  EXPECT_EQ(0, status);
  EXPECT_NE(std::string::npos, output.find("83")) << output;
#endif
}

TEST(ConnectionTest, NestedTransactionsCommitOnceAndRollBackWhole) {
  testing_support::ScopedTempDir dir;
  Connection db;
  ASSERT_TRUE(db.Open(dir.path().Append(L"t.db")));
  EXPECT_TRUE(db.Execute("CREATE TABLE T(x)"));
  ASSERT_TRUE(db.BeginTransaction());
  ASSERT_TRUE(db.BeginTransaction());
  EXPECT_TRUE(db.Execute("INSERT INTO T VALUES (1)"));
  EXPECT_TRUE(db.CommitTransaction());
  EXPECT_EQ(1, db.transaction_nesting());
  EXPECT_TRUE(db.CommitTransaction());

  EXPECT_TRUE(db.BeginTransaction());
  EXPECT_TRUE(db.BeginTransaction());
  EXPECT_TRUE(db.Execute("INSERT INTO T VALUES (2)"));
  db.RollbackTransaction();
  EXPECT_FALSE(db.CommitTransaction());
  Statement count(db.GetUniqueStatement("SELECT count(*) FROM T"));
  ASSERT_TRUE(count.Step());
  EXPECT_EQ(1, count.ColumnInt(0));
}

}  // namespace
}  // namespace sql
