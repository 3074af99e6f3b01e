// vantu-import run as a program on a profile copied from a Windows machine:
// its registry hive "NTUSER.DAT" names the generation-6 program by a Windows
// path, and the host maps the drive to the copied volume.

#include <gtest/gtest.h>

#include <string>

#include "base/file_util.h"
#include "testing/fixtures/generation6_fixture.h"
#include "testing/fixtures/generation7_fixture.h"
#include "testing/fixtures/registry_hive_fixture.h"
#include "testing/program_runner.h"
#include "testing/test_support.h"

namespace {

class WindowsProfileTest : public testing::Test {
 protected:
  // A copied volume: "<volume>/Users/Bob" and, elsewhere on it, the program.
  WindowsProfileTest() : m_volume(m_dir.path().Append(L"volume")) {
    m_profile = m_volume.Append(L"Users").Append(L"Bob");
    EXPECT_TRUE(base::CreateDirectory(m_profile.Append(L"AppData").Append(L"Local")));
    EXPECT_TRUE(base::CreateDirectory(m_profile.Append(L"AppData").Append(L"Roaming")));
  }

  // Writes a small generation-6 "V1" installation into |folder|.
  void WriteInstallation(const base::FilePath& folder) {
    V6V1Database db;
    V6Music song;
    song.id = 1;
    song.title = L"Halo";
    song.file_name = L"C:\\Music\\Halo.mp3";
    song.hash = std::wstring(32, L'A');
    db.music = {song};
    db.lists = {{5, 0, L"Road", 0, 1}};
    db.items = {{1, 5, 1, 0, 0}};
    ASSERT_TRUE(db.Write(folder.Append(L"VTData.db")));
    testing_support::WriteBytes(folder.Append(L"VanTa6.exe"), "MZ");
  }

  void WriteHive(const base::FilePath& file, const std::wstring& program, uint32_t type) {
    testing_support::WriteBytes(
        file, BuildRegistryHive({{L"Software\\VanTa6", {{L"AppFileName", program, type}}}}));
  }

  // Runs vantu-import with |args| in a clean environment; answers its exit
  // status and keeps its output.
  int Run(const std::string& args, bool quiet = true) {
    testing_support::ProgramEnvironment environment;
    environment.unset = {"VANTU_REGISTRY_FILE", "LOCALAPPDATA", "APPDATA", "USERPROFILE"};
    environment.set["HOME"] = m_dir.path().AsUTF8Unsafe();
    return testing_support::RunProgram(
        base::FilePath::FromUTF8Unsafe(VANTU_BINARY_DIR "/vantu-import"),
        (quiet ? "--quiet " : "") + args, environment, &m_output);
  }

  bool Contains(const std::string& text) const { return m_output.find(text) != std::string::npos; }

  // Forgets the outcome of an earlier run, so that the next one imports
  // again.
  void ClearDataFolder() {
    EXPECT_TRUE(base::DeleteFile(m_profile.Append(L"AppData/Local/VanTu8"), true));
  }

  bool Imported() const {
    return base::PathExists(m_profile.Append(L"AppData/Local/VanTu8/VTMusicV3.db")) &&
           base::PathExists(m_profile.Append(L"AppData/Local/VanTu8/playlistV3.db"));
  }

