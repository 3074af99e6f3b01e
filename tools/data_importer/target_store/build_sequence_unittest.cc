#include "tools/data_importer/target_store/build_sequence.h"

#include <gtest/gtest.h>
#if !defined(_WIN32)
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <sstream>
#include <string>

#include "base/file_util.h"
#include "base/utf_string_conversions.h"
#include "sql/connection.h"
#include "testing/test_support.h"
#include "tools/data_importer/environment/data_folder.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/target_store/import_model_test_util.h"
#include "testing/importer_test_util.h"
#include "tools/data_importer/run_record/progress_record.h"

namespace data_importer {

namespace {

class BuildSequenceTest : public testing::Test {
 protected:
  void SetUp() override {
    m_record.Initialise(TestDataFolder());
    m_model.m_progress = &m_record;
  }

  // A small but complete model: files, two lists, downloads, radio.
  void FillModel() {
    AddFile(&m_model, 1, L"D:\\Music\\a.mp3", HashOf(1));
    AddFile(&m_model, 2, L"D:\\Music\\b'.mp3", HashOf(2));
    AddFile(&m_model, 3, L"D:\\Video\\c.mkv", HashOf(3), 2);
    AddList(&m_model, -3, L"Default", 0);
    AddList(&m_model, 5, L"Mine", 1);
    AddSong(&m_model, -3, 1, 1);
    AddSong(&m_model, -3, 2, 2);
    AddSong(&m_model, 5, 3, 2);
    AddSong(&m_model, 5, 4, 40);  // file not imported
    AddDownload(&m_model, 1, 1, L"", 100, 0);
    AddDownload(&m_model, 2, 9, HashOf(2), 50, 0);
    auto radio_song = std::make_shared<SongItem>();
    radio_song->music_file_id = 40;
    m_model.m_radio_songs[8].push_back(radio_song);
  }

  std::unique_ptr<sql::Connection> OpenFinal(const wchar_t* name) {
    auto db = std::make_unique<sql::Connection>();
    EXPECT_TRUE(db->OpenWithKey(m_profile.data_folder().Append(name), kVersion3DatabaseKey))
        << name;
    return db;
  }

  std::vector<std::wstring> DataFolderFiles() {
    std::vector<std::wstring> names;
    base::FileEnumerator files(m_profile.data_folder(), L"*.db*");
    for (base::FilePath file = files.Next(); !file.empty(); file = files.Next())
      names.push_back(file.BaseName().value());
    std::sort(names.begin(), names.end());
    return names;
  }

