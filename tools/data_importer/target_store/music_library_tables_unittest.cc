#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>
#include <unordered_map>

#include "base/file_util.h"
#include "base/utf_string_conversions.h"
#include "sql/statement.h"
#include "testing/test_support.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/target_store/import_model_test_util.h"
#include "testing/importer_test_util.h"

namespace data_importer {

namespace {

class MusicLibraryWritersTest : public testing::Test {
 protected:
  void SetUp() override { OpenTargets(&m_model, m_dir.path()); }
  sql::Connection* music() { return m_model.m_music_db->connection(); }

  testing_support::ScopedTempDir m_dir;
  ImportModel m_model;
};

// Ids are the row ids SQLite assigns, also when the table already had rows;
// MV and audio files have separate key spaces; the all-zero hash is never
// mapped and the later of two equal hashes wins.
TEST_F(MusicLibraryWritersTest, ShareFileIdsAndMaps) {
  m_model.WriteShareFileItems();  // creates the table although empty
  ASSERT_TRUE(music()->DoesTableExist("ShareFileItems"));
  ASSERT_TRUE(music()->Execute("INSERT INTO ShareFileItems(id, FileName) VALUES (41, 'old')"));

  const std::wstring zero = L"00000000000000000000000000000000";
  AddFile(&m_model, 5, L"a.mp3", HashOf(1));
  AddFile(&m_model, 5, L"a.mkv", HashOf(2), 2);  // same old id, MV file
  AddFile(&m_model, 6, L"b.mp3", zero);
  AddFile(&m_model, 7, L"c.mp3", HashOf(1));  // same hash as a.mp3
  AddFile(&m_model, 8, L"d.mp3", L"");
  m_model.WriteShareFileItems();

  EXPECT_EQ((std::vector<std::string>{"41|old", "42|a.mp3", "43|a.mkv", "44|b.mp3", "45|c.mp3",
                                      "46|d.mp3"}),
            QueryRows(music(), "SELECT id, FileName FROM ShareFileItems ORDER BY id"));
  EXPECT_EQ((std::unordered_map<int, int>{{5, 42}, {6, 44}, {7, 45}, {8, 46}}),
            m_model.m_music_id_map);
  EXPECT_EQ((std::unordered_map<int, int>{{5, 43}}), m_model.m_mv_id_map);
  EXPECT_EQ((std::unordered_map<std::wstring, int>{{HashOf(1), 45}, {HashOf(2), 43}}),
            m_model.m_hash_id_map);
}

// Apostrophes and text outside ASCII are stored as they were, and ReplayGain
// comes back as the same double.
TEST_F(MusicLibraryWritersTest, TextAndNumbersSurviveTheStatementText) {
  const std::wstring names[] = {L"It's Tom's \"best\" ''song''.mp3",
                                L"\u5468\u6770\u502b - \u7a3b\u9999 (na\u00efve) \U0001F3B5.flac",
                                L"back\\slash; DROP TABLE ShareFileItems;--"};
  const double gains[] = {0.1, -6.0200000000000005, 1e-300, 123456.789,
                          std::numeric_limits<double>::max()};
  int old_id = 0;
  for (const auto& name : names) {
    for (double gain : gains) {
      ++old_id;
      auto file = AddFile(&m_model, old_id, name, HashOf(old_id));
      file->ReplayGain = gain;
      file->Artist = name;
      file->CreateTime = int64_t{1} << 40;
    }
  }
  AddFile(&m_model, ++old_id, L"nan", L"")->ReplayGain = std::numeric_limits<double>::quiet_NaN();
  m_model.WriteShareFileItems();

  sql::Statement rows(music()->GetUniqueStatement(
      "SELECT FileName, Artist, ReplayGain, CreateTime FROM ShareFileItems ORDER BY id"));
  for (const auto& file : m_model.m_share_files) {
    ASSERT_TRUE(rows.Step());
    EXPECT_EQ(file->FileName, rows.ColumnString16(0));
    EXPECT_EQ(file->Artist, rows.ColumnString16(1));
    if (file->FileName == L"nan") {
      EXPECT_EQ(0.0, rows.ColumnDouble(2));
    } else {
      EXPECT_EQ(file->ReplayGain, rows.ColumnDouble(2)) << file->ReplayGain;
      EXPECT_EQ(int64_t{1} << 40, rows.ColumnInt64(3));
    }
  }
  EXPECT_FALSE(rows.Step());
}

// Random doubles round-trip through the decimal text too.
TEST_F(MusicLibraryWritersTest, ReplayGainRoundTripsForRandomValues) {
  std::srand(7);
  for (int i = 0; i < 2000; ++i) {
    double gain = (std::rand() - RAND_MAX / 2) / static_cast<double>(std::rand() + 1) *
                  std::pow(10.0, std::rand() % 40 - 20);
    AddFile(&m_model, i, L"f", L"")->ReplayGain = gain;
  }
  m_model.WriteShareFileItems();
  sql::Statement rows(
      music()->GetUniqueStatement("SELECT ReplayGain FROM ShareFileItems ORDER BY id"));
  int mismatches = 0;
  for (const auto& file : m_model.m_share_files) {
    ASSERT_TRUE(rows.Step());
    mismatches += rows.ColumnDouble(0) != file->ReplayGain;
  }
  EXPECT_EQ(0, mismatches);
}

// Folders get consecutive ids; local files find their folder's path by the
// old folder id; a row breaking a constraint loses only itself; an empty
// list leaves its table out.
TEST_F(MusicLibraryWritersTest, FoldersLocalFilesAndTools) {
  m_model.WriteShareFolders();
  m_model.WriteLocalFiles();
  m_model.WriteAppTools();
  EXPECT_FALSE(music()->DoesTableExist("ShareFolders"));
  EXPECT_FALSE(music()->DoesTableExist("LocalFiles"));
  EXPECT_FALSE(music()->DoesTableExist("AppTools"));

  for (int old_id : {30, 10, 30}) {
    auto folder = std::make_shared<ShareFolderItem>();
    folder->old_id = old_id;
    folder->Path = L"D:\\Music\\" + std::to_wstring(old_id) + L"'s";
    folder->AddType = 1;
    m_model.m_share_folders.push_back(folder);
  }
  for (auto [path, folder] : {std::pair{L"D:\\a.mp3", 10}, std::pair{L"D:\\b.mp3", 30},
                              std::pair{L"D:\\a.mp3", 10}, std::pair{L"D:\\c.mp3", 99}}) {
    auto file = std::make_shared<LocalFileInfo>();
    file->FilePath = path;
    file->old_folder_id = folder;
    file->FileSize = static_cast<int>(m_model.m_local_files.size());
    m_model.m_local_files.push_back(file);
  }
  for (int id : {3, 3, 4}) {
    auto tool = std::make_shared<AppToolRecord>();
    tool->ID = id;
    tool->Version = 5000000000;
    tool->Path = L"tool" + std::to_wstring(m_model.m_app_tools.size());
    m_model.m_app_tools.push_back(tool);
  }
  m_model.WriteShareFolders();
  m_model.WriteLocalFiles();
  m_model.WriteAppTools();

  EXPECT_EQ((std::unordered_map<int, int>{{10, 2}, {30, 3}}), m_model.m_folder_id_map);
  EXPECT_EQ((std::vector<std::string>{"D:\\a.mp3|D:\\Music\\10's|0", "D:\\b.mp3|D:\\Music\\30's|1",
                                      "D:\\c.mp3||3"}),
            QueryRows(music(), "SELECT FilePath, FolderPath, FileSize FROM LocalFiles ORDER BY 1"));
  EXPECT_EQ((std::vector<std::string>{"3|5000000000|tool0", "4|5000000000|tool2"}),
            QueryRows(music(), "SELECT ID, Version, Path FROM AppTools ORDER BY ID"));
}

}  // namespace

}  // namespace data_importer
