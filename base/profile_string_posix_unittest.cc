#include "base/profile_string.h"

#include <gtest/gtest.h>

#include "base/code_page.h"
#include "base/file_util.h"
#include "base/utf_string_conversions.h"
#include "testing/test_support.h"

namespace base {
namespace {

// How this reproduction of the profile functions edits files; the Windows
// build makes the system calls themselves.

// Windows edits the file in place: untouched lines keep their bytes and
// line ends, a new key lands after the last line of its section, and a
// UTF-16 file stays UTF-16.
TEST(ProfileStringTest, EditsInPlace) {
  testing_support::ScopedTempDir temp;
  FilePath ini = temp.path().Append(L"Vantu.ini");
  ASSERT_TRUE(WriteFile(ini, "; kept\n[Other]\nA = 1\n\n[DBCheck]\nImportProgress=5\n"));
  EXPECT_TRUE(WritePrivateProfileStringW(L"dbcheck", L"importprogress", L"10", ini.value().c_str(),
                                         kCodePageWestern));
  EXPECT_TRUE(WritePrivateProfileStringW(L"DBCheck", L"ImportEnd", L"", ini.value().c_str(),
                                         kCodePageWestern));
  EXPECT_TRUE(
      WritePrivateProfileStringW(L"New", L"K", L"v", ini.value().c_str(), kCodePageWestern));
  std::string bytes;
  EXPECT_TRUE(ReadFileToString(ini, &bytes));
  EXPECT_EQ(
      "; kept\n[Other]\nA = 1\n\n[DBCheck]\nImportProgress=10\r\nImportEnd=\r\n[New]\r\nK=v\r\n",
      bytes);

  FilePath wide = temp.path().Append(L"wide.ini");
  std::u16string content = u"\uFEFF[DBCheck]\r\nImportState=\u00e9\r\n";
  EXPECT_TRUE(WriteFile(
      wide, std::string(reinterpret_cast<const char*>(content.data()), content.size() * 2)));
  EXPECT_TRUE(WritePrivateProfileStringW(L"DBCheck", L"ImportEnd", L"1", wide.value().c_str(),
                                         kCodePageWestern));
  EXPECT_TRUE(ReadFileToString(wide, &bytes));
  std::u16string expected = content + u"ImportEnd=1\r\n";
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(expected.data()), expected.size() * 2),
            bytes);
  EXPECT_EQ(L"\u00e9", GetPrivateProfileStringW(L"DBCheck", L"ImportState", L"", wide.value(),
                                                kCodePageWestern));
}

// Two cases beyond the recorded behaviour. A UTF-16LE file without a
// byte-order mark, as the system's text detection takes it, is read and
// extended as UTF-16LE and written back without a mark (read as 8-bit text
// it would gain 8-bit lines in the middle of UTF-16). A deletion trims its
// names as reads and writes do.
TEST(ProfileStringTest, UnmarkedUtf16AndTrimmedDeletes) {
  testing_support::ScopedTempDir temp;
  FilePath ini = temp.path().Append(L"Vantu.ini");
  std::u16string content = u"[Settings]\r\nSkin=\u7a3b\u9999\r\nVolume=5\r\n";
  auto bytes_of = [](const std::u16string& text) {
    return std::string(reinterpret_cast<const char*>(text.data()), text.size() * 2);
  };
  ASSERT_TRUE(WriteFile(ini, bytes_of(content)));
  EXPECT_EQ(L"\u7a3b\u9999",
            GetPrivateProfileStringW(L"Settings", L"Skin", L"", ini.value(), kCodePageWestern));
  EXPECT_TRUE(WritePrivateProfileStringW(L"Settings", L"Lyric", L"\u00e9", ini.value().c_str(),
                                         kCodePageWestern));
  EXPECT_TRUE(WritePrivateProfileStringW(L" Settings ", L"\tVolume ", nullptr, ini.value().c_str(),
                                         kCodePageWestern));
  std::string bytes;
  EXPECT_TRUE(ReadFileToString(ini, &bytes));
  EXPECT_EQ(bytes_of(u"[Settings]\r\nSkin=\u7a3b\u9999\r\nLyric=\u00e9\r\n"), bytes);

  // A section deleted by a blank-padded name.
  EXPECT_TRUE(WritePrivateProfileStringW(L"  settings", nullptr, nullptr, ini.value().c_str(),
                                         kCodePageWestern));
  EXPECT_TRUE(ReadFileToString(ini, &bytes));
  EXPECT_EQ("", bytes);

  // 8-bit text stays 8-bit: ASCII is not mistaken for UTF-16.
  ASSERT_TRUE(WriteFile(ini, "[A]\r\nkey=value\r\n"));
  EXPECT_TRUE(WritePrivateProfileStringW(L"A", L"b", L"c", ini.value().c_str(), kCodePageWestern));
  EXPECT_TRUE(ReadFileToString(ini, &bytes));
  EXPECT_EQ("[A]\r\nkey=value\r\nb=c\r\n", bytes);
}

// An existing 8-bit file that is not UTF-8 was written in the user's code
// page: it is read and extended in the code page the caller names, its
// other lines untouched, whether the code page has one byte per character
// or two.
TEST(ProfileStringTest, EightBitFilesInTheCallersCodePage) {
  testing_support::ScopedTempDir temp;
  FilePath ini = temp.path().Append(L"test.ini");
  const std::string own = "[A]\r\nSkin=\xC4\xAC\xC8\xCF\r\n";  // 默认 in code page 936
  ASSERT_TRUE(WriteFile(ini, own));
  EXPECT_EQ(L"\u9ed8\u8ba4",
            GetPrivateProfileStringW(L"A", L"Skin", L"", ini.value(), kCodePageSimplifiedChinese));
  EXPECT_TRUE(WritePrivateProfileStringW(L"A", L"Path", L"D:\\\u6b4c\u8bcd \u0628",
                                         ini.value().c_str(), kCodePageSimplifiedChinese));
  EXPECT_EQ(own + "Path=D:\\\xB8\xE8\xB4\xCA ?\r\n", testing_support::ReadBytes(ini));
  EXPECT_EQ(L"D:\\\u6b4c\u8bcd ?",
            GetPrivateProfileStringW(L"A", L"Path", L"", ini.value(), kCodePageSimplifiedChinese));
  EXPECT_EQ((std::vector<std::wstring>{L"Skin", L"Path"}),
            GetPrivateProfileKeys(L"A", ini.value(), kCodePageSimplifiedChinese));

  // The Western code page reads the same file as other letters.
  EXPECT_EQ(L"\u00c4\u00ac\u00c8\u00cf",
            GetPrivateProfileStringW(L"A", L"Skin", L"", ini.value(), kCodePageWestern));
}

}  // namespace
}  // namespace base
