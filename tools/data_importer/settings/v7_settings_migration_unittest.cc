#include "tools/data_importer/settings/v7_settings_migration.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "base/code_page.h"
#include "base/file_util.h"
#include "base/utf_string_conversions.h"
#include "testing/test_support.h"

namespace data_importer {

namespace {

using Field = std::function<std::wstring(const ImportedSettings&)>;

std::wstring Text(int64_t value) {
  return std::to_wstring(value);
}

template <size_t N>
std::wstring Join(const std::array<uint16_t, N>& values) {
  std::wstring all;
  for (uint16_t value : values)
    all += (all.empty() ? L"" : L",") + std::to_wstring(value);
  return all;
}

const Field kPlayMode = [](const ImportedSettings& s) { return Text(s.PlayMode); };
const Field kGlobalHotKeys = [](const ImportedSettings& s) { return Join(s.GlobalHotKeys); };
const Field kPlayColors = [](const ImportedSettings& s) { return s.LyricPlayColors; };

// 12 old hot keys, the first one |first|, the others 0x00410000 ('A', no
// modifier).
std::wstring HotKeyList(const std::wstring& first, int count = 12) {
  std::wstring list = first;
  for (int i = 1; i < count; ++i)
    list += L",4259840";
  return list;
}

struct Case {
  const char* name;
  std::wstring ini;
  bool skin_folder;
  Field field;
  std::wstring expected;
};

const Case kCases[] = {
    // Play mode: the unguarded pair with its defaults 3 and true.
    {"mode 4, AutoShift absent", L"[MainPlayList]\nPlayMode=4\n", false, kPlayMode, L"2147483649"},
    {"mode 5, AutoShift 0", L"[MainPlayList]\nPlayMode=5\nAutoShift=0\n", false, kPlayMode, L"2"},
    {"mode absent, AutoShift 0", L"[MainPlayList]\nAutoShift=0\n", false, kPlayMode, L"3"},
    {"mode 6", L"[MainPlayList]\nPlayMode=6\nAutoShift=0\n", false, kPlayMode, L"3"},
    {"mode 1", L"[MainPlayList]\nPlayMode=1\nAutoShift=0\n", false, kPlayMode, L"2"},
    {"no play list section", L"", false, kPlayMode, L"2147483651"},
    {"mode not a number", L"[MainPlayList]\nPlayMode=x4\nAutoShift=0\n", false, kPlayMode, L"2"},
    // Lyric colours: the unsuffixed key is read last and wins.
    {"New key alone", L"[LyrciConfig]\nLyricPlayClrNew=255;65280\n", false, kPlayColors,
     L"-65536,-16711936"},
    {"old key wins", L"[LyrciConfig]\nLyricPlayClr=0\nLyricPlayClrNew=255;65280\n", false,
     kPlayColors, L"-16777216"},
    {"empty old key wins", L"[LyrciConfig]\nLyricPlayClrNew=255\nLyricPlayClr=\n", false,
     kPlayColors, L""},
    {"white, blue, empty pieces", L"[LyrciConfig]\nLyricPlayClr=16777215;;16711680;\n", false,
     kPlayColors, L"-1,-16776961"},
    {"only separators", L"[LyrciConfig]\nLyricPlayClr=;;\n", false, kPlayColors, L""},
    {"unplay pair", L"[LyrciConfig]\nLyricUnPlayClrNew=1\nLyricUnPlayClr=65280\n", false,
     [](const ImportedSettings& s) { return s.LyricUnPlayColors; }, L"-16711936"},
    {"window colours", L"[LyrciConfig]\nLyricWinUnPlayClrNew=255\nLyricWinPlayClrNew=0\n", false,
     [](const ImportedSettings& s) { return s.LyricWinUnPlayColors + L"|" + s.LyricWinPlayColors; },
     L"-65536|-16777216"},
    {"colour indices",
     L"[LyrciConfig]\nLyricClrNewIndex=2\nLyricClrIndex=5\nLyricWinClrNewIndex=7\n", false,
     [](const ImportedSettings& s) {
       return Text(s.LyricColorIndex) + L"," + Text(s.LyricWinColorIndex);
     },
     L"5,7"},
    // Two sources of one field: the later one overwrites the earlier.
    {"AutoPlay later source", L"[OperationConfig]\nAutoPlay=1\n[NormalConfig]\nAutoPlay=0\n", false,
     [](const ImportedSettings& s) { return Text(s.AutoPlay); }, L"0"},
    {"AutoPlay first source only", L"[OperationConfig]\nAutoPlay=1\n", false,
     [](const ImportedSettings& s) { return Text(s.AutoPlay); }, L"1"},
    {"TaskScrLy and ConPro",
     L"[OperationConfig]\nTaskScrLy=0\n[AdvConfig]\nTaskScrLy=1\nConPro=1\n", false,
     [](const ImportedSettings& s) { return Text(s.TaskScrLy) + Text(s.ConPro); }, L"11"},
    {"MiniOrExit", L"[NormalConfig]\nMiniOrExit=1\n", false,
     [](const ImportedSettings& s) { return Text(s.MiniOrExit); }, L"1"},
    // Guarded keys keep their defaults when absent, unguarded ones get the
    // reader's default; present keys count even when empty or malformed.
    {"defaults", L"[Player]\nMute=1\n", false,
     [](const ImportedSettings& s) {
       return Text(s.ClassicMiniTopWnd) + Text(s.MiniTopWnd) + L"|" + Text(s.DownloadPort) + L"|" +
              Text(s.DownloadBandwidth) + L"|" + Text(s.UploadBandwidth) + L"|" +
              Text(s.MaxDownloadFile) + L"|" + Text(s.MinSizeBandwidth) + L"|" +
              Text(s.KSongRecordVolume) + L"|" + Text(s.Mute);
     },
     L"11|9000|-1|-1|3|1|100|1"},
    {"TopWnd 0", L"[ClassicMiniPlayer]\nTopWnd=0\n[MiniPlayer]\nTopWnd=abc\n", false,
     [](const ImportedSettings& s) { return Text(s.ClassicMiniTopWnd) + Text(s.MiniTopWnd); },
     L"00"},
    {"network keys",
     L"[NetConfig]\nDownloadPort=8080x\nMaxDownloadFile=\nProxyType= 2\nProxyPort=0080\n"
     L"ProxyAddress=proxy.example\nServerTransfer=1\n",
     false,
     [](const ImportedSettings& s) {
       return Text(s.DownloadPort) + L"|" + Text(s.MaxDownloadFile) + L"|" + Text(s.ProxyType) +
              L"|" + s.ProxyPort + L"|" + s.ProxyAddress + L"|" + Text(s.ServerTransfer);
     },
     L"8080|0|2|0080|proxy.example|1"},
    {"malformed and empty numbers",
     L"[Player]\nVolume=12abc\n[KSongConfig]\nKSongConfig_RecordVolume=\n", false,
     [](const ImportedSettings& s) { return Text(s.Volume) + L"|" + Text(s.KSongRecordVolume); },
     L"12|0"},
    {"ShowLyric absent", L"[LyrciConfig]\nOneLine=1\n", false,
     [](const ImportedSettings& s) { return Text(s.ShowLyricPresent) + Text(s.ShowLyric); }, L"00"},
    {"ShowLyric 0", L"[LyrciConfig]\nShowLyric=0\n", false,
     [](const ImportedSettings& s) { return Text(s.ShowLyricPresent) + Text(s.ShowLyric); }, L"10"},
    // Names in another letter case; the old misspellings are the names.
    {"letter case", L"[lyrciconfig]\nLYRICFONTNAME=Arial\n[NETCONFIG]\ndownloadport=21\n", false,
     [](const ImportedSettings& s) { return s.LyricFontName + L"|" + Text(s.DownloadPort); },
     L"Arial|21"},
    {"corrected spellings are not read",
     L"[LyricConfig]\nLyricPath=a\n[PluginConfig]\nPluginPath=b\n[SoftUpdateConfig]\nAcceptUpdate="
     L"1\n"
     L"[OperationConfig]\nDeleteOperation=2\n",
     false,
     [](const ImportedSettings& s) {
       return s.LyricPath + L"|" + s.PluginPath + L"|" + Text(s.AcceptUpdate) +
              Text(s.DeleteOperarion);
     },
     L"||00"},
    {"old spellings",
     L"[LyrciConfig]\nLyricPath=a\n[PluginCofing]\nPluginPath=b\n"
     L"[SoftUpdataConfig]\nAcceptUpdate=1\n[OperationConfig]\nDeleteOperarion=2\n",
     false,
     [](const ImportedSettings& s) {
       return s.LyricPath + L"|" + s.PluginPath + L"|" + Text(s.AcceptUpdate) +
              Text(s.DeleteOperarion);
     },
     L"a|b|12"},
    // Groups.
    {"equalizer without its first band",
     L"[Equalizer]\nEnable=1\nBandsGain1=4\nPreampValue=3\nBalanceValue=-7\n", false,
     [](const ImportedSettings& s) {
       return Text(s.EqualizerEnable) + L"|" + Text(s.BandsGain[1]) + L"|" + Text(s.PreampValue) +
              L"|" + Text(s.BalanceValue);
     },
     L"0|0|0|-7"},
    {"equalizer group", L"[Equalizer]\nEnable=1\nBandsGain0=2\nBandsGain9=-12\nPreampValue=3\n",
     false,
     [](const ImportedSettings& s) {
       return Text(s.EqualizerEnable) + L"|" + Text(s.BandsGain[0]) + L"|" + Text(s.BandsGain[9]) +
              L"|" + Text(s.PreampValue);
     },
     L"1|2|-12|3"},
    {"solid background", L"[ClassicLyrics]\nBkMode=2\nSolidBk=1193046\nLocalImg=C:\\bk.png\n",
     false,
     [](const ImportedSettings& s) {
       return Text(s.LyricsBkMode) + L"|" + Text(s.LyricsSolidBk) + L"|" + s.LyricsLocalImg;
     },
     L"2|4283839506|C:\\bk.png"},  // 0x123456 -> 0xFF563412
    {"background without BkMode", L"[ClassicLyrics]\nSolidBk=255\nLocalImg=x\n", false,
     [](const ImportedSettings& s) { return Text(s.LyricsSolidBk) + L"|" + s.LyricsLocalImg; },
     L"0|"},
    {"default mode when the menu is off",
     L"[OperationConfig]\nIsPopupModeSelectMenu=0\nDefaultModeSelect=2\n", false,
     [](const ImportedSettings& s) { return Text(s.DefaultModeSelect); }, L"2"},
    {"default mode when the menu is on",
     L"[OperationConfig]\nIsPopupModeSelectMenu=1\nDefaultModeSelect=2\n", false,
     [](const ImportedSettings& s) { return Text(s.DefaultModeSelect); }, L"0"},
    {"default mode without the menu key", L"[OperationConfig]\nDefaultModeSelect=2\n", false,
     [](const ImportedSettings& s) { return Text(s.DefaultModeSelect); }, L"0"},
    // Hot keys: 'C' (0x43) in bits 16-23; shift and alt flags exchanged.
    {"hot key flags 3", L"[HotKeyConfig]\nGlobalHotKey=" + HotKeyList(L"4390915") + L"\n", true,
     kGlobalHotKeys, L"1603,65,65,65,65,65,65,65,65,65,65,65"},
    {"hot key flags 5, 4, 2",
     L"[HotKeyConfig]\nGlobalHotKey=4390917,4390916,4390914,x,,0,0,0,0,0,0,0\n", true,
     kGlobalHotKeys, L"1347,323,579,0,0,0,0,0,0,0,0,0"},
    {"11 hot keys", L"[HotKeyConfig]\nGlobalHotKey=" + HotKeyList(L"4390915", 11) + L"\n", true,
     kGlobalHotKeys, L"0,0,0,0,0,0,0,0,0,0,0,0"},
    {"13 hot keys", L"[HotKeyConfig]\nGlobalHotKey=" + HotKeyList(L"4390915", 13) + L"\n", true,
     kGlobalHotKeys, L"0,0,0,0,0,0,0,0,0,0,0,0"},
    {"hot keys without the skin folder",
     L"[HotKeyConfig]\nGlobalHotKey=" + HotKeyList(L"4390915") +
         L"\nIsUserGlobalHotKey=1\nIsPopInfoWindow=2\n",
     false,
     [](const ImportedSettings& s) {
       return Join(s.GlobalHotKeys) + L"|" + Text(s.IsUserGlobalHotKey) + Text(s.IsPopInfoWindow);
     },
     L"0,0,0,0,0,0,0,0,0,0,0,0|11"},
    {"inner hot keys", L"[HotKeyConfig]\nInnerHotKey=" + HotKeyList(L"4390913") + L"\n", true,
     [](const ImportedSettings& s) { return Join(s.InnerHotKeys) + L"|" + Join(s.GlobalHotKeys); },
     L"1091,65,65,65,65,65,65,65,65,65,65,65|0,0,0,0,0,0,0,0,0,0,0,0"},
    // Plug-in slots are read without an existence test.
    {"plug-ins", L"[VSTPlug3]\nDefault=Hall\nFile=D:\\reverb.dll\nEnable=1\n[VSTPlug6]\nEnable=0\n",
     false,
     [](const ImportedSettings& s) {
       return s.VstPlugs[2].Default + L"|" + s.VstPlugs[2].File + L"|" +
              Text(s.VstPlugs[2].Enable) + Text(s.VstPlugs[5].Enable) + Text(s.VstPlugs[0].Enable);
     },
     L"Hall|D:\\reverb.dll|100"},
    {"texts",
     L"[LyrciConfig]\nLyricWinFontName=\u5b8b\u4f53 "
     L"Caf\u00e9\n[KSongConfig]\nKSongConfig_VoiceIn=Mic\n"
     L"[RadioList]\nHasInitRadioData=1\n",
     false,
     [](const ImportedSettings& s) {
       return s.LyricWinFontName + L"|" + s.KSongVoiceIn + Text(s.HasInitRadioData);
     },
     L"\u5b8b\u4f53 Caf\u00e9|Mic1"},
};

class V7SettingsMigrationTest : public testing::Test {
 protected:
  base::FilePath folder() const { return m_dir.path().Append(L"Vantu7"); }