  testing_support::ScopedTempDir m_dir;
  base::FilePath m_volume;
  base::FilePath m_profile;
  std::string m_output;
};

// The program folder is written in another letter case than the registry's
// path, as a copy from a case-insensitive volume may be.
TEST_F(WindowsProfileTest, HiveAndDefaultDriveFromTheCopiedVolume) {
  if (testing_support::RunningUnderWine())
    GTEST_SKIP() << testing_support::kWineHiveSkip;
  WriteInstallation(m_volume.Append(L"program files").Append(L"vanta6"));
  WriteHive(m_profile.Append(L"ntuser.dat"), L"C:\\Program Files\\VanTa6\\VanTa6.exe", kHiveRegSz);
  EXPECT_EQ(0, Run("--profile " + testing_support::QuoteArgument(m_profile))) << m_output;
  EXPECT_TRUE(Imported()) << m_output;
}

TEST_F(WindowsProfileTest, DriveOptionAndExpandedValue) {
  if (testing_support::RunningUnderWine())
    GTEST_SKIP() << testing_support::kWineHiveSkip;
  // The program on another copied drive, named through --drive.
  base::FilePath drive_d = m_dir.path().Append(L"drive d");
  WriteInstallation(drive_d.Append(L"Apps").Append(L"VanTa6"));
  WriteHive(m_profile.Append(L"NTUSER.DAT"), L"D:\\Apps\\VanTa6\\VanTa6.exe", kHiveRegSz);
  // Named but not reachable: said so with the option that maps it.
  EXPECT_EQ(4, Run("--profile " + testing_support::QuoteArgument(m_profile), false)) << m_output;
  EXPECT_FALSE(Imported()) << "drive D has no folder: the program is not found";
  EXPECT_TRUE(
      Contains("Nothing imported: an earlier installation is named but could not be "
               "reached: generation 6 at \"D:\\Apps\\VanTa6\\VanTa6.exe\" (no folder "
               "stands for drive D:; give --drive D=FOLDER"))
      << m_output;
  EXPECT_TRUE(
      Contains("HKEY_CURRENT_USER\\Software\\VanTa6\\AppFileName = "
               "\"D:\\Apps\\VanTa6\\VanTa6.exe\" -> no folder stands for drive D:"))
      << m_output;
  std::string log =
      testing_support::ReadBytes(m_profile.Append(L"AppData/Local/VanTu8/DataImporter.log"));
  EXPECT_NE(std::string::npos, log.find("no folder stands for drive D:")) << log;
  EXPECT_EQ(0, Run("--profile " + testing_support::QuoteArgument(m_profile) +
                   " --drive d=" + testing_support::QuoteArgument(drive_d)))
      << m_output;
  EXPECT_TRUE(Imported()) << m_output;
}

// The folders of Windows written as references, in a plain string or an
// expandable one; a 32-bit program named under %ProgramFiles% lives in
// "Program Files (x86)".
TEST_F(WindowsProfileTest, ProgramFilesReferencesExpandThroughTheDrive) {
  if (testing_support::RunningUnderWine())
    GTEST_SKIP() << testing_support::kWineHiveSkip;
  WriteInstallation(m_volume.Append(L"Program Files (x86)").Append(L"VanTa6"));
  for (const auto& [value, type] :
       {std::pair{L"%ProgramFiles(x86)%\\VanTa6\\VanTa6.exe", kHiveRegSz},
        std::pair{L"%ProgramFiles%\\VanTa6\\VanTa6.exe", kHiveRegExpandSz},
        std::pair{L"%SystemDrive%\\Program Files\\VanTa6\\VanTa6.exe", kHiveRegSz}}) {
    WriteHive(m_profile.Append(L"NTUSER.DAT"), value, type);
    EXPECT_EQ(0, Run("--profile " + testing_support::QuoteArgument(m_profile))) << m_output;
    EXPECT_TRUE(Imported()) << base::FilePath(value).AsUTF8Unsafe() << ": " << m_output;
    ClearDataFolder();
  }
}

// A ".reg" export made from a hive loaded under HKEY_USERS is the user's.
TEST_F(WindowsProfileTest, ExportOfAHiveLoadedUnderHkeyUsers) {
  WriteInstallation(m_volume.Append(L"Program Files").Append(L"VanTa6"));
  base::FilePath reg = m_dir.path().Append(L"customer.reg");
  testing_support::WriteBytes(
      reg,
      "Windows Registry Editor Version 5.00\r\n\r\n"
      "[HKEY_USERS\\Customer\\Software\\VanTa6]\r\n"
      "\"AppFileName\"=\"C:\\\\Program Files\\\\VanTa6\\\\VanTa6.exe\"\r\n");
  EXPECT_EQ(0, Run("--profile " + testing_support::QuoteArgument(m_profile) + " --registry " +
                   testing_support::QuoteArgument(reg)))
      << m_output;
  EXPECT_TRUE(Imported()) << m_output;
}

// A profile copied from Windows XP: "Documents and Settings/NAME" with
// "Local Settings/Application Data" and "Application Data".
TEST_F(WindowsProfileTest, WindowsXpProfile) {
  if (testing_support::RunningUnderWine())
    GTEST_SKIP() << testing_support::kWineHiveSkip;
  base::FilePath xp = m_volume.Append(L"Documents and Settings").Append(L"Ann");
  ASSERT_TRUE(base::CreateDirectory(xp.Append(L"Local Settings").Append(L"Application Data")));
  ASSERT_TRUE(base::CreateDirectory(xp.Append(L"Application Data")));
  WriteInstallation(m_volume.Append(L"Program Files").Append(L"VanTa6"));
  WriteHive(xp.Append(L"NTUSER.DAT"), L"C:\\Program Files\\VanTa6\\VanTa6.exe", kHiveRegSz);
  EXPECT_EQ(0, Run("--profile " + testing_support::QuoteArgument(xp))) << m_output;
  base::FilePath data = xp.Append(L"Local Settings/Application Data/VanTu8");
  EXPECT_TRUE(base::PathExists(data.Append(L"VTMusicV3.db"))) << m_output;
  EXPECT_TRUE(base::PathExists(data.Append(L"playlistV3.db"))) << m_output;
}

// Without NTUSER.DAT nothing names an installation: the run says so and
// where it looked.
TEST_F(WindowsProfileTest, NothingToImportSaysWhereItLooked) {
  EXPECT_EQ(0, Run("--profile " + testing_support::QuoteArgument(m_profile), false)) << m_output;
  EXPECT_TRUE(Contains("Nothing to import: no earlier installation")) << m_output;
  EXPECT_TRUE(Contains("The profile " + m_profile.AsUTF8Unsafe() + " has no NTUSER.DAT"))
      << m_output;
  EXPECT_TRUE(Contains("  registry: none given\n")) << m_output;
  EXPECT_TRUE(Contains("  generation 7: " +
                       m_profile.Append(L"AppData")
                           .Append(L"Roaming")
                           .Append(L"VanTu7")
                           .Append(L"VTData.db")
                           .AsUTF8Unsafe() +
                       " (not found)\n"))
      << m_output;
  EXPECT_TRUE(
      Contains("  generation 6: registry value HKEY_CURRENT_USER\\Software\\VanTa6\\"
               "AppFileName not set\n"))
      << m_output;
}

// Generation 7 is imported when both are present; generation 6 is named
// with the rule that passed it over.
TEST_F(WindowsProfileTest, GenerationPassedOverIsNamed) {
  if (testing_support::RunningUnderWine())
    GTEST_SKIP() << testing_support::kWineHiveSkip;
  base::FilePath program = m_volume.Append(L"Program Files").Append(L"VanTa6");
  WriteInstallation(program);
  WriteHive(m_profile.Append(L"NTUSER.DAT"), L"C:\\Program Files\\VanTa6\\VanTa6.exe", kHiveRegSz);
  V7SampleSize size;
  size.songs = 5;
  size.lists = 1;
  size.list_entries = 3;
  ASSERT_TRUE(WriteSampleV7Installation(m_profile.Append(L"AppData/Roaming"), size));
  EXPECT_EQ(0, Run("--profile " + testing_support::QuoteArgument(m_profile))) << m_output;
  EXPECT_TRUE(Contains("; generation 6 at " + program.Append(L"VanTa6.exe").AsUTF8Unsafe() +
                       " was found and not imported (generation 7 comes first: one "
                       "installation is imported per run)."))
      << m_output;
  std::string report =
      testing_support::ReadBytes(m_profile.Append(L"AppData/Local/VanTu8/ImportReport.json"));
  EXPECT_NE(std::string::npos, report.find("\"passed_over\"")) << report;
}

// Generation 7 imported, generation 6 named on a drive with no folder: the
// verdict names the one not reached, the exit status is the import's.
TEST_F(WindowsProfileTest, UnreachableBesideAnImportIsNamed) {
  if (testing_support::RunningUnderWine())
    GTEST_SKIP() << testing_support::kWineHiveSkip;
  WriteHive(m_profile.Append(L"NTUSER.DAT"), L"D:\\VanTa6\\VanTa6.exe", kHiveRegSz);
  V7SampleSize size;
  size.songs = 5;
  size.lists = 1;
  size.list_entries = 3;
  ASSERT_TRUE(WriteSampleV7Installation(m_profile.Append(L"AppData/Roaming"), size));
  EXPECT_EQ(0, Run("--profile " + testing_support::QuoteArgument(m_profile))) << m_output;
  EXPECT_TRUE(Imported()) << m_output;
  EXPECT_TRUE(
      Contains("; generation 6 at \"D:\\VanTa6\\VanTa6.exe\" (no folder stands for "
               "drive D:; give --drive D=FOLDER with the copy of drive D:) could not be "
               "reached."))
      << m_output;
}

TEST_F(WindowsProfileTest, ExpandedValueInsideTheProfile) {
  if (testing_support::RunningUnderWine())
    GTEST_SKIP() << testing_support::kWineHiveSkip;
  WriteInstallation(m_profile.Append(L"Apps").Append(L"VanTa6"));
  WriteHive(m_profile.Append(L"NTUSER.DAT"), L"%USERPROFILE%\\Apps\\VanTa6\\VanTa6.exe",
            kHiveRegExpandSz);
  EXPECT_EQ(0, Run("--profile " + testing_support::QuoteArgument(m_profile))) << m_output;
  EXPECT_TRUE(Imported()) << m_output;
}

// The player's "i" switch with a Windows path, and the library files there.
TEST_F(WindowsProfileTest, SourceFolderSwitchWithAWindowsPath) {
  base::FilePath drive_e = m_dir.path().Append(L"e");
  V6V2Library library;
  library.lists = {{3, 0, L"Old", 0, 1}};
  library.items = {{1, 3, L"E:\\Music", L"a.mp3", L"A", std::wstring(32, L'B')}};
  library.downloads = {{0, std::wstring(32, L'B'), L"E:\\Down\\a.mp3", true}};
  ASSERT_TRUE(library.Write(drive_e.Append(L"Old Player").Append(L"VTLibrary.db")));
  EXPECT_EQ(0, Run("--profile " + testing_support::QuoteArgument(m_profile) +
                   " --drive E=" + testing_support::QuoteArgument(drive_e) + " " +
                   testing_support::QuoteArgument(std::string("--i=E:\\Old Player"))))
      << m_output;
  EXPECT_TRUE(Imported()) << m_output;
}

TEST_F(WindowsProfileTest, DamagedHiveAndBadDrivesAreUsageErrors) {
  if (testing_support::RunningUnderWine())
    GTEST_SKIP() << testing_support::kWineHiveSkip;
  base::FilePath hive = m_dir.path().Append(L"NTUSER.DAT");
  std::string bytes = BuildRegistryHive({{L"Software\\VanTa6", {{L"AppFileName", L"x"}}}});
  testing_support::WriteBytes(hive, bytes.substr(0, 5000));
  EXPECT_EQ(2, Run("--profile " + testing_support::QuoteArgument(m_profile) + " --registry " +
                   testing_support::QuoteArgument(hive)));
  EXPECT_NE(std::string::npos, m_output.find("registry file " + hive.AsUTF8Unsafe() + ": "))
      << m_output;
  EXPECT_FALSE(base::PathExists(m_profile.Append(L"AppData/Local/VanTu8")));

  // Found in the profile rather than named: the same error.
  testing_support::WriteBytes(m_profile.Append(L"NTUSER.DAT"), "regf and nothing more");
  EXPECT_EQ(2, Run("--profile " + testing_support::QuoteArgument(m_profile)));

  // Random bytes or an empty file are no registry either.
  for (const std::string& bytes : {std::string(), std::string("\x01\x02junk\xff", 7)}) {
    testing_support::WriteBytes(hive, bytes);
    EXPECT_EQ(2, Run("--profile " + testing_support::QuoteArgument(m_profile) + " --registry " +
                     testing_support::QuoteArgument(hive)));
    EXPECT_TRUE(Contains("neither a registry hive nor a .reg export")) << m_output;
  }

  EXPECT_EQ(2, Run("--drive C"));
  EXPECT_EQ(2, Run("--drive 1=/tmp"));
  EXPECT_EQ(2, Run("--drive C=" + testing_support::QuoteArgument(m_dir.path().Append(L"absent"))));
  EXPECT_NE(std::string::npos, m_output.find("is not a folder")) << m_output;
}

}  // namespace
