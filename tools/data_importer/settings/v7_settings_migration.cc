#include "tools/data_importer/settings/v7_settings_migration.h"

#include <cerrno>
#include <cwchar>
#include <cwctype>
#include <vector>

#include "base/file_util.h"
#include "base/string_number_conversions.h"
#include "tools/data_importer/settings/ini_reader.h"

namespace data_importer {

namespace {

constexpr wchar_t kLyrics[] = L"LyrciConfig";
constexpr wchar_t kNet[] = L"NetConfig";
constexpr wchar_t kOperation[] = L"OperationConfig";
constexpr wchar_t kNormal[] = L"NormalConfig";
constexpr wchar_t kHotKeys[] = L"HotKeyConfig";
constexpr wchar_t kKSong[] = L"KSongConfig";

std::vector<std::wstring_view> Split(std::wstring_view text, wchar_t separator) {
  std::vector<std::wstring_view> pieces;
  for (;;) {
    const size_t end = text.find(separator);
    pieces.push_back(text.substr(0, end));
    if (end == std::wstring_view::npos)
      return pieces;
    text.remove_prefix(end + 1);
  }
}

// wcstoul in base 10 with a 32-bit unsigned long, as the old generation had:
// a leading minus negates modulo 2^32, values out of range give 0xFFFFFFFF,
// text without digits gives 0.
uint32_t WcsToUL32(std::wstring_view piece) {
  const std::wstring text(piece);
  errno = 0;
  wchar_t* end = nullptr;
  const unsigned long long value = std::wcstoull(text.c_str(), &end, 10);
  size_t first = 0;
  while (first < text.size() && std::iswspace(text[first]))
    ++first;
  const bool negative = first < text.size() && text[first] == L'-';
  const unsigned long long magnitude = negative ? 0ULL - value : value;
  if (errno == ERANGE || magnitude > 0xFFFFFFFFULL)
    return 0xFFFFFFFFu;
  return static_cast<uint32_t>(value);
}

// Reads of the keys that are taken only when present: an absent key leaves
// the field as it is.
class GuardedReads {
 public:
  explicit GuardedReads(const IniReader& ini) : m_ini(ini) {}

  bool Has(const wchar_t* section, const wchar_t* key) const {
    return m_ini.KeyExists(section, key);
  }
  void Bool(const wchar_t* section, const wchar_t* key, bool* field) const {
    if (Has(section, key))
      *field = m_ini.ReadBool(section, key, *field);
  }
  void Int(const wchar_t* section, const wchar_t* key, int32_t* field) const {
    if (Has(section, key))
      *field = m_ini.ReadInt(section, key, *field);
  }
  void String(const wchar_t* section, const wchar_t* key, std::wstring* field) const {
    if (Has(section, key))
      *field = m_ini.ReadString(section, key, *field);
  }
  void Colors(const wchar_t* section, const wchar_t* key, std::wstring* field) const {
    if (Has(section, key))
      *field = ConvertColorList(m_ini.ReadString(section, key, L""));
  }
  // A list of exactly kHotKeyCount old hot keys separated by ","; any other
  // length leaves |slots| as they are.
  void HotKeys(const wchar_t* key,
               std::array<uint16_t, ImportedSettings::kHotKeyCount>* slots) const {
    if (!Has(kHotKeys, key))
      return;
    const std::wstring text = m_ini.ReadString(kHotKeys, key, L"");
    const std::vector<std::wstring_view> items = Split(text, L',');
    if (items.size() != slots->size())
      return;
    for (size_t i = 0; i < items.size(); ++i) {
      int value = 0;
      if (!base::StringToInt(items[i], &value))
        value = 0;
      (*slots)[i] = ConvertHotKey(value);
    }
  }

