// The registry as the importer reads it from a copied Windows profile: a
// binary hive or a ".reg" export, and the Windows paths found in it.

#include <gtest/gtest.h>

#include <string>

#include "base/file_util.h"
#include "base/reg_key.h"
#include "base/string_util.h"
#include "base/windows_path.h"
#include "testing/fixtures/registry_hive_fixture.h"
#include "testing/test_support.h"

namespace base {
namespace {

std::string Utf16Bytes(const std::u16string& text) {
  return std::string(reinterpret_cast<const char*>(text.data()), text.size() * 2);
}

class RegistryTest : public testing::Test {
 protected:
  RegistryTest() { m_file = m_dir.path().Append(L"NTUSER.DAT"); }

  // The value |name| of |key|, or "#missing#"; a REG_EXPAND_SZ value with
  // its references expanded, USERPROFILE (in any letter case) being
  // "/profiles/bob".
  std::wstring Read(const std::wstring& key, const std::wstring& name) {
    RegKey reg;
    std::wstring value;
    bool expandable = false;
    if (!reg.Open(m_file, key) || !reg.ReadValue(name, &value, &expandable))
      return L"#missing#";
    if (!expandable)
      return value;
    return ExpandEnvironmentReferences(value, [](const std::wstring& variable, std::wstring* out) {
      if (ToLowerASCII(variable) != L"userprofile")
        return false;
      *out = L"/profiles/bob";
      return true;
    });
  }

