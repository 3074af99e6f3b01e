#include "tools/data_importer/driver/task_decision.h"

#include <gtest/gtest.h>

#include "base/file_util.h"
#include "testing/importer_test_util.h"

namespace data_importer {

namespace {

class TaskDecisionTest : public ::testing::Test {
 protected:
  std::wstring Decide() { return DecideTask(TestRunContext(m_source)); }
  base::FilePath Data(const wchar_t* name) { return m_profile.data_folder().Append(name); }

  TestProfile m_profile;
  base::FilePath m_source;
};

TEST_F(TaskDecisionTest, CurrentGenerationFilesComeFirst) {
  EXPECT_TRUE(base::CreateDirectory(m_profile.data_folder()));
  EXPECT_EQ(L"", Decide());

  TestProfile::Touch(Data(L"vantu.db"));
  EXPECT_EQ(L"importvantu8", Decide());
  TestProfile::Touch(Data(L"VTMusic.db"));
  EXPECT_EQ(L"importvantu8", Decide());
  TestProfile::Touch(Data(L"VTMusicV2.db"));
  EXPECT_EQ(L"copyv8dbv2", Decide());
  // Either version-3 file wins over version 2.
  TestProfile::Touch(Data(L"playlistV3.db"));
  EXPECT_EQ(L"updatevantu8", Decide());
  EXPECT_TRUE(base::DeleteFile(Data(L"playlistV3.db")));
  TestProfile::Touch(Data(L"vtmusicv3.DB"));  // found whatever its letter case
  EXPECT_EQ(L"updatevantu8", Decide());
}

// The older files of this generation are found in any letter case, each on
// its own.
TEST_F(TaskDecisionTest, CurrentGenerationFilesInAnyLetterCase) {
  for (const wchar_t* name : {L"VTMUSIC.DB", L"vtmusic.db", L"Vantu.DB", L"VANTU.db"}) {
    TestProfile::Touch(Data(name));
    EXPECT_EQ(L"importvantu8", Decide()) << name;
    EXPECT_EQ(4, ImportKindOfTask(Decide()));
    EXPECT_TRUE(base::DeleteFile(Data(name)));
  }
  TestProfile::Touch(Data(L"vantu.db.old"));
  EXPECT_EQ(L"", Decide());
}

TEST_F(TaskDecisionTest, EarlierGenerationsInOrder) {
  // The 2008 edition is found only when no generation-6 source exists.
  base::FilePath program2008 = m_profile.root().Append(L"VanTa").Append(L"VanTa.exe");
  TestProfile::Touch(program2008);
  m_profile.SetRegistryValue(L"Software\\VanTa", L"AppFileName", program2008.value());
  EXPECT_EQ(L"importvantu2008", Decide());

  // A generation-6 registry path that no longer exists falls through to the
  // source folder.
  m_profile.SetRegistryValue(L"Software\\VanTa6", L"AppFileName",
                             m_profile.root().Append(L"gone").Append(L"vantu.exe").value());
  m_source = m_profile.root().Append(L"old6");
  TestProfile::Touch(m_source.Append(L"VTLibrary.db"));
  EXPECT_EQ(L"importvantu6", Decide());

  base::FilePath program6 = m_profile.root().Append(L"VanTa6").Append(L"vantu.exe");
  TestProfile::Touch(program6);
  m_profile.SetRegistryValue(L"Software\\VanTa6", L"AppFileName", program6.value());
  EXPECT_EQ(L"importvantu6", Decide());

  // Generation 7, in a folder spelt "Vantu7" on disk.
  TestProfile::Touch(m_profile.roaming().Append(L"Vantu7").Append(L"VTData.db"));
  EXPECT_EQ(L"importvantu7", Decide());
}

TEST_F(TaskDecisionTest, SourceFolderDatabaseIsCopiedAlone) {
  m_source = m_profile.root().Append(L"old6");
  EXPECT_TRUE(base::CreateDirectory(m_source));
  testing_support::WriteBytes(m_source.Append(L"VTData.db"), "v1");
  testing_support::WriteBytes(m_source.Append(L"VTLibrary.db"), "lib");
  EXPECT_TRUE(base::CreateDirectory(m_profile.data_folder()));

  EXPECT_EQ(L"importvantu6", Decide());
  EXPECT_EQ("v1", testing_support::ReadBytes(Data(L"VT6Data.db")));
  EXPECT_FALSE(base::PathExists(Data(L"VTLibrary.db")));
}

TEST_F(TaskDecisionTest, SourceFolderLibraryFilesAreCopied) {
  m_source = m_profile.root().Append(L"old6");
  EXPECT_TRUE(base::CreateDirectory(m_source));
  testing_support::WriteBytes(m_source.Append(L"VTLibrary.db"), "0");
  testing_support::WriteBytes(m_source.Append(L"VTLibrary2.db"), "2");
  testing_support::WriteBytes(m_source.Append(L"Other.db"), "x");
  EXPECT_TRUE(base::CreateDirectory(m_profile.data_folder()));

  EXPECT_EQ(L"importvantu6", Decide());
  EXPECT_EQ("0", testing_support::ReadBytes(Data(L"VTLibrary.db")));
  EXPECT_EQ("2", testing_support::ReadBytes(Data(L"VTLibrary2.db")));
  EXPECT_FALSE(base::PathExists(Data(L"Other.db")));
  EXPECT_FALSE(base::PathExists(Data(L"VT6Data.db")));
}

TEST(TaskNameTest, ComparisonIsExactAndKindsFollowNames) {
  EXPECT_TRUE(IsTask(L"importvantu6", kTaskImportGeneration6));
  EXPECT_FALSE(IsTask(L"ImportVantu6", kTaskImportGeneration6));
  EXPECT_FALSE(IsTask(L"importvantu", kTaskImportGeneration6));
  EXPECT_EQ(1, ImportKindOfTask(L"importvantu2008"));
  EXPECT_EQ(2, ImportKindOfTask(L"importvantu6"));
  EXPECT_EQ(3, ImportKindOfTask(L"importvantu7"));
  EXPECT_EQ(4, ImportKindOfTask(L"importvantu8"));
  EXPECT_EQ(0, ImportKindOfTask(L"copyv8dbv2"));
  EXPECT_EQ(0, ImportKindOfTask(L""));
}

}  // namespace

}  // namespace data_importer
