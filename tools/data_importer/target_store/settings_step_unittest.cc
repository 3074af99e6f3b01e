// The settings writer's place in the build sequence.

#include <gtest/gtest.h>

#include <string>

#include "base/file_util.h"
#include "tools/data_importer/environment/data_folder.h"
#include "testing/importer_test_util.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/target_store/build_sequence.h"
#include "tools/data_importer/target_store/import_model.h"

namespace data_importer {

namespace {

// Written after the databases' history tables and before the app tools,
// every record in order, beside an intact "DBCheck".
TEST(SettingsStepTest, RecordsWrittenInOrderAfterTheTables) {
  TestProfile profile;
  ProgressRecord record;
  record.Initialise(TestDataFolder());
  ImportModel model(&record);
  ImportedSettings first;
  first.Volume = 30;
  first.ShowLyricPresent = true;  // a key only the first record writes
  first.ShowLyric = true;
  ImportedSettings second;
  second.Volume = 70;
  model.AddSettings(first);
  model.AddSettings(second);

  std::wstring volume_before, volume_after;
  ASSERT_TRUE(IsOk(BuildDatabases(&model, profile.data_folder(), [&](const char* stage) {
    if (std::string(stage) == "KeywordSearchHistory")
      volume_before = profile.Setting(L"Volume");
    if (std::string(stage) == "Settings")
      volume_after = profile.Setting(L"Volume");
  })));
  EXPECT_EQ(L"#missing#", volume_before);
  EXPECT_EQ(L"70", volume_after);
  EXPECT_EQ(L"1", profile.Setting(L"ShowLyric"));
  EXPECT_EQ(L"1", profile.DBCheck(L"BeforceImportEmpty"));
}

// A settings file that cannot be written costs the settings, not the build.
TEST(SettingsStepTest, UnwritableIniDoesNotFailTheBuild) {
  TestProfile profile;
  ASSERT_TRUE(base::CreateDirectory(profile.ini()));  // a folder in its place
  ImportModel model;
  model.AddSettings(ImportedSettings());
  EXPECT_TRUE(IsOk(BuildDatabases(&model, profile.data_folder())));
  EXPECT_TRUE(base::PathExists(profile.data_folder().Append(L"VTMusicV3.db")));
  EXPECT_TRUE(base::PathExists(profile.data_folder().Append(L"playlistV3.db")));
}

}  // namespace

}  // namespace data_importer
