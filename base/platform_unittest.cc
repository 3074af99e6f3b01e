// Tests of the platform pieces that carry logic of their own: the command
// line, the registry file, case-insensitive paths and the file enumerator.

#include <gtest/gtest.h>

#include <algorithm>

#include "base/command_line.h"
#include "base/file_util.h"
#include "base/reg_key.h"
#include "base/utf_string_conversions.h"
#include "base/windows_path.h"
#include "testing/test_support.h"

namespace base {
namespace {

TEST(CommandLineTest, SwitchesAndQuoting) {
  CommandLine line = CommandLine::FromString(
      LR"("C:\Program Files\Player\player.exe" --i="D:\Old Player\data" -x --mode=a=b )"
      LR"(plain --i2=\"q\" --x=later)");
  EXPECT_EQ(L"D:\\Old Player\\data", line.GetSwitchValue("i"));
  EXPECT_EQ(L"a=b", line.GetSwitchValue("mode"));
  EXPECT_EQ(L"\"q\"", line.GetSwitchValue("i2"));
  EXPECT_EQ(L"later", line.GetSwitchValue("x"));  // a later switch wins
  EXPECT_FALSE(line.HasSwitch("I"));              // names are case-sensitive
  EXPECT_FALSE(line.HasSwitch("plain"));
  EXPECT_EQ(4u, line.GetSwitches().size());

  // Quoting and splitting are inverse, blanks and quotes included.
  for (const std::wstring arg : {L"--i=/tmp/with space/x", L"--i=say \"hi\"", L"--i=",
                                 L"--i=trailing\\", L"--i=\u4e2d\u6587 \u00e9"}) {
    CommandLine parsed =
        CommandLine::FromString(L"prog " + QuoteCommandLineArgument(arg) + L" --z");
    EXPECT_EQ(arg.substr(4), parsed.GetSwitchValue("i")) << WideToUTF8(arg);
    EXPECT_TRUE(parsed.HasSwitch("z"));
  }
}

TEST(RegKeyTest, ReadsTheRegistryFile) {
  testing_support::ScopedTempDir dir;
  FilePath file = dir.path().Append(L"user.reg");
  RegKey missing_file;
  EXPECT_FALSE(missing_file.Open(file, L"Software\\VanTa6"));

  EXPECT_TRUE(
      WriteFile(file,
                "Windows Registry Editor Version 5.00\r\n\r\n"
                "; a comment\r\n"
                "[HKEY_CURRENT_USER\\Software\\VanTa6]\r\n"
                "\"AppFileName\"=\"C:\\\\Program Files\\\\VanTa6\\\\\\\"quoted\\\".exe\"\r\n"
                "@=\"default\"\r\n"
                "\"Title\"=\"\xE4\xB8\xAD\xE6\x96\x87\"\r\n"
                "[HKEY_CURRENT_USER\\Software\\Other]\r\n"
                "\"AppFileName\"=\"other\"\r\n"));
  RegKey key;
  ASSERT_TRUE(key.Open(file, L"software\\vanta6"));
  std::wstring value;
  EXPECT_TRUE(key.ReadValue(L"appfilename", &value));
  EXPECT_EQ(L"C:\\Program Files\\VanTa6\\\"quoted\".exe", value);
  EXPECT_TRUE(key.ReadValue(L"", &value));
  EXPECT_EQ(L"default", value);
  EXPECT_TRUE(key.ReadValue(L"Title", &value));
  EXPECT_EQ(L"\u4e2d\u6587", value);
  EXPECT_FALSE(key.ReadValue(L"Missing", &value));
  EXPECT_EQ(L"", value);
  RegKey absent;
  EXPECT_FALSE(absent.Open(file, L"Software\\VanTa7"));
  EXPECT_FALSE(absent.ReadValue(L"AppFileName", &value));

  // UTF-16LE with a byte-order mark.
  std::u16string wide =
      u"\uFEFFREGEDIT4\r\n[HKEY_CURRENT_USER\\Software\\VanTa6]\r\n\"A\"=\"\u00e9\"\r\n";
  EXPECT_TRUE(
      WriteFile(file, std::string(reinterpret_cast<const char*>(wide.data()), wide.size() * 2)));
  RegKey utf16;
  ASSERT_TRUE(utf16.Open(file, L"Software\\VanTa6"));
  EXPECT_TRUE(utf16.ReadValue(L"a", &value));
  EXPECT_EQ(L"\u00e9", value);
}

// Existing files are found whatever the letter case of each component; new
// files take the spelling given.
TEST(FileUtilTest, CaseInsensitiveLookup) {
  testing_support::ScopedTempDir dir;
  ASSERT_TRUE(CreateDirectory(dir.path().Append(L"VanTu7").Append(L"Data")));
  FilePath ini = dir.path().Append(L"VanTu7").Append(L"Data").Append(L"Vantu.ini");
  ASSERT_TRUE(WriteFile(ini, "x"));

  FilePath other_case = dir.path().Append(L"vantu7").Append(L"DATA").Append(L"vantu.INI");
  EXPECT_TRUE(PathExists(other_case));
  EXPECT_TRUE(DirectoryExists(dir.path().Append(L"VANTU7")));
  EXPECT_EQ(ini.value(), ResolvePathCase(other_case).value());
  std::string text;
  EXPECT_TRUE(ReadFileToString(other_case, &text));
  FileInfo info;
  EXPECT_TRUE(GetFileInfo(other_case, &info));
  EXPECT_EQ(1, info.size);

  EXPECT_TRUE(CopyFile(other_case, dir.path().Append(L"vantu7").Append(L"Copy.ini")));
  EXPECT_TRUE(PathExists(dir.path().Append(L"VanTu7").Append(L"Copy.ini")));
  EXPECT_TRUE(ReplaceFile(dir.path().Append(L"VANTU7").Append(L"copy.ini"), other_case));
  EXPECT_FALSE(PathExists(dir.path().Append(L"VanTu7").Append(L"Copy.ini")));
  EXPECT_TRUE(PathExists(ini));
  EXPECT_FALSE(SetFileAttributesNormal(dir.path().Append(L"missing.txt")));
  EXPECT_FALSE(PathExists(dir.path().Append(L"missing.txt")));

  // A file in a new folder spelled differently from an existing one lands
  // in the existing folder; a missing component keeps its spelling.
  ASSERT_TRUE(WriteFile(dir.path().Append(L"vantu7").Append(L"New.txt"), "y"));
  EXPECT_TRUE(PathExists(dir.path().Append(L"VanTu7").Append(L"New.txt")));
  EXPECT_EQ(dir.path().Append(L"VanTu7").Append(L"Nope").Append(L"A.txt").value(),
            ResolvePathCase(dir.path().Append(L"vantu7").Append(L"Nope").Append(L"A.txt")).value());
}

TEST(FileUtilTest, EnumeratorPatterns) {
  EXPECT_TRUE(FileEnumerator::MatchPattern(L"VTLibrary12.db", L"VTLibrary*.db"));
  EXPECT_TRUE(FileEnumerator::MatchPattern(L"vtlibrary.DB", L"VTLibrary*.db"));
  EXPECT_FALSE(FileEnumerator::MatchPattern(L"VTLibrary.db.bak", L"VTLibrary*.db"));
  EXPECT_TRUE(FileEnumerator::MatchPattern(L"a.krc", L"*.krc"));
  EXPECT_TRUE(FileEnumerator::MatchPattern(L"ab", L"a?"));
  EXPECT_FALSE(FileEnumerator::MatchPattern(L"a", L"a?"));

  testing_support::ScopedTempDir dir;
  for (const wchar_t* name :
       {L"VTLibrary.db", L"VTLibrary2.db", L"vtlibrary3.DB", L"VTData.db", L"song.krc"})
    EXPECT_TRUE(WriteFile(dir.path().Append(name), ""));
  EXPECT_TRUE(CreateDirectory(dir.path().Append(L"VTLibraryFolder.db")));  // folders are not listed
  std::vector<std::wstring> names;
  FileEnumerator files(dir.path(), L"VTLibrary*.db");
  for (FilePath file = files.Next(); !file.empty(); file = files.Next())
    names.push_back(file.BaseName().value());
  std::sort(names.begin(), names.end());
  EXPECT_EQ((std::vector<std::wstring>{L"VTLibrary.db", L"VTLibrary2.db", L"vtlibrary3.DB"}),
            names);
  EXPECT_TRUE(FileEnumerator(dir.path().Append(L"missing"), L"*").Next().empty());
}

// Recorded paths compare as Windows compares them: in any letter case of
// any script, either separator, without trailing separators; nothing else
// is folded.
TEST(WindowsPathTest, PathKeys) {
  EXPECT_EQ(WindowsPathKey(L"D:\\Music"), WindowsPathKey(L"d:/music\\\\"));
  EXPECT_EQ(WindowsPathKey(L"D:\\\u00c9T\u00c9"), WindowsPathKey(L"d:\\\u00e9t\u00e9\\"));
  EXPECT_NE(WindowsPathKey(L"D:\\Music"), WindowsPathKey(L"D:\\Music 2"));
  EXPECT_NE(WindowsPathKey(L"D:\\Musi\u00e9"), WindowsPathKey(L"D:\\Musie"));
  EXPECT_EQ(L"", WindowsPathKey(L"\\"));
}

}  // namespace
}  // namespace base
