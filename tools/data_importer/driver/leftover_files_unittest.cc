#include "tools/data_importer/driver/leftover_files.h"

#include <gtest/gtest.h>

#include <string>

#include "base/file_util.h"
#include "testing/test_support.h"

namespace data_importer {

namespace {

TEST(LeftoverFilesTest, OwnerIsTheNumberAfterTheMarker) {
  EXPECT_EQ(1234, StaleFileOwner(L"Vantu.ini.tmp1234", L"Vantu.ini.tmp"));
  EXPECT_EQ(77, StaleFileOwner(L"VT6Data.db.copy-77", L".copy-"));
  EXPECT_EQ(77, StaleFileOwner(L"a.copy-1.copy-77", L".copy-"));
  EXPECT_EQ(0, StaleFileOwner(L"Vantu.ini.tmp", L"Vantu.ini.tmp"));
  EXPECT_EQ(0, StaleFileOwner(L"Vantu.ini.tmp12x", L"Vantu.ini.tmp"));
  EXPECT_EQ(0, StaleFileOwner(L"Old Vantu.ini.tmp12", L"Vantu.ini.tmp"));
  EXPECT_EQ(0, StaleFileOwner(L"song.copy-", L".copy-"));
  EXPECT_EQ(0, StaleFileOwner(L"x.copy-12345678901", L".copy-"));
}

// Files of a process that is gone are removed wherever runs make them; the
// files of a live process and every other file stay.
TEST(LeftoverFilesTest, RemovesOnlyFilesOfGoneProcesses) {
  int gone = testing_support::GoneProcessId();
  ASSERT_NE(-1, gone);
  ASSERT_FALSE(ProcessExists(gone));
  ASSERT_TRUE(ProcessExists(base::GetCurrentProcessNumber()));
  std::wstring dead = std::to_wstring(gone);
  std::wstring alive = std::to_wstring(base::GetCurrentProcessNumber());

  testing_support::ScopedTempDir dir;
  base::FilePath data = dir.path();
  base::FilePath backup = data.Append(L"Backup").Append(L"20260101");
  base::FilePath lyric = data.Append(L"Lyric");
  const base::FilePath removed[] = {
      data.Append(L"Vantu.ini.tmp" + dead), data.Append(L"VT6Data.db.copy-" + dead),
      data.Append(L"DataImporter.db.copy-" + dead), backup.Append(L"VT6Data.db.copy-" + dead),
      lyric.Append(L"a.krc.copy-" + dead)};
  const base::FilePath kept[] = {data.Append(L"Vantu.ini.tmp" + alive),
                                 data.Append(L"VT6Data.db.copy-" + alive),
                                 data.Append(L"Vantu.ini"),
                                 data.Append(L"VT6Data.db"),
                                 data.Append(L"notes.copy-old"),
                                 data.Append(L"Other.ini.tmp" + dead)};
  for (const base::FilePath& path : removed) {
    ASSERT_TRUE(base::CreateDirectory(path.DirName()));
    ASSERT_TRUE(base::WriteFile(path, "x"));
  }
  for (const base::FilePath& path : kept)
    ASSERT_TRUE(base::WriteFile(path, "x"));

  EXPECT_EQ(5, RemoveStaleWorkFiles(data));
  for (const base::FilePath& path : removed)
    EXPECT_FALSE(base::PathExists(path)) << path.AsUTF8Unsafe();
  for (const base::FilePath& path : kept)
    EXPECT_TRUE(base::PathExists(path)) << path.AsUTF8Unsafe();
}

}  // namespace

}  // namespace data_importer
