// The generation-6 settings file carried through a whole import run.

#include <gtest/gtest.h>

#include <string>

#include "base/file_util.h"
#include "base/profile_string.h"
#include "testing/fixtures/generation6_fixture.h"
#include "tools/data_importer/data_importer_main.h"
#include "testing/importer_test_util.h"

namespace {

class V6SettingsImportTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(WriteSampleV6Installation(program(), 5));
    ASSERT_TRUE(base::WriteFile(profile_.root().Append(L"user.reg"), V6RegistryText(program())));
    TestProfile::Touch(program().Append(L"VanTa6.exe"));
  }

  base::FilePath program() const {
    return profile_.root().Append(L"Program Files").Append(L"VanTa6");
  }

  TestProfile profile_;
};

TEST_F(V6SettingsImportTest, SettingsArriveInTheNewIni) {
  ASSERT_TRUE(base::WriteFile(
      program().Append(L"VanTa.xml"),
      "<VanTa><Player Volume=\"64\"><AutoPlay>1</AutoPlay></Player>"
      "<PlayBack SFadeOutTime=\"700\"/><Network><ProxyType>2</ProxyType></Network></VanTa>"));
  DataImporterMain();
  EXPECT_EQ(L"4", profile_.DBCheck(L"ImportEnd"));
  EXPECT_EQ(L"100", profile_.DBCheck(L"ImportProgress"));
  EXPECT_EQ(L"64", profile_.Setting(L"Volume"));
  EXPECT_EQ(L"1", profile_.Setting(L"AutoPlay"));
  EXPECT_EQ(L"0", profile_.Setting(L"MusicFadeIn"));
  EXPECT_EQ(L"700", profile_.Setting(L"MusicFadeOut"));
  EXPECT_EQ(L"1", profile_.Setting(L"MusicUserFade"));
  EXPECT_EQ(L"2", profile_.Setting(L"ProxyType"));
  EXPECT_EQ(L"9000", profile_.Setting(L"DownloadPort"));
}

TEST_F(V6SettingsImportTest, UnusableSettingsFileLeavesNoSection) {
  ASSERT_TRUE(base::WriteFile(program().Append(L"VanTa.xml"), "<VanTa><Player Volume=\"64\">"));
  DataImporterMain();
  EXPECT_EQ(L"4", profile_.DBCheck(L"ImportEnd"));
  EXPECT_EQ(L"", profile_.DBCheck(L"ImportState"));
  EXPECT_EQ(L"#missing#", profile_.Setting(L"Volume"));
  EXPECT_TRUE(base::GetPrivateProfileKeys(L"Settings", profile_.ini().value()).empty());
}

}  // namespace
