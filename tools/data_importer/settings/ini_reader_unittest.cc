#include "tools/data_importer/settings/ini_reader.h"

#include <gtest/gtest.h>

#include <string>

#include "base/code_page.h"
#include "base/utf_string_conversions.h"
#include "logging/logging.h"
#include "testing/test_support.h"

namespace data_importer {

namespace {

const char kSettings[] =
    "; written by the player\r\n"
    "top=before any section\r\n"
    "[MainPlayList]\r\n"
    "  PlayMode = 4 \r\n"
    "AutoShift=0\r\n"
    "# another comment\r\n"
    "Name=\"quoted\" text ; kept\r\n"
    "Empty=\r\n"
    "PlayMode=5\r\n"
    "\r\n"
    "[ NetConfig ]  trailing\n"
    "MaxDownloadFile=12abc\n"
    "ProxyType=abc\n"
    "Negative=  -7\n"
    "\xE4\xB8\xAD\xE6\x96\x87=\xE6\xAD\x8C\n";

class IniReaderTest : public testing::Test {
 protected:
  base::FilePath Write(const wchar_t* name, const std::string& bytes) {
    base::FilePath path = m_temp.path().Append(name);
    testing_support::WriteBytes(path, bytes);
    return path;
  }

  testing_support::ScopedTempDir m_temp;
  // Debug lines go to the log in the data folder: keep it in the test folder.
  testing_support::ScopedEnv m_env;

