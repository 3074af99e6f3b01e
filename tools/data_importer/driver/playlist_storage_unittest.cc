#include "tools/data_importer/driver/playlist_storage.h"

#include <gtest/gtest.h>

#include "base/file_util.h"
#include "base/json_file.h"
#include "testing/test_support.h"

namespace data_importer {

namespace {

class PlaylistStorageTest : public ::testing::Test {
 protected:
  base::FilePath Path(const wchar_t* name) const { return m_dir.path().Append(name); }
  void WriteStorage(const std::string& text) {
    testing_support::WriteBytes(Path(L"pls_storage"), text);
  }
  std::string Storage() const { return testing_support::ReadBytes(Path(L"pls_storage")); }

  testing_support::ScopedTempDir m_dir;
};

TEST_F(PlaylistStorageTest, DictionaryGetsThePlaylistFileTime) {
  testing_support::WriteBytes(Path(L"playlistV3.db"), "x");
  base::FileInfo info;
  ASSERT_TRUE(base::GetFileInfo(Path(L"playlistV3.db"), &info));
  WriteStorage("{\"modify_time\":1.0,\"other\":\"kept\"}");

  EXPECT_EQ(StorageRefresh::kRefreshed, RefreshPlaylistStorage(m_dir.path()));
  base::Value root;
  ASSERT_TRUE(base::ReadJsonFile(Path(L"pls_storage"), &root));
  EXPECT_DOUBLE_EQ(info.last_modified, root["modify_time"].get<double>());
  EXPECT_EQ("kept", root["other"].get<std::string>());
}

TEST_F(PlaylistStorageTest, AnythingButADictionaryStaysAsItWas) {
  testing_support::WriteBytes(Path(L"playlistV3.db"), "x");
  for (const char* text : {"[1,2,3]", "42", "\"text\"", "{\"modify_time\":", ""}) {
    WriteStorage(text);
    EXPECT_EQ(StorageRefresh::kNoStorage, RefreshPlaylistStorage(m_dir.path())) << text;
    EXPECT_EQ(text, Storage());
  }
  EXPECT_TRUE(base::DeleteFile(Path(L"pls_storage")));
  EXPECT_EQ(StorageRefresh::kNoStorage, RefreshPlaylistStorage(m_dir.path()));
  EXPECT_FALSE(base::PathExists(Path(L"pls_storage")));
}

TEST_F(PlaylistStorageTest, NoPlaylistDatabaseNoRefresh) {
  WriteStorage("{\"modify_time\":1.0}");
  EXPECT_EQ(StorageRefresh::kNoPlaylistDatabase, RefreshPlaylistStorage(m_dir.path()));
  EXPECT_EQ("{\"modify_time\":1.0}", Storage());
}

}  // namespace

}  // namespace data_importer