 private:
  const IniReader& m_ini;
};

void ReadGeneral(const IniReader& ini, const GuardedReads& read, ImportedSettings* s) {
  read.Bool(kNormal, L"AutoLogin", &s->AutoLogin);
  read.String(L"MVCache", L"MVCacheFolder", &s->MVCacheFolder);
  read.String(L"PluginCofing", L"PluginPath", &s->PluginPath);
  read.Bool(kOperation, L"PlayHello", &s->PlayHello);
  read.Bool(kOperation, L"AutoPlay", &s->AutoPlay);
  read.Bool(kNormal, L"AutoPlay", &s->AutoPlay);
  read.Int(L"Player", L"Volume", &s->Volume);
  read.Bool(L"Player", L"Mute", &s->Mute);
  read.Bool(L"Player", L"EnableLyric", &s->EnableLyric);
  read.Bool(L"GlobalConfig", L"GlobalTopMost", &s->GlobalTopMost);
  read.Bool(L"SoftUpdataConfig", L"AcceptUpdate", &s->AcceptUpdate);
  s->PlayMode = ConvertPlayMode(ini.ReadInt(L"MainPlayList", L"PlayMode", 3),
                                ini.ReadBool(L"MainPlayList", L"AutoShift", true));
  read.Int(L"MainPlayList", L"TabState", &s->TabState);
  s->ClassicMiniTopWnd = ini.ReadBool(L"ClassicMiniPlayer", L"TopWnd", true);
  s->MiniTopWnd = ini.ReadBool(L"MiniPlayer", L"TopWnd", true);
  if (read.Has(L"ClassicLyrics", L"BkMode")) {
    read.Int(L"ClassicLyrics", L"BkMode", &s->LyricsBkMode);
    read.String(L"ClassicLyrics", L"LocalImg", &s->LyricsLocalImg);
    if (read.Has(L"ClassicLyrics", L"SolidBk"))
      s->LyricsSolidBk =
          ColorRefToArgb(static_cast<uint32_t>(ini.ReadInt(L"ClassicLyrics", L"SolidBk", 0)));
  }
  read.Bool(kOperation, L"HideMusicLibrary", &s->HideMusicLibrary);
  read.Bool(kNormal, L"FeedbackNotify", &s->FeedbackNotify);
  read.Bool(kOperation, L"TaskScrLy", &s->TaskScrLy);
  read.Bool(L"AdvConfig", L"TaskScrLy", &s->TaskScrLy);
  read.Bool(kNormal, L"ConPro", &s->ConPro);
  read.Bool(L"AdvConfig", L"ConPro", &s->ConPro);
  read.Bool(kOperation, L"IsDownload", &s->IsDownload);
  read.Bool(kOperation, L"MiniOrExit", &s->MiniOrExit);
  read.Bool(kNormal, L"MiniOrExit", &s->MiniOrExit);
  if (read.Has(kOperation, L"IsPopupModeSelectMenu")) {
    s->IsPopupModeSelectMenu = ini.ReadBool(kOperation, L"IsPopupModeSelectMenu", false);
    if (!s->IsPopupModeSelectMenu)
      read.Int(kOperation, L"DefaultModeSelect", &s->DefaultModeSelect);
  }
  read.Int(kOperation, L"DeleteOperarion", &s->DeleteOperarion);
}

// The lyric keys. Where two keys fill one field the unsuffixed older key is
// read last and wins over the "...New" key whenever it exists: the player
// relies on that order, so it stays even though "...New" is the later form.
void ReadLyrics(const GuardedReads& read, ImportedSettings* s) {
  read.String(kLyrics, L"LyricPath", &s->LyricPath);
  read.Int(kLyrics, L"LockLyrics", &s->LockLyrics);
  read.Bool(kLyrics, L"TopMost", &s->LyricTopMost);
  read.Bool(kLyrics, L"OneLine", &s->OneLine);
  read.String(kLyrics, L"LyricFontName", &s->LyricFontName);
  read.Int(kLyrics, L"LyricFontHeight", &s->LyricFontHeight);
  read.Int(kLyrics, L"LyricTrans", &s->LyricTrans);
  read.String(kLyrics, L"LyricWinFontName", &s->LyricWinFontName);
  read.Int(kLyrics, L"LyricWinFontHeight", &s->LyricWinFontHeight);
  read.Int(kLyrics, L"LyricFontType", &s->LyricFontType);
  read.Int(kLyrics, L"LyricWinFontType", &s->LyricWinFontType);
  read.Colors(kLyrics, L"LyricUnPlayClrNew", &s->LyricUnPlayColors);
  read.Colors(kLyrics, L"LyricUnPlayClr", &s->LyricUnPlayColors);
  read.Colors(kLyrics, L"LyricPlayClrNew", &s->LyricPlayColors);
  read.Colors(kLyrics, L"LyricPlayClr", &s->LyricPlayColors);
  read.Int(kLyrics, L"LyricClrNewIndex", &s->LyricColorIndex);
  read.Int(kLyrics, L"LyricClrIndex", &s->LyricColorIndex);
  read.Colors(kLyrics, L"LyricWinUnPlayClrNew", &s->LyricWinUnPlayColors);
  read.Colors(kLyrics, L"LyricWinUnPlayClr", &s->LyricWinUnPlayColors);
  read.Colors(kLyrics, L"LyricWinPlayClrNew", &s->LyricWinPlayColors);
  read.Colors(kLyrics, L"LyricWinPlayClr", &s->LyricWinPlayColors);
  read.Int(kLyrics, L"LyricWinClrNewIndex", &s->LyricWinColorIndex);
  read.Int(kLyrics, L"LyricWinClrIndex", &s->LyricWinColorIndex);
  read.Int(kLyrics, L"KrcWindowShowMode", &s->KrcWindowShowMode);
  s->ShowLyricPresent = read.Has(kLyrics, L"ShowLyric");
  read.Bool(kLyrics, L"ShowLyric", &s->ShowLyric);
}

// Every network key is read with the reader's default when absent.
void ReadNetwork(const IniReader& ini, ImportedSettings* s) {
  s->DownloadPort = ini.ReadInt(kNet, L"DownloadPort", 9000);
  s->DownloadBandwidth = ini.ReadInt(kNet, L"DownloadBandwidth", -1);
  s->UploadBandwidth = ini.ReadInt(kNet, L"UploadBandwidth", -1);
  s->MaxDownloadFile = ini.ReadInt(kNet, L"MaxDownloadFile", 3);
  s->MinSizeBandwidth = ini.ReadInt(kNet, L"MinSizeBandwidth", 1);
  s->ProxyType = ini.ReadInt(kNet, L"ProxyType", 0);
  s->ProxyAddress = ini.ReadString(kNet, L"ProxyAddress", L"");
  s->ProxyName = ini.ReadString(kNet, L"ProxyName", L"");
  s->ProxyDomain = ini.ReadString(kNet, L"ProxyDomain", L"");
  s->ProxyPort = ini.ReadString(kNet, L"ProxyPort", L"");
  s->ProxyPassword = ini.ReadString(kNet, L"ProxyPassword", L"");
  s->PostToSrvType = ini.ReadInt(kNet, L"PostToSrvType", 0);
  s->P2PSpeedMode = ini.ReadInt(kNet, L"P2PSpeedMode", 0);
  s->ServerTransfer = ini.ReadBool(kNet, L"ServerTransfer", false);
}

void ReadAudio(const IniReader& ini, const GuardedReads& read, bool hot_keys, ImportedSettings* s) {
  read.Int(L"MusicConfig", L"MusicOutputType", &s->MusicOutputType);
  read.String(L"MusicConfig", L"MusicVideoType", &s->MusicVideoType);
  read.Bool(L"MusicConfig", L"MusicUserFade", &s->MusicUserFade);
  read.Int(L"MusicConfig", L"MusicFadeIn", &s->MusicFadeIn);
  read.Int(L"MusicConfig", L"MusicFadeOut", &s->MusicFadeOut);
  // The equalizer's switch, bands and preamp count only as a group, present
  // when its first band is.
  if (read.Has(L"Equalizer", L"BandsGain0")) {
    read.Bool(L"Equalizer", L"Enable", &s->EqualizerEnable);
    for (int band = 0; band < ImportedSettings::kBandCount; ++band)
      read.Int(L"Equalizer", (L"BandsGain" + std::to_wstring(band)).c_str(), &s->BandsGain[band]);
    read.Int(L"Equalizer", L"PreampValue", &s->PreampValue);
  }
  read.Int(L"Equalizer", L"BalanceValue", &s->BalanceValue);
  read.Bool(kHotKeys, L"IsUserGlobalHotKey", &s->IsUserGlobalHotKey);
  if (hot_keys) {
    read.HotKeys(L"InnerHotKey", &s->InnerHotKeys);
    read.HotKeys(L"GlobalHotKey", &s->GlobalHotKeys);
  }
  read.Bool(kHotKeys, L"IsPopInfoWindow", &s->IsPopInfoWindow);
  for (int plug = 0; plug < ImportedSettings::kVstPlugCount; ++plug) {
    const std::wstring section = L"VSTPlug" + std::to_wstring(plug + 1);
    ImportedSettings::VstPlug& entry = s->VstPlugs[plug];
    entry.Default = ini.ReadString(section, L"Default", L"");
    entry.File = ini.ReadString(section, L"File", L"");
    entry.Enable = ini.ReadBool(section, L"Enable", false);
  }
  read.String(kKSong, L"KSongConfig_SavePath", &s->KSongSavePath);
  read.Int(kKSong, L"KSongConfig_RecordVolume", &s->KSongRecordVolume);
  read.String(kKSong, L"KSongConfig_VoiceIn", &s->KSongVoiceIn);
  read.String(kKSong, L"KSongConfig_VoiceOut", &s->KSongVoiceOut);
  read.Bool(kKSong, L"KSongConfig_RemoveNoise", &s->KSongRemoveNoise);
  read.Int(kKSong, L"KSongConfig_PlayMode", &s->KSongPlayMode);
  read.Bool(L"RadioList", L"HasInitRadioData", &s->HasInitRadioData);
}

}  // namespace

uint32_t ConvertPlayMode(int old_mode, bool auto_shift) {
  uint32_t mode = 2;
  if (old_mode == 3 || old_mode == 6)
    mode = 3;
  else if (old_mode == 4)
    mode = 1;
  return auto_shift ? mode | 0x80000000u : mode;
}

uint32_t ColorRefToArgb(uint32_t color_ref) {
  const uint32_t red = color_ref & 0xFF;
  const uint32_t green = (color_ref >> 8) & 0xFF;
  const uint32_t blue = (color_ref >> 16) & 0xFF;
  return 0xFF000000u | (red << 16) | (green << 8) | blue;
}

std::wstring ConvertColorList(std::wstring_view old_list) {
  std::wstring result;
  for (std::wstring_view piece : Split(old_list, L';')) {
    if (piece.empty())
      continue;
    if (!result.empty())
      result += L',';
    result += std::to_wstring(static_cast<int32_t>(ColorRefToArgb(WcsToUL32(piece))));
  }
  return result;
}

uint16_t ConvertHotKey(int old_value) {
  const uint32_t value = static_cast<uint32_t>(old_value);
  const uint32_t virtual_key = (value >> 16) & 0xFF;
  uint32_t flags = value & 0xFF;
  const bool bit0 = flags & 1;
  const bool bit2 = flags & 4;
  if (bit0 != bit2)
    flags ^= 5;  // exactly one of the two is set: move it to the other place
  return static_cast<uint16_t>((flags << 8) | virtual_key);
}

std::optional<ImportedSettings> MigrateV7Settings(const base::FilePath& v7_folder,
                                                  uint32_t ansi_code_page) {
  const base::FilePath file = v7_folder.Append(L"vantu.ini");
  if (!base::PathExists(file))
    return std::nullopt;
  const bool hot_keys = base::DirectoryExists(v7_folder.Append(L"SkinPic2012"));

  IniReader ini(ansi_code_page);
  // The first, empty path stands for a file of defaults, which generation 7
  // did not have.
  ini.SetFiles({base::FilePath(), file});
  // A file that cannot be read gives the defaults, like an empty one.
  static_cast<void>(ini.Parse(true));
  const GuardedReads read(ini);
  ImportedSettings settings;
  ReadGeneral(ini, read, &settings);
  ReadLyrics(read, &settings);
  ReadNetwork(ini, &settings);
  ReadAudio(ini, read, hot_keys, &settings);
  settings.m_source_values = static_cast<int>(ini.FoundKeyCount());
  return settings;
}

void SetMainWindowPosition(bool found, int32_t x, int32_t y, ImportedSettings* settings) {
  if (!found || x == -1 || y == -1)
    return;
  settings->MainWindowPositionSet = true;
  settings->MainWindowX = x;
  settings->MainWindowY = y;
}

}  // namespace data_importer