  TestProfile m_profile;
  ProgressRecord m_record;
  ImportModel m_model;
};

// A filled model becomes two encrypted databases in place of the old ones,
// with consistent ids, the expected tables, and progress from 50 to 90.
TEST_F(BuildSequenceTest, FilledModelBecomesTwoEncryptedDatabases) {
  FillModel();
  TestProfile::Touch(m_profile.data_folder().Append(L"VTMusicV3.db"));  // replaced
  EXPECT_TRUE(base::WriteFile(m_profile.data_folder().Append(L"VTMusicV2.db.tmp"),
                              "stale, not a database"));
  m_record.SetProgress(20);

  ASSERT_TRUE(IsOk(BuildDatabases(&m_model, m_profile.data_folder())));

  EXPECT_EQ((std::vector<std::wstring>{L"VTMusicV3.db", L"playlistV3.db"}), DataFolderFiles());
  EXPECT_EQ(L"85", m_profile.DBCheck(L"ImportProgress"));  // 20 -> 50 floor, +35
  EXPECT_EQ(L"0", m_profile.DBCheck(L"BeforceImportEmpty"));
  EXPECT_EQ(L"-3:2,5:1", m_profile.DBCheck(L"ImportPlayLists"));
  EXPECT_EQ(L"", m_profile.DBCheck(L"ImportState"));
  EXPECT_FALSE(m_model.m_music_db);
  EXPECT_FALSE(m_model.m_playlist_db);

  auto music = OpenFinal(L"VTMusicV3.db");
  auto playlists = OpenFinal(L"playlistV3.db");
  EXPECT_EQ(
      (std::vector<std::string>{"1|D:\\Music\\a.mp3", "2|D:\\Music\\b'.mp3", "3|D:\\Video\\c.mkv"}),
      QueryRows(music.get(), "SELECT id, FileName FROM ShareFileItems ORDER BY id"));
  EXPECT_EQ((std::vector<std::string>{"3|song 3"}),
            QueryRows(playlists.get(), "SELECT SongID, TitleName FROM GeneralList_5"));
  EXPECT_EQ((std::vector<std::string>{"1", "2"}),
            QueryRows(music.get(), "SELECT DownloadID FROM DownloadItem ORDER BY ID"));
  EXPECT_EQ((std::vector<std::string>{"1"}),
            QueryRows(music.get(), "SELECT DownloadID FROM DownloadHistoryItem"));
  EXPECT_TRUE(music->DoesTableExist("RadioChannel_8"));
  EXPECT_TRUE(music->DoesTableExist("RecentlyPlayedItem"));
  EXPECT_FALSE(music->DoesTableExist("LocalFiles"));
  EXPECT_FALSE(playlists->DoesTableExist("ShareFileItems"));

  // Unreadable without the key; readable by the sqlcipher tool with it.
  for (const wchar_t* name : {L"VTMusicV3.db", L"playlistV3.db"}) {
    sql::Connection plain;
    EXPECT_FALSE(plain.Open(m_profile.data_folder().Append(name))) << name;
  }
#if !defined(_WIN32)
  // The stock sqlcipher tool runs on the Linux build only.
  std::string output;
  int status = testing_support::RunCommand(
      "sqlcipher '" + m_profile.data_folder().Append(L"playlistV3.db").AsUTF8Unsafe() + "'",
      "PRAGMA key = '" + base::WideToUTF8(kVersion3DatabaseKey) +
          "';\nSELECT PlaylistName FROM GeneralListTable ORDER BY SortID;\n",
      &output);
  EXPECT_EQ(0, status);
  EXPECT_NE(std::string::npos, output.find("Default\nMine")) << output;
#endif  // !defined(_WIN32)
}

// Progress moves by the fixed weights from at least 50 and stops at 99.
TEST_F(BuildSequenceTest, ProgressFloorAndCeiling) {
  for (auto [start, end] : {std::pair{45, L"90"}, std::pair{95, L"99"}}) {
    TestProfile profile;
    ProgressRecord record;
    record.Initialise(TestDataFolder());
    record.SetProgress(start);
    ImportModel model(&record);
    AddList(&model, 1, L"list", 0);
    ASSERT_TRUE(IsOk(BuildDatabases(&model, profile.data_folder())));
    EXPECT_EQ(end, profile.DBCheck(L"ImportProgress")) << start;
  }
}

// Each writer step adds its own weight after its table is written, in the
// fixed order: a weight moved to a neighbour, or added before the step,
// changes the sequence.
TEST_F(BuildSequenceTest, StepWeightsInOrder) {
  FillModel();
  m_record.SetProgress(50);  // the floor, so that the first weight shows too
  std::vector<std::string> steps;
  ASSERT_TRUE(IsOk(BuildDatabases(&m_model, m_profile.data_folder(), [&](const char* stage) {
    steps.push_back(std::string(stage) + "=" + std::to_string(m_record.progress()));
  })));
  ASSERT_GE(steps.size(), 18u);
  const std::vector<std::string> writers(steps.begin() + 1, steps.begin() + 18);
  EXPECT_EQ((std::vector<std::string>{
                "ShareFileItems=60", "ShareFolders=62", "GeneralListTable=64",
                "RecentlyPlayedItem=66", "GeneralList=70", "RadioChannelTable=74",
                "DislikeRadioItem=76", "RadioChannel=78", "PlayedNJRadioItem=80", "LocalFiles=82",
                "DownloadItem=84", "DownloadHistoryItem=88", "UserLoginHistory=90",
                "KeywordSearchHistory=92", "Settings=93", "Skin=94", "AppTools=95"}),
            writers);
  EXPECT_EQ("Prepare=50", steps.front());
}

// "BeforceImportEmpty": no list, or one list without entries, is empty.
// Without a list table the count report fails: state 8, but the files are
// still encrypted and moved into place.
TEST_F(BuildSequenceTest, EmptySourcesAndFailingListReport) {
  struct Case {
    int lists;
    int entries;
    const wchar_t* empty;
  };
  for (const Case& c : {Case{0, 0, L"1"}, Case{1, 0, L"1"}, Case{1, 2, L"0"}, Case{2, 0, L"0"}}) {
    TestProfile profile;
    ProgressRecord record;
    record.Initialise(TestDataFolder());
    ImportModel model(&record);
    AddFile(&model, 1, L"a.mp3", HashOf(1));
    for (int list = 0; list < c.lists; ++list) {
      model.m_list_songs[list];
      for (int entry = 0; entry < c.entries; ++entry)
        AddSong(&model, list, entry + 1, 1);
    }
    ASSERT_TRUE(IsOk(BuildDatabases(&model, profile.data_folder())));
    EXPECT_EQ(c.empty, profile.DBCheck(L"BeforceImportEmpty")) << c.lists << "/" << c.entries;
    // No list records: no GeneralListTable, so the report fails.
    EXPECT_EQ(L"8", profile.DBCheck(L"ImportState"));
    EXPECT_EQ(L"0", profile.DBCheck(L"ImportPlayLists"));
    EXPECT_TRUE(base::PathExists(profile.data_folder().Append(L"VTMusicV3.db")));
    EXPECT_TRUE(base::PathExists(profile.data_folder().Append(L"playlistV3.db")));
    EXPECT_FALSE(base::PathExists(profile.data_folder().Append(L"playlist.db.tmp")));
  }
}

// A version-2 database of an earlier release stops the build before
// anything is written, and no temporary file is left behind.
TEST_F(BuildSequenceTest, EarlierVersion2DatabaseStopsTheBuild) {
  for (const wchar_t* blocking : {L"VTMusicV2.db", L"playlist.db"}) {
    TestProfile profile;
    ProgressRecord record;
    record.Initialise(TestDataFolder());
    ImportModel model(&record);
    AddFile(&model, 1, L"a.mp3", HashOf(1));
    TestProfile::Touch(profile.data_folder().Append(blocking));
    EXPECT_FALSE(IsOk(BuildDatabases(&model, profile.data_folder())));
    EXPECT_EQ(L"1", profile.DBCheck(L"ImportState"));
    std::vector<std::wstring> left;
    base::FileEnumerator files(profile.data_folder(), L"*.db*");
    for (base::FilePath file = files.Next(); !file.empty(); file = files.Next())
      left.push_back(file.BaseName().value());
    EXPECT_EQ(std::vector<std::wstring>{blocking}, left);
  }
}

// Every table is created with exactly the text the player expects.
TEST_F(BuildSequenceTest, StoredSchemasAreTheExpectedTexts) {
  FillModel();
  m_model.m_share_folders.push_back(std::make_shared<ShareFolderItem>());
  m_model.m_radio_channels.push_back(std::make_shared<RadioChannelInfo>());
  m_model.m_recent_songs.push_back(std::make_shared<SongItem>());
  m_model.m_dislike_radio.push_back(std::make_shared<DislikeRadioRecord>());
  m_model.m_played_radio.push_back(std::make_shared<PlayedRadioRecord>());
  m_model.m_local_files.push_back(std::make_shared<LocalFileInfo>());
  m_model.m_login_history.push_back(std::make_shared<LoginRecord>());
  m_model.m_search_keywords.push_back(std::make_shared<SearchKeywordRecord>());
  m_model.m_app_tools.push_back(std::make_shared<AppToolRecord>());
  ASSERT_TRUE(IsOk(BuildDatabases(&m_model, m_profile.data_folder())));
  auto music = OpenFinal(L"VTMusicV3.db");
  auto playlists = OpenFinal(L"playlistV3.db");

  std::string expected;
  ASSERT_TRUE(base::ReadFileToString(
      base::FilePath::FromUTF8Unsafe(VANTU_SOURCE_DIR "/testing/data/target_schemas.txt"),
      &expected));
  std::istringstream lines(expected);
  int checked = 0;
  for (std::string line; std::getline(lines, line);) {
    size_t tab = line.find('\t');
    if (line.empty() || line[0] == '#' || tab == std::string::npos)
      continue;
    std::string table = line.substr(0, tab);
    std::string text = line.substr(tab + 1);
    if (table == "%s") {
      table = "GeneralList_5";
      text.replace(text.find("%s"), 2, table);
    }
    sql::Connection* db = table.rfind("General", 0) == 0 ? playlists.get() : music.get();
    EXPECT_EQ(text, StoredSchema(db, table)) << table;
    ++checked;
  }
  EXPECT_EQ(13, checked);
  // The recently-played table has the song schema under its own name.
  std::string recent = StoredSchema(music.get(), "RecentlyPlayedItem");
  std::string list = StoredSchema(playlists.get(), "GeneralList_5");
  EXPECT_EQ(list.substr(list.find('(')), recent.substr(recent.find('(')));
}

// Final files of an earlier run that a failed build must leave untouched.
void WriteOldFinalFiles(const base::FilePath& folder) {
  ASSERT_TRUE(base::WriteFile(folder.Append(L"VTMusicV3.db"), "old music"));
  ASSERT_TRUE(base::WriteFile(folder.Append(L"playlistV3.db"), "old lists"));
}

void ExpectFailedBuildLeftOldFiles(const TestProfile& profile) {
  base::FilePath folder = profile.data_folder();
  EXPECT_EQ("old music", testing_support::ReadBytes(folder.Append(L"VTMusicV3.db")));
  EXPECT_EQ("old lists", testing_support::ReadBytes(folder.Append(L"playlistV3.db")));
  for (const wchar_t* name :
       {L"VTMusicV2.db.tmp", L"playlist.db.tmp", L"VTMusicV2.db.tmp.enc", L"playlist.db.tmp.enc"})
    EXPECT_FALSE(base::PathExists(folder.Append(name))) << base::WideToUTF8(name);
  EXPECT_EQ(L"8", profile.DBCheck(L"ImportState"));
  std::string log;
  ASSERT_TRUE(base::ReadFileToString(folder.Append(L"DataImporter.log"), &log));
  EXPECT_NE(std::string::npos, log.find("is not replaced")) << log;
}

// An encryption that fails (its output cannot be created) must not let the
// still plain file take the final name.
TEST_F(BuildSequenceTest, FailedEncryptionReplacesNothing) {
  FillModel();
  WriteOldFinalFiles(m_profile.data_folder());
  // A folder that cannot be deleted where the encrypted copy would go.
  base::FilePath blocker = m_profile.data_folder().Append(L"VTMusicV2.db.tmp.enc");
  ASSERT_TRUE(base::CreateDirectory(blocker));
  TestProfile::Touch(blocker.Append(L"keep"));

  EXPECT_FALSE(IsOk(BuildDatabases(&m_model, m_profile.data_folder())));
  m_record.WriteEnd();

  EXPECT_EQ(L"5", m_profile.DBCheck(L"ImportEnd"));
  EXPECT_TRUE(m_model.m_verified_playlist.ok);  // the playlist file was fine
  EXPECT_FALSE(m_model.m_verified_music.ok);
  EXPECT_EQ("encryption failed", m_model.m_verified_music.error);
  ASSERT_TRUE(base::DeleteFile(blocker, true));
  ExpectFailedBuildLeftOldFiles(m_profile);
}

#if !defined(_WIN32)
// The file-size limit of a child process stands for a full disk: POSIX only.
// A disk that fills up while the encrypted files are written: a child
// process gets a file-size limit once the tables are written, so the
// encryption's writes fail as on a full disk.
TEST_F(BuildSequenceTest, FullDiskDuringEncryptionReplacesNothing) {
  FillModel();
  WriteOldFinalFiles(m_profile.data_folder());
  for (int i = 0; i < 200; ++i)  // enough rows for files of several pages
    AddFile(&m_model, 100 + i, L"D:\\Music\\more " + std::to_wstring(i) + L".mp3", HashOf(100 + i));

  pid_t child = fork();
  ASSERT_NE(-1, child);
  if (child == 0) {
    signal(SIGXFSZ, SIG_IGN);  // writes past the limit fail with EFBIG instead
    base::Status result = BuildDatabases(&m_model, m_profile.data_folder(), [](const char* stage) {
      if (std::string(stage) == "CountRows") {
        rlimit limit{8192, 8192};
        setrlimit(RLIMIT_FSIZE, &limit);
      }
    });
    _exit(result.ok() ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(child, waitpid(child, &status, 0));
  ASSERT_TRUE(WIFEXITED(status)) << status;
  EXPECT_EQ(1, WEXITSTATUS(status));
  ExpectFailedBuildLeftOldFiles(m_profile);
}

#endif  // !defined(_WIN32)

// With the verified files in place, the model holds what they read back.
TEST_F(BuildSequenceTest, VerifiedRowCountsAreKept) {
  FillModel();
  ASSERT_TRUE(IsOk(BuildDatabases(&m_model, m_profile.data_folder())));
  EXPECT_TRUE(m_model.m_verified_music.ok);
  EXPECT_EQ(3, m_model.m_verified_music.row_counts.at("ShareFileItems"));
  EXPECT_EQ(2, m_model.m_verified_music.row_counts.at("DownloadItem"));
  EXPECT_EQ(2, m_model.m_verified_playlist.row_counts.at("GeneralListTable"));
  EXPECT_EQ(1, m_model.m_verified_playlist.row_counts.at("GeneralList_5"));
  EXPECT_EQ(0, m_model.m_verified_playlist.row_counts.count("ShareFileItems"));
}

}  // namespace

}  // namespace data_importer