  void SetUp() override { m_env.Set("LOCALAPPDATA", m_temp.path().AsUTF8Unsafe()); }
};

TEST_F(IniReaderTest, ReadsSectionsKeysAndComments) {
  IniReader reader(base::kCodePageWestern);
  reader.SetFiles({base::FilePath(), Write(L"vantu.ini", kSettings)});
  ASSERT_TRUE(reader.Parse(true));
  EXPECT_EQ(L"before any section", reader.ReadString(L"", L"top", L"-"));
  EXPECT_EQ(L"4", reader.ReadString(L"MainPlayList", L"PlayMode", L"-"));  // first wins
  EXPECT_EQ(L"\"quoted\" text ; kept", reader.ReadString(L"MainPlayList", L"Name", L"-"));
  EXPECT_TRUE(reader.KeyExists(L"MainPlayList", L"Empty"));
  EXPECT_EQ(L"", reader.ReadString(L"MainPlayList", L"Empty", L"-"));
  EXPECT_FALSE(reader.KeyExists(L"MainPlayList", L"# another comment"));
  EXPECT_FALSE(reader.KeyExists(L"MainPlayList", L"; written by the player"));
  EXPECT_EQ(L"\u6b4c", reader.ReadString(L"NetConfig", L"\u4e2d\u6587", L"-"));
  EXPECT_FALSE(reader.KeyExists(L"NetConfig", L"PlayMode"));
}

TEST_F(IniReaderTest, CaseFolding) {
  IniReader reader(base::kCodePageWestern);
  reader.SetFiles({Write(L"vantu.ini", kSettings)});
  ASSERT_TRUE(reader.Parse(true));
  EXPECT_TRUE(reader.KeyExists(L"MAINPLAYLIST", L"playmode"));
  EXPECT_EQ(4, reader.ReadInt(L"mainplaylist", L"PLAYMODE", 0));

  ASSERT_TRUE(reader.Parse(false));
  EXPECT_FALSE(reader.KeyExists(L"MAINPLAYLIST", L"PlayMode"));
  EXPECT_FALSE(reader.KeyExists(L"MainPlayList", L"playmode"));
  EXPECT_TRUE(reader.KeyExists(L"MainPlayList", L"PlayMode"));
}

TEST_F(IniReaderTest, NumbersAndDefaults) {
  IniReader reader(base::kCodePageWestern);
  reader.SetFiles({Write(L"vantu.ini", kSettings)});
  ASSERT_TRUE(reader.Parse(true));
  EXPECT_EQ(12, reader.ReadInt(L"NetConfig", L"MaxDownloadFile", 3));
  EXPECT_EQ(0, reader.ReadInt(L"NetConfig", L"ProxyType", 5));
  EXPECT_EQ(-7, reader.ReadInt(L"NetConfig", L"Negative", 5));
  EXPECT_EQ(3, reader.ReadInt(L"NetConfig", L"Missing", 3));
  EXPECT_EQ(-3, reader.ReadInt(L"NoSection", L"Missing", -3));
  EXPECT_EQ(0, reader.ReadInt(L"MainPlayList", L"Empty", 9));
  EXPECT_EQ(L"dflt", reader.ReadString(L"NetConfig", L"Missing", L"dflt"));
  EXPECT_FALSE(reader.ReadBool(L"MainPlayList", L"AutoShift", true));
  EXPECT_TRUE(reader.ReadBool(L"MainPlayList", L"PlayMode", false));
  EXPECT_TRUE(reader.ReadBool(L"MainPlayList", L"Missing", true));
  EXPECT_FALSE(reader.ReadBool(L"MainPlayList", L"Missing", false));
}

TEST_F(IniReaderTest, Encodings) {
  const std::wstring text = L"[Lyric]\r\nFont=\u5b8b\u4f53\r\nSize=12\r\n";
  std::string utf16le = "\xFF\xFE";
  std::string utf16be = "\xFE\xFF";
  for (char16_t unit : base::WideToUTF16(text)) {
    utf16le += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    utf16be += {static_cast<char>(unit >> 8), static_cast<char>(unit & 0xFF)};
  }
  const std::pair<const wchar_t*, std::string> files[] = {
      {L"le.ini", utf16le},
      {L"le-unmarked.ini", utf16le.substr(2)},
      {L"le-truncated.ini", utf16le + "\x41"},
      {L"be.ini", utf16be},
      {L"utf8.ini", base::WideToUTF8(text)},
      {L"utf8-bom.ini", "\xEF\xBB\xBF" + base::WideToUTF8(text)},
  };
  for (const auto& [name, bytes] : files) {
    SCOPED_TRACE(base::WideToUTF8(name));
    IniReader reader(base::kCodePageWestern);
    reader.SetFiles({Write(name, bytes)});
    ASSERT_TRUE(reader.Parse(true));
    EXPECT_EQ(L"\u5b8b\u4f53", reader.ReadString(L"lyric", L"font", L""));
    EXPECT_EQ(12, reader.ReadInt(L"Lyric", L"Size", 0));
  }
  // An 8-bit file that is not UTF-8 is read in code page 1252.
  IniReader ansi(base::kCodePageWestern);
  ansi.SetFiles({Write(L"ansi.ini", "[A]\r\nName=Caf\xE9 \x80\r\n")});
  ASSERT_TRUE(ansi.Parse(true));
  EXPECT_EQ(L"Caf\u00e9 \u20ac", ansi.ReadString(L"A", L"Name", L""));

  // The same bytes are other letters in another code page: the reader reads
  // the one it is given.
  const base::FilePath chinese =
      Write(L"chinese.ini", "[A]\r\nLyricPath=D:\\\xB8\xE8\xB4\xCA\r\nName=Caf\xA8\xA6\r\n");
  IniReader in_936(base::kCodePageSimplifiedChinese);
  in_936.SetFiles({chinese});
  ASSERT_TRUE(in_936.Parse(true));
  EXPECT_EQ(L"D:\\\u6b4c\u8bcd", in_936.ReadString(L"A", L"LyricPath", L""));
  EXPECT_EQ(L"Caf\u00e9", in_936.ReadString(L"A", L"Name", L""));
  IniReader in_1252(base::kCodePageWestern);
  in_1252.SetFiles({chinese});
  ASSERT_TRUE(in_1252.Parse(true));
  EXPECT_EQ(L"D:\\\u00b8\u00e8\u00b4\u00ca", in_1252.ReadString(L"A", L"LyricPath", L""));
}

TEST_F(IniReaderTest, FileListAndMissingFiles) {
  IniReader reader(base::kCodePageWestern);
  EXPECT_FALSE(reader.Parse(true));
  EXPECT_EQ(L"d", reader.ReadString(L"A", L"k", L"d"));
  reader.SetFiles({base::FilePath(), m_temp.path().Append(L"missing.ini")});
  EXPECT_FALSE(reader.Parse(true));
  EXPECT_FALSE(reader.KeyExists(L"", L""));

  // A later file overrides an earlier one key by key.
  reader.SetFiles({Write(L"defaults.ini", "[A]\nx=1\ny=2\n"), Write(L"user.ini", "[a]\nY=3\n")});
  ASSERT_TRUE(reader.Parse(true));
  EXPECT_EQ(1, reader.ReadInt(L"A", L"x", 0));
  EXPECT_EQ(3, reader.ReadInt(L"A", L"y", 0));

  // Bytes in memory replace what the files gave.
  reader.ParseData("[B]\nz=5\n", false);
  EXPECT_EQ(5, reader.ReadInt(L"B", L"z", 0));
  EXPECT_FALSE(reader.KeyExists(L"A", L"x"));
}

TEST_F(IniReaderTest, BadLinesAreReportedAndSkipped) {
  logging::ScopedLogging logging({base::FilePath(), logging::LOG_PROGRESS, true});
  IniReader reader(base::kCodePageWestern);
  reader.SetFiles({Write(L"bad.ini", "[A]\nok=1\n  [Broken\nnoequals\n=value\nlast=2\n")});
  testing::internal::CaptureStderr();
  ASSERT_TRUE(reader.Parse(true));
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_NE(std::string::npos, log.find("Failing on char 11\n")) << log;  // "[Broken"
  EXPECT_NE(std::string::npos, log.find("Failing on char 19\n")) << log;  // "noequals"
  EXPECT_NE(std::string::npos, log.find("Failing on char 28\n")) << log;  // "=value"
  EXPECT_EQ(1, reader.ReadInt(L"A", L"ok", 0));
  EXPECT_EQ(2, reader.ReadInt(L"A", L"last", 0));
  EXPECT_FALSE(reader.KeyExists(L"A", L""));
}

}  // namespace

}  // namespace data_importer
