#include "tools/data_importer/environment/ansi_code_page.h"

#include <gtest/gtest.h>

#include <string>

#include "base/file_util.h"
#include "testing/fixtures/registry_hive_fixture.h"
#include "testing/test_support.h"

namespace data_importer {

namespace {

class AnsiCodePageTest : public testing::Test {
 protected:
  // A system hive under |m_drive_c| whose current control set is |current|
  // and which holds |acp| in the control sets 1 and 2 (the second one
  // Western).
  void WriteSystemHive(uint32_t current, const std::wstring& acp) {
    const std::vector<HiveKey> keys = {
        {L"Select", {{L"Current", std::to_wstring(current), kHiveRegDword}}},
        {L"ControlSet001\\Control\\Nls\\CodePage", {{L"ACP", acp}, {L"OEMCP", L"437"}}},
        {L"ControlSet002\\Control\\Nls\\CodePage", {{L"ACP", L"1252"}}},
    };
    base::FilePath config = drive_c().Append(L"Windows").Append(L"System32").Append(L"config");
    ASSERT_TRUE(base::CreateDirectory(config));
    testing_support::WriteBytes(config.Append(L"SYSTEM"), BuildRegistryHive(keys));
  }
  base::FilePath drive_c() const { return m_temp.path().Append(L"C"); }

  testing_support::ScopedTempDir m_temp;
};

TEST_F(AnsiCodePageTest, OptionThenSystemHiveThenChinese) {
  // Nothing recorded: the player's own code page.
  ASSERT_TRUE(base::CreateDirectory(drive_c()));
  EXPECT_EQ(936u, AnsiCodePageOfVolume(drive_c(), std::nullopt));
  EXPECT_EQ(936u, AnsiCodePageOfVolume(base::FilePath(), std::nullopt));
  if (testing_support::RunningUnderWine())
    GTEST_SKIP() << testing_support::kWineHiveSkip;

  WriteSystemHive(1, L"932");
  EXPECT_EQ(932u, AnsiCodePageOfVolume(drive_c(), std::nullopt));
  // The option wins over the hive, when it names a code page at all.
  EXPECT_EQ(1251u, AnsiCodePageOfVolume(drive_c(), 1251u));
  EXPECT_EQ(932u, AnsiCodePageOfVolume(drive_c(), 4242u));

  // The control set is the current one, not the first.
  WriteSystemHive(2, L"932");
  EXPECT_EQ(1252u, AnsiCodePageOfVolume(drive_c(), std::nullopt));
  // A current set that does not exist, and values that name no code page.
  WriteSystemHive(3, L"932");
  EXPECT_EQ(936u, AnsiCodePageOfVolume(drive_c(), std::nullopt));
  WriteSystemHive(1, L"4242");
  EXPECT_EQ(936u, AnsiCodePageOfVolume(drive_c(), std::nullopt));
  WriteSystemHive(1, L"Western");
  EXPECT_EQ(936u, AnsiCodePageOfVolume(drive_c(), std::nullopt));

  // A damaged hive is no hive.
  testing_support::WriteBytes(
      drive_c().Append(L"Windows").Append(L"System32").Append(L"config").Append(L"SYSTEM"),
      "regf and nothing else");
  EXPECT_EQ(936u, AnsiCodePageOfVolume(drive_c(), std::nullopt));
}

}  // namespace

}  // namespace data_importer