  testing_support::ScopedTempDir m_dir;
  FilePath m_file;
};

TEST_F(RegistryTest, BinaryHive) {
  std::string hive = BuildRegistryHive(
      {{L"Software\\VanTa6",
        {{L"AppFileName", L"C:\\Program Files\\VanTa6\\VanTa6.exe"},
         {L"Expanded", L"%UserProfile%\\Music;%VANTU_UNSET_FOR_TEST%;100%", kHiveRegExpandSz},
         {L"Plain", L"%USERPROFILE%", kHiveRegSz},
         {L"", L"default"},
         {L"Count", L"7", kHiveRegDword},
         {L"\u540d", L"\u4e2d\u6587\U0001F600"}}},
       {L"Software\\VanTa", {}}});
  testing_support::WriteBytes(m_file, hive);

  if (testing_support::RunningUnderWine())
    GTEST_SKIP() << testing_support::kWineHiveSkip;
#if !defined(_WIN32)
  // The fixture is a hive that other readers accept too (the Windows build
  // reads it through the system itself, which is that other reader).
  std::string output;
  ASSERT_EQ(0, testing_support::RunCommand(
                   "hivexget '" + m_file.AsUTF8Unsafe() + "' 'Software\\VanTa6' AppFileName", "",
                   &output));
  EXPECT_EQ("C:\\Program Files\\VanTa6\\VanTa6.exe\n", output);
#endif

  EXPECT_EQ(L"C:\\Program Files\\VanTa6\\VanTa6.exe", Read(L"software\\VANTA6", L"appfilename"));
  EXPECT_EQ(L"C:\\Program Files\\VanTa6\\VanTa6.exe",
            Read(L"\\Software\\VanTa6\\", L"AppFileName"));
  // Only REG_EXPAND_SZ values are expanded; unset variables stay as written.
  EXPECT_EQ(L"/profiles/bob\\Music;%VANTU_UNSET_FOR_TEST%;100%",
            Read(L"Software\\VanTa6", L"Expanded"));
  EXPECT_EQ(L"%USERPROFILE%", Read(L"Software\\VanTa6", L"Plain"));
  EXPECT_EQ(L"default", Read(L"Software\\VanTa6", L"@"));
  EXPECT_EQ(L"\u4e2d\u6587\U0001F600", Read(L"Software\\VanTa6", L"\u540d"));
  EXPECT_EQ(L"#missing#", Read(L"Software\\VanTa6", L"Count"));  // not a string
  EXPECT_EQ(L"#missing#", Read(L"Software\\VanTa6", L"Absent"));
  EXPECT_EQ(L"#missing#", Read(L"Software\\VanTa7", L"AppFileName"));
  RegKey empty_key;
  EXPECT_TRUE(empty_key.Open(m_file, L"Software\\VanTa"));
  std::string reason;
  EXPECT_TRUE(CheckRegistryFile(m_file, &reason)) << reason;

  // A truncated or overwritten hive reads as no registry and is reported.
  for (const std::string& damaged : {hive.substr(0, 4096 + 64), hive.substr(0, 3000),
                                     std::string("regf") + std::string(8000, '\x5a')}) {
    testing_support::WriteBytes(m_file, damaged);
    EXPECT_EQ(L"#missing#", Read(L"Software\\VanTa6", L"AppFileName"));
    reason.clear();
    EXPECT_FALSE(CheckRegistryFile(m_file, &reason));
    EXPECT_FALSE(reason.empty());
  }
  std::string flipped = hive;
  flipped[0x24] ^= 0x10;  // the root offset, without fixing the checksum
  testing_support::WriteBytes(m_file, flipped);
  EXPECT_EQ(L"#missing#", Read(L"Software\\VanTa6", L"AppFileName"));
  EXPECT_FALSE(CheckRegistryFile(m_dir.path().Append(L"absent.dat"), &reason));
}

// A ".reg" export as the Windows registry editor writes it: UTF-16LE with a
// byte-order mark and CRLF line ends, REG_EXPAND_SZ as "hex(2):" bytes over
// continued lines.
TEST_F(RegistryTest, RegistryEditorExport) {
  testing_support::WriteBytes(
      m_file,
      Utf16Bytes(u"\uFEFFWindows Registry Editor Version 5.00\r\n\r\n"
                 u"[HKEY_CURRENT_USER\\Software\\VanTa6]\r\n"
                 // "%USERPROFILE%\A" in UTF-16LE, split over three lines.
                 u"\"Path\"=hex(2):25,00,55,00,53,00,45,00,52,00,50,00,52,00,4f,00,46,00,\\\r\n"
                 u"  49,00,4c,00,45,00,25,00,5c,00,41,00,\\\r\n"
                 u"  00,00\r\n"
                 u"\"Sz\"=hex(1):41,00,42,00,00,00\r\n"
                 u"\"Bad\"=hex(2):4x,00\r\n"
                 u"\"Number\"=dword:00000007\r\n"
                 u"\"Quoted\"=\"ends with \\\\\"\r\n"
                 u"\"After\"=\"still read\"\r\n"));
  EXPECT_EQ(L"/profiles/bob\\A", Read(L"Software\\VanTa6", L"Path"));
  EXPECT_EQ(L"AB", Read(L"Software\\VanTa6", L"Sz"));
  EXPECT_EQ(L"#missing#", Read(L"Software\\VanTa6", L"Bad"));
  EXPECT_EQ(L"#missing#", Read(L"Software\\VanTa6", L"Number"));
  // A string ending in a backslash does not continue onto the next line.
  EXPECT_EQ(L"ends with \\", Read(L"Software\\VanTa6", L"Quoted"));
  EXPECT_EQ(L"still read", Read(L"Software\\VanTa6", L"After"));
  std::string reason;
  EXPECT_TRUE(CheckRegistryFile(m_file, &reason));
}

// An export of a user's hive loaded under HKEY_USERS is that user's
// registry; only one key name may stand between the root and the path.
TEST_F(RegistryTest, ExportOfALoadedHive) {
  testing_support::WriteBytes(m_file,
                              "REGEDIT4\n"
                              "[HKEY_USERS\\Customer\\Software\\VanTa6]\n"
                              "\"AppFileName\"=\"D:\\\\VanTa6\\\\VanTa6.exe\"\n"
                              "[HKEY_USERS\\Software\\VanTa]\n"
                              "\"AppFileName\"=\"not a user's key\"\n"
                              "[HKEY_USERS\\A\\B\\Software\\VanTa7]\n"
                              "\"AppFileName\"=\"two names deep\"\n");
  EXPECT_EQ(L"D:\\VanTa6\\VanTa6.exe", Read(L"Software\\VanTa6", L"AppFileName"));
  EXPECT_EQ(L"#missing#", Read(L"Software\\VanTa", L"AppFileName"));
  EXPECT_EQ(L"#missing#", Read(L"Software\\VanTa7", L"AppFileName"));
}

// Random bytes or an empty file are no registry: the check says so, where
// reading would only find every key missing.
TEST_F(RegistryTest, NeitherHiveNorExportIsRefused) {
  for (const std::string& bytes : {std::string(), std::string("\x13\x9a\x00garbage\xff", 11),
                                   std::string("[HKEY_CURRENT_USER\\X]\n")}) {
    testing_support::WriteBytes(m_file, bytes);
    std::string reason;
    EXPECT_FALSE(CheckRegistryFile(m_file, &reason));
    EXPECT_EQ("neither a registry hive nor a .reg export", reason);
  }
}

TEST(WindowsPathTest, DrivesMapToFolders) {
  // Expected paths are written with '/'; the build's separator replaces it.
  auto native = [](std::wstring path) {
    for (wchar_t& c : path) {
      if (c == L'/')
        c = FilePath::kSeparator;
    }
    return path;
  };
  testing_support::ScopedEnv env;
#if defined(_WIN32)
  const std::wstring copied = L"Z:/copied c";
  env.Set("VANTU_DRIVE_C", "Z:\\copied c");
#else
  const std::wstring copied = L"/mnt/copied c";
  env.Set("VANTU_DRIVE_C", "/mnt/copied c");
#endif
  env.Set("VANTU_DRIVE_D", std::nullopt);
  env.Set("VANTU_DRIVE_E", "");
  const DriveMap drives = DriveMapFromEnvironment();
  EXPECT_EQ(0u, drives.count(L'D'));
  EXPECT_EQ(0u, drives.count(L'E'));
  EXPECT_EQ(native(copied + L"/Program Files/VanTa6/VanTa6.exe"),
            MapWindowsPath(L"C:\\Program Files\\VanTa6\\VanTa6.exe", drives).value());
  EXPECT_EQ(native(copied + L"/x/y"), MapWindowsPath(L"c:/x\\y", drives).value());
  EXPECT_EQ(native(copied), MapWindowsPath(L"C:", drives).value());
  EXPECT_EQ(native(copied), MapWindowsPath(L"C:\\", drives).value());
  EXPECT_EQ(native(copied + L"/data"), MapWindowsPath(L"C:data", drives).value());
#if defined(_WIN32)
  // Drives without a folder of a copied profile are the machine's own.
  EXPECT_EQ(L"D:\\Music", MapWindowsPath(L"D:\\Music", drives).value());
  EXPECT_EQ(L"E:\\Music", MapWindowsPath(L"E:\\Music", drives).value());
  EXPECT_EQ(L"\\\\server\\share\\x", MapWindowsPath(L"\\\\server\\share\\x", drives).value());
#else
  EXPECT_TRUE(MapWindowsPath(L"D:\\Music", drives).empty());  // no folder for D
  EXPECT_TRUE(MapWindowsPath(L"E:\\Music", drives).empty());  // an empty folder is none
  EXPECT_TRUE(MapWindowsPath(L"\\\\server\\share\\x", drives).empty());
  EXPECT_EQ(L"/home/u/VanTa6/VanTa6.exe",
            MapWindowsPath(L"/home/u/VanTa6/VanTa6.exe", drives).value());
#endif
  EXPECT_EQ(native(L"Old Player/data"), MapWindowsPath(L"Old Player\\data", drives).value());
  EXPECT_EQ(L"", MapWindowsPath(L"", drives).value());
}

}  // namespace
}  // namespace base