  testing_support::ScopedTempDir m_dir;
};

// Every case as an 8-bit file and as a UTF-16 file, under a file name in
// another letter case.
TEST_F(V7SettingsMigrationTest, ReadsEachKeyByItsRule) {
  ASSERT_TRUE(base::CreateDirectory(folder()));
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
    const base::FilePath skin = folder().Append(L"SkinPic2012");
    ASSERT_TRUE(c.skin_folder ? base::CreateDirectory(skin) : base::DeleteFile(skin, true));
    std::wstring text = c.ini;
    for (size_t at = text.find(L'\n'); at != std::wstring::npos; at = text.find(L'\n', at + 2))
      text.replace(at, 1, L"\r\n");
    for (bool utf16 : {false, true}) {
      testing_support::WriteBytes(
          folder().Append(L"VanTu.INI"),
          utf16 ? "\xFF\xFE" + testing_support::UTF16Bytes(text, false) : base::WideToUTF8(text));
      const std::optional<ImportedSettings> settings =
          MigrateV7Settings(folder(), base::kCodePageSimplifiedChinese);
      ASSERT_TRUE(settings.has_value());
      EXPECT_EQ(c.expected, c.field(*settings)) << (utf16 ? "UTF-16" : "8-bit");
    }
  }
}

TEST_F(V7SettingsMigrationTest, NoFileGivesNoRecord) {
  EXPECT_FALSE(MigrateV7Settings(folder(), base::kCodePageSimplifiedChinese).has_value());
  ASSERT_TRUE(base::CreateDirectory(folder().Append(L"SkinPic2012")));
  testing_support::WriteBytes(folder().Append(L"vantu.ini.bak"), "[Player]\r\nVolume=5\r\n");
  EXPECT_FALSE(MigrateV7Settings(folder(), base::kCodePageSimplifiedChinese).has_value());
  // An empty file still gives a record, with the defaults.
  testing_support::WriteBytes(folder().Append(L"vantu.ini"), "");
  const std::optional<ImportedSettings> settings =
      MigrateV7Settings(folder(), base::kCodePageSimplifiedChinese);
  ASSERT_TRUE(settings.has_value());
  EXPECT_EQ(0x80000003u, settings->PlayMode);
  EXPECT_EQ(9000, settings->DownloadPort);
}

// Colour items convert as the old runtime's 32-bit wcstoul did: values past
// the range saturate, a minus sign negates modulo 2^32, text reads as 0.
TEST(ColorListTest, ItemsConvertAsA32BitRuntime) {
  EXPECT_EQ(L"-1", ConvertColorList(L"4294967551"));
  EXPECT_EQ(L"-16646145", ConvertColorList(L"-255"));  // 0xFFFFFF01 -> 0xFF01FFFF
  EXPECT_EQ(L"-16777216,-16777216", ConvertColorList(L"abc; 0"));
}

TEST(MainWindowPositionTest, TakenOnlyWhenFoundAndSet) {
  ImportedSettings settings;
  SetMainWindowPosition(false, 10, 20, &settings);
  SetMainWindowPosition(true, -1, 20, &settings);
  SetMainWindowPosition(true, 10, -1, &settings);
  EXPECT_FALSE(settings.MainWindowPositionSet);
  SetMainWindowPosition(true, -5, 0, &settings);
  EXPECT_TRUE(settings.MainWindowPositionSet);
  EXPECT_EQ(-5, settings.MainWindowX);
  EXPECT_EQ(0, settings.MainWindowY);
}

}  // namespace

}  // namespace data_importer
