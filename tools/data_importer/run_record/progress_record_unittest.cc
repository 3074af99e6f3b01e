#include "tools/data_importer/run_record/progress_record.h"

#include <gtest/gtest.h>

#include "base/profile_string.h"
#include "testing/test_support.h"
#include "tools/data_importer/environment/data_folder.h"
#include "testing/importer_test_util.h"

namespace data_importer {

namespace {

TEST(ProgressRecordTest, InitialiseResetsTheSection) {
  TestProfile profile;
  ProgressRecord record;
  record.Initialise(TestDataFolder());
  EXPECT_EQ(profile.ini().value(), record.ini_path());
  for (const wchar_t* key :
       {L"ImportProgress", L"ImportState", L"UpdateProgress", L"ImportPlayLists", L"ForceDeleteDb"})
    EXPECT_EQ(L"", profile.DBCheck(key)) << key;
  EXPECT_EQ(L"-1", profile.DBCheck(L"BeforceImportEmpty"));
  EXPECT_EQ(L"#missing#", profile.DBCheck(L"ImportEnd"));
}

// A settings file the run makes is UTF-16LE with its mark, so a value in
// any script survives; one the player made keeps its encoding.
TEST(ProgressRecordTest, NewSettingsFileIsUnicodeAndAnOldOneKeepsItsEncoding) {
  TestProfile profile;
  ProgressRecord record;
  record.Initialise(TestDataFolder());
  std::string bytes = testing_support::ReadBytes(profile.ini());
  ASSERT_GE(bytes.size(), 2u);
  EXPECT_EQ(std::string("\xFF\xFE", 2), bytes.substr(0, 2));
  const std::wstring title = L"\u4e2d\u6587\u6b4c\u66f2 \U0001F3B5";
  ASSERT_TRUE(base::WritePrivateProfileStringW(L"Settings", L"LastTitle", title.c_str(),
                                               profile.ini().value().c_str(), 1252));
  EXPECT_EQ(title, profile.Setting(L"LastTitle"));

  testing_support::WriteBytes(profile.ini(), "[DBCheck]\r\nImportEnd=1\r\n");
  ProgressRecord again;
  again.Initialise(TestDataFolder());
  bytes = testing_support::ReadBytes(profile.ini());
  EXPECT_EQ(0u, bytes.find("[DBCheck]\r\n")) << bytes;
  EXPECT_EQ(L"1", profile.DBCheck(L"ImportEnd"));
}

TEST(ProgressRecordTest, AdvanceClampsToFloorAndNinetyNine) {
  TestProfile profile;
  ProgressRecord record;
  record.Initialise(TestDataFolder());
  record.Advance(1, 50);
  EXPECT_EQ(50, record.progress());
  EXPECT_EQ(L"50", profile.DBCheck(L"ImportProgress"));
  record.SetProgress(98);
  record.Advance(4, 0);
  EXPECT_EQ(L"99", profile.DBCheck(L"ImportProgress"));
  // A sum of exactly 100 is also held at 99: only the entry point writes 100.
  record.SetProgress(90);
  record.Advance(10, 0);
  EXPECT_EQ(99, record.progress());
  EXPECT_EQ(L"99", profile.DBCheck(L"ImportProgress"));
  record.SetProgress(45);
  record.Advance(10, 50);
  EXPECT_EQ(L"55", profile.DBCheck(L"ImportProgress"));
  record.Advance(5, 0);
  EXPECT_EQ(60, record.progress());
  record.Advance(-20, 0);  // below a floor of 0 nothing clamps
  EXPECT_EQ(40, record.progress());
}

TEST(ProgressRecordTest, FailureReportsEndBeforeAddingBits) {
  TestProfile profile;
  ProgressRecord record;
  record.Initialise(TestDataFolder());
  record.ReportFailure(ProgressRecord::kStateBuildFailed);
  // The first failure leaves "ImportEnd" at the state before it.
  EXPECT_EQ(L"4", profile.DBCheck(L"ImportEnd"));
  EXPECT_EQ(L"8", profile.DBCheck(L"ImportState"));
  EXPECT_EQ(8u, record.WriteEnd());
  EXPECT_EQ(L"5", profile.DBCheck(L"ImportEnd"));

  record.ReportFailure(ProgressRecord::kStateMusicFailed | ProgressRecord::kStateTableFailed);
  EXPECT_EQ(L"28", profile.DBCheck(L"ImportState"));

  // Bits 2, 4 and 16 alone do not make the end a failure.
  ProgressRecord other;
  other.Initialise(TestDataFolder());
  other.ReportFailure(ProgressRecord::kStateListsFailed);
  EXPECT_EQ(2u, other.WriteEnd());
  EXPECT_EQ(L"4", profile.DBCheck(L"ImportEnd"));

  // An empty source ends with "8" whatever the state.
  other.SetSourceEmpty(true);
  EXPECT_EQ(L"1", profile.DBCheck(L"BeforceImportEmpty"));
  other.ReportFailure(ProgressRecord::kStateNotStarted);
  other.WriteEnd();
  EXPECT_EQ(L"8", profile.DBCheck(L"ImportEnd"));
}

}  // namespace

}  // namespace data_importer
