// The generation-6 settings file carried through a whole import run.

#include <gtest/gtest.h>

#include <string>

#include "base/code_page.h"
#include "base/file_util.h"
#include "base/profile_string.h"
#include "testing/fixtures/generation6_fixture.h"
#include "tools/data_importer/data_importer_main.h"
#include "testing/importer_test_util.h"

namespace data_importer {

namespace {

class V6SettingsImportTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(WriteSampleV6Installation(program(), 5));
    ASSERT_TRUE(base::WriteFile(m_profile.root().Append(L"user.reg"), V6RegistryText(program())));
    TestProfile::Touch(program().Append(L"VanTa6.exe"));
  }

  base::FilePath program() const {
    return m_profile.root().Append(L"Program Files").Append(L"VanTa6");
  }

  TestProfile m_profile;
};

TEST_F(V6SettingsImportTest, SettingsArriveInTheNewIni) {
  ASSERT_TRUE(base::WriteFile(
      program().Append(L"VanTa.xml"),
      "<VanTa><Player Volume=\"64\"><AutoPlay>1</AutoPlay></Player>"
      "<PlayBack SFadeOutTime=\"700\"/><Network><ProxyType>2</ProxyType></Network></VanTa>"));
  DataImporterMain();
  EXPECT_EQ(L"4", m_profile.DBCheck(L"ImportEnd"));
  EXPECT_EQ(L"100", m_profile.DBCheck(L"ImportProgress"));
  EXPECT_EQ(L"64", m_profile.Setting(L"Volume"));
  EXPECT_EQ(L"1", m_profile.Setting(L"AutoPlay"));
  EXPECT_EQ(L"0", m_profile.Setting(L"MusicFadeIn"));
  EXPECT_EQ(L"700", m_profile.Setting(L"MusicFadeOut"));
  EXPECT_EQ(L"1", m_profile.Setting(L"MusicUserFade"));
  EXPECT_EQ(L"2", m_profile.Setting(L"ProxyType"));
  EXPECT_EQ(L"9000", m_profile.Setting(L"DownloadPort"));
}

TEST_F(V6SettingsImportTest, UnusableSettingsFileLeavesNoSection) {
  ASSERT_TRUE(base::WriteFile(program().Append(L"VanTa.xml"), "<VanTa><Player Volume=\"64\">"));
  DataImporterMain();
  EXPECT_EQ(L"4", m_profile.DBCheck(L"ImportEnd"));
  EXPECT_EQ(L"", m_profile.DBCheck(L"ImportState"));
  EXPECT_EQ(L"#missing#", m_profile.Setting(L"Volume"));
  EXPECT_TRUE(base::GetPrivateProfileKeys(L"Settings", m_profile.ini().value(),
                                          base::kCodePageSimplifiedChinese)
                  .empty());
}

}  // namespace

}  // namespace data_importer
