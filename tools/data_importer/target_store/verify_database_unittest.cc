#include "tools/data_importer/target_store/verify_database.h"

#include <gtest/gtest.h>

#include "base/file_util.h"
#include "sql/connection.h"
#include "testing/test_support.h"
#include "tools/data_importer/target_store/build_sequence.h"

namespace data_importer {

namespace {

using testing_support::ReadBytes;
using testing_support::WriteBytes;

// Writes a database with |key| (plain when empty): table "a" with 3 rows,
// table "GeneralList_-3" with 1 row and "empty" without rows.
base::FilePath MakeDatabase(const base::FilePath& path, const std::wstring& key) {
  sql::Connection db;
  EXPECT_TRUE(key.empty() ? db.Open(path) : db.OpenWithKey(path, key, true));
  EXPECT_TRUE(
      db.Execute("CREATE TABLE a(x); INSERT INTO a VALUES (1), (2), (3);"
                 "CREATE TABLE \"GeneralList_-3\"(y); INSERT INTO \"GeneralList_-3\" VALUES ('z');"
                 "CREATE TABLE empty(z)"));
  return path;
}

TEST(VerifyDatabaseTest, CountsEveryTableOfAnEncryptedFile) {
  testing_support::ScopedTempDir dir;
  base::FilePath path = MakeDatabase(dir.path().Append(L"good.db"), kVersion3DatabaseKey);
  std::string before = ReadBytes(path);

  VerifiedDatabase result = VerifyEncryptedDatabase(path);
  EXPECT_TRUE(result.ok) << result.error;
  EXPECT_EQ((std::map<std::string, int64_t>{{"GeneralList_-3", 1}, {"a", 3}, {"empty", 0}}),
            result.row_counts);
  EXPECT_EQ(before, ReadBytes(path));  // read only
}

// Everything that is not a whole database encrypted with the key fails,
// with a reason, and nothing is created.
TEST(VerifyDatabaseTest, RefusesMissingPlainForeignAndDamagedFiles) {
  testing_support::ScopedTempDir dir;
  base::FilePath missing = dir.path().Append(L"missing.db");
  base::FilePath plain = MakeDatabase(dir.path().Append(L"plain.db"), L"");
  base::FilePath other_key = MakeDatabase(dir.path().Append(L"other.db"), L"another key");
  base::FilePath good = MakeDatabase(dir.path().Append(L"good.db"), kVersion3DatabaseKey);
  std::string bytes = ReadBytes(good);
  base::FilePath truncated = dir.path().Append(L"truncated.db");
  WriteBytes(truncated, bytes.substr(0, bytes.size() / 2));
  base::FilePath flipped = dir.path().Append(L"flipped.db");
  std::string damaged = bytes;
  damaged[damaged.size() - 100] ^= 0x40;  // inside the last page: its MAC fails
  WriteBytes(flipped, damaged);

  for (const base::FilePath& path : {missing, plain, other_key, truncated, flipped}) {
    VerifiedDatabase result = VerifyEncryptedDatabase(path);
    EXPECT_FALSE(result.ok) << path.AsUTF8Unsafe();
    EXPECT_FALSE(result.error.empty()) << path.AsUTF8Unsafe();
  }
  EXPECT_FALSE(base::PathExists(missing));
}

}  // namespace

}  // namespace data_importer
