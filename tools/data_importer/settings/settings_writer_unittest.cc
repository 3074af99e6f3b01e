#include "tools/data_importer/settings/settings_writer.h"

#include <gtest/gtest.h>

#include <string>

#include "base/code_page.h"
#include "base/profile_string.h"
#include "base/utf_string_conversions.h"
#include "testing/test_support.h"

namespace data_importer {

namespace {

constexpr uint32_t kCodePage = base::kCodePageSimplifiedChinese;

class SettingsWriterTest : public testing::Test {
 protected:
  base::FilePath ini() const { return m_dir.path().Append(L"Vantu.ini"); }
  std::wstring Read(const std::wstring& key) const {
    return base::GetPrivateProfileStringW(importer_names::kSettingsSection, key, L"#missing#",
                                          ini().value(), kCodePage);
  }

  testing_support::ScopedTempDir m_dir;
};

ImportedSettings Sample() {
  ImportedSettings s;
  s.AutoLogin = true;
  s.Volume = -5;
  s.PlayMode = 0x80000001u;
  s.LyricsSolidBk = 0xFF563412u;
  s.DeleteOperarion = 2;
  s.LyricFontName = L"\u5b8b\u4f53";
  s.LyricPlayColors = L"-65536,-16711936";
  s.ProxyPort = L"0080";
  s.DownloadBandwidth = -1;
  s.BandsGain[9] = -12;
  s.InnerHotKeys[0] = 1603;
  s.GlobalHotKeys[11] = 0xFF43;
  s.VstPlugs[0].File = L"D:\\reverb.dll";
  s.VstPlugs[5].Enable = true;
  s.KSongRecordVolume = 100;
  return s;
}

// Each field under its own key, in the value form of its type; keys that
// depend on presence appear only when set.
TEST_F(SettingsWriterTest, WritesEveryFieldUnderItsName) {
  ASSERT_TRUE(WriteImportedSettings({Sample()}, ini(), kCodePage));
  const std::pair<const wchar_t*, const wchar_t*> expected[] = {
      {L"AutoLogin", L"1"},
      {L"Mute", L"0"},
      {L"Volume", L"-5"},
      {L"PlayMode", L"2147483649"},
      {L"LyricsSolidBk", L"4283839506"},
      {L"DeleteOperarion", L"2"},
      {L"ClassicMiniTopWnd", L"1"},
      {L"LyricFontName", L"\u5b8b\u4f53"},
      {L"LyricPlayColors", L"-65536,-16711936"},
      {L"ProxyPort", L"0080"},
      {L"ProxyAddress", L""},
      {L"DownloadPort", L"9000"},
      {L"DownloadBandwidth", L"-1"},
      {L"BandsGain0", L"0"},
      {L"BandsGain9", L"-12"},
      {L"InnerHotKeys0", L"1603"},
      {L"GlobalHotKeys11", L"65347"},
      {L"VstPlug1File", L"D:\\reverb.dll"},
      {L"VstPlug1Default", L""},
      {L"VstPlug6Enable", L"1"},
      {L"KSongRecordVolume", L"100"},
      {L"ShowLyric", L"#missing#"},
      {L"MainWindowX", L"#missing#"},
      {L"BandsGain10", L"#missing#"},
      {L"InnerHotKeys12", L"#missing#"},
      {L"VstPlug7Enable", L"#missing#"},
  };
  for (const auto& [key, value] : expected)
    EXPECT_EQ(value, Read(key)) << base::WideToUTF8(key);

  // Every key the record names is in the file, in that order.
  std::vector<std::wstring> names;
  for (const auto& entry : SettingsEntries(Sample()))
    names.push_back(entry.first);
  EXPECT_EQ(names, base::GetPrivateProfileKeys(importer_names::kSettingsSection, ini().value(),
                                               kCodePage));
  EXPECT_EQ(size_t{127}, names.size());

  ImportedSettings with_position = Sample();
  with_position.ShowLyricPresent = true;
  with_position.MainWindowPositionSet = true;
  with_position.MainWindowX = -20;
  with_position.MainWindowY = 40;
  ASSERT_TRUE(WriteImportedSettings({with_position}, ini(), kCodePage));
  EXPECT_EQ(L"0", Read(L"ShowLyric"));
  EXPECT_EQ(L"-20", Read(L"MainWindowX"));
  EXPECT_EQ(L"40", Read(L"MainWindowY"));
}

// A later record overwrites an earlier one key by key; keys only the earlier
// one wrote stay. The progress section is never touched.
TEST_F(SettingsWriterTest, LaterRecordWinsAndDBCheckStays) {
  const std::string dbcheck = "[DBCheck]\r\nImportProgress=55\r\nImportState=\r\nImportEnd=4\r\n";
  testing_support::WriteBytes(ini(), dbcheck);
  ImportedSettings first;
  first.Volume = 10;
  first.ShowLyricPresent = true;
  first.ShowLyric = true;
  ImportedSettings second;
  second.Volume = 20;
  second.ProxyType = 3;
  ASSERT_TRUE(WriteImportedSettings({first, second}, ini(), kCodePage));
  EXPECT_EQ(L"20", Read(L"Volume"));
  EXPECT_EQ(L"3", Read(L"ProxyType"));
  EXPECT_EQ(L"1", Read(L"ShowLyric"));
  const std::string bytes = testing_support::ReadBytes(ini());
  EXPECT_EQ(dbcheck, bytes.substr(0, dbcheck.size()));
  EXPECT_EQ((std::vector<std::wstring>{L"DBCheck", L"Settings"}),
            base::GetPrivateProfileSections(ini().value(), kCodePage));
}

TEST_F(SettingsWriterTest, NoRecordWritesNoSection) {
  const std::string dbcheck = "[DBCheck]\r\nImportEnd=4\r\n";
  testing_support::WriteBytes(ini(), dbcheck);
  ASSERT_TRUE(WriteImportedSettings({}, ini(), kCodePage));
  EXPECT_EQ(dbcheck, testing_support::ReadBytes(ini()));
}

TEST_F(SettingsWriterTest, Utf16FileStaysUtf16) {
  const std::wstring text = L"[DBCheck]\r\nImportEnd=4\r\n";
  testing_support::WriteBytes(ini(), "\xFF\xFE" + testing_support::UTF16Bytes(text, false));
  ImportedSettings settings;
  settings.LyricWinFontName = L"Caf\u00e9 \u5b8b\u4f53";
  ASSERT_TRUE(WriteImportedSettings({settings}, ini(), kCodePage));
  const std::string bytes = testing_support::ReadBytes(ini());
  ASSERT_EQ("\xFF\xFE", bytes.substr(0, 2));
  EXPECT_NE(std::string::npos, bytes.find(testing_support::UTF16Bytes(
                                   L"LyricWinFontName=Caf\u00e9 \u5b8b\u4f53\r\n", false)));
  EXPECT_EQ(L"Caf\u00e9 \u5b8b\u4f53", Read(L"LyricWinFontName"));
  EXPECT_EQ(L"4", base::GetPrivateProfileStringW(L"DBCheck", L"ImportEnd", L"", ini().value(),
                                                 kCodePage));
}

TEST_F(SettingsWriterTest, UnwritableFileIsReported) {
  EXPECT_FALSE(WriteImportedSettings(
      {ImportedSettings()}, m_dir.path().Append(L"missing").Append(L"Vantu.ini"), kCodePage));
}

}  // namespace

}  // namespace data_importer
