#include "tools/data_importer/settings/settings_writer.h"

#include <array>
#include <type_traits>

#include "base/profile_string.h"
#include "tools/data_importer/markup/markup_values.h"

namespace data_importer {

namespace {

using Entries = std::vector<std::pair<std::wstring, std::wstring>>;

class EntryList {
 public:
  void Bool(const std::wstring& key, bool value) {
    m_entries.emplace_back(key, value ? L"1" : L"0");
  }
  void Int(const std::wstring& key, int32_t value) {
    m_entries.emplace_back(key, markup::FormatInteger(value));
  }
  void Unsigned(const std::wstring& key, uint32_t value) {
    m_entries.emplace_back(key, std::to_wstring(value));
  }
  void Text(const std::wstring& key, const std::wstring& value) {
    m_entries.emplace_back(key, value);
  }
  template <typename T, size_t N>
  void Array(const std::wstring& name, const std::array<T, N>& values) {
    for (size_t i = 0; i < N; ++i) {
      const std::wstring key = name + std::to_wstring(i);
      if constexpr (std::is_signed_v<T>)
        Int(key, values[i]);
      else
        Unsigned(key, values[i]);
    }
  }

  Entries Take() { return std::move(m_entries); }

 private:
  Entries m_entries;
};

}  // namespace

Entries SettingsEntries(const ImportedSettings& s) {
  EntryList e;
  e.Bool(L"AutoLogin", s.AutoLogin);
  e.Text(L"MVCacheFolder", s.MVCacheFolder);
  e.Text(L"PluginPath", s.PluginPath);
  e.Bool(L"PlayHello", s.PlayHello);
  e.Bool(L"AutoPlay", s.AutoPlay);
  e.Int(L"Volume", s.Volume);
  e.Bool(L"Mute", s.Mute);
  e.Bool(L"EnableLyric", s.EnableLyric);
  e.Bool(L"GlobalTopMost", s.GlobalTopMost);
  e.Bool(L"AcceptUpdate", s.AcceptUpdate);
  e.Unsigned(L"PlayMode", s.PlayMode);
  e.Int(L"TabState", s.TabState);
  e.Bool(L"ClassicMiniTopWnd", s.ClassicMiniTopWnd);
  e.Bool(L"MiniTopWnd", s.MiniTopWnd);
  e.Int(L"LyricsBkMode", s.LyricsBkMode);
  e.Text(L"LyricsLocalImg", s.LyricsLocalImg);
  e.Unsigned(L"LyricsSolidBk", s.LyricsSolidBk);
  e.Bool(L"HideMusicLibrary", s.HideMusicLibrary);
  e.Bool(L"FeedbackNotify", s.FeedbackNotify);
  e.Bool(L"TaskScrLy", s.TaskScrLy);
  e.Bool(L"ConPro", s.ConPro);
  e.Bool(L"IsDownload", s.IsDownload);
  e.Bool(L"MiniOrExit", s.MiniOrExit);
  e.Bool(L"IsPopupModeSelectMenu", s.IsPopupModeSelectMenu);
  e.Int(L"DefaultModeSelect", s.DefaultModeSelect);
  e.Int(L"DeleteOperarion", s.DeleteOperarion);
  e.Text(L"LyricPath", s.LyricPath);
  e.Int(L"LockLyrics", s.LockLyrics);
  e.Bool(L"LyricTopMost", s.LyricTopMost);
  e.Bool(L"OneLine", s.OneLine);
  e.Text(L"LyricFontName", s.LyricFontName);
  e.Int(L"LyricFontHeight", s.LyricFontHeight);
  e.Int(L"LyricTrans", s.LyricTrans);
  e.Text(L"LyricWinFontName", s.LyricWinFontName);
  e.Int(L"LyricWinFontHeight", s.LyricWinFontHeight);
  e.Int(L"LyricFontType", s.LyricFontType);
  e.Int(L"LyricWinFontType", s.LyricWinFontType);
  e.Text(L"LyricUnPlayColors", s.LyricUnPlayColors);
  e.Text(L"LyricPlayColors", s.LyricPlayColors);
  e.Int(L"LyricColorIndex", s.LyricColorIndex);
  e.Text(L"LyricWinUnPlayColors", s.LyricWinUnPlayColors);
  e.Text(L"LyricWinPlayColors", s.LyricWinPlayColors);
  e.Int(L"LyricWinColorIndex", s.LyricWinColorIndex);
  e.Int(L"KrcWindowShowMode", s.KrcWindowShowMode);
  if (s.ShowLyricPresent)
    e.Bool(L"ShowLyric", s.ShowLyric);
  e.Int(L"DownloadPort", s.DownloadPort);
  e.Int(L"DownloadBandwidth", s.DownloadBandwidth);
  e.Int(L"UploadBandwidth", s.UploadBandwidth);
  e.Int(L"MaxDownloadFile", s.MaxDownloadFile);
  e.Int(L"MinSizeBandwidth", s.MinSizeBandwidth);
  e.Int(L"ProxyType", s.ProxyType);
  e.Text(L"ProxyAddress", s.ProxyAddress);
  e.Text(L"ProxyName", s.ProxyName);
  e.Text(L"ProxyDomain", s.ProxyDomain);
  e.Text(L"ProxyPort", s.ProxyPort);
  e.Text(L"ProxyPassword", s.ProxyPassword);
  e.Int(L"PostToSrvType", s.PostToSrvType);
  e.Int(L"P2PSpeedMode", s.P2PSpeedMode);
  e.Bool(L"ServerTransfer", s.ServerTransfer);
  e.Int(L"MusicOutputType", s.MusicOutputType);
  e.Text(L"MusicVideoType", s.MusicVideoType);
  e.Bool(L"MusicUserFade", s.MusicUserFade);
  e.Int(L"MusicFadeIn", s.MusicFadeIn);
  e.Int(L"MusicFadeOut", s.MusicFadeOut);
  e.Bool(L"EqualizerEnable", s.EqualizerEnable);
  e.Array(L"BandsGain", s.BandsGain);
  e.Int(L"PreampValue", s.PreampValue);
  e.Int(L"BalanceValue", s.BalanceValue);
  e.Bool(L"IsUserGlobalHotKey", s.IsUserGlobalHotKey);
  e.Array(L"InnerHotKeys", s.InnerHotKeys);
  e.Array(L"GlobalHotKeys", s.GlobalHotKeys);
  e.Bool(L"IsPopInfoWindow", s.IsPopInfoWindow);
  for (size_t i = 0; i < s.VstPlugs.size(); ++i) {
    const std::wstring name = L"VstPlug" + std::to_wstring(i + 1);
    e.Text(name + L"Default", s.VstPlugs[i].Default);
    e.Text(name + L"File", s.VstPlugs[i].File);
    e.Bool(name + L"Enable", s.VstPlugs[i].Enable);
  }
  e.Text(L"KSongSavePath", s.KSongSavePath);
  e.Int(L"KSongRecordVolume", s.KSongRecordVolume);
  e.Text(L"KSongVoiceIn", s.KSongVoiceIn);
  e.Text(L"KSongVoiceOut", s.KSongVoiceOut);
  e.Bool(L"KSongRemoveNoise", s.KSongRemoveNoise);
  e.Int(L"KSongPlayMode", s.KSongPlayMode);
  e.Bool(L"HasInitRadioData", s.HasInitRadioData);
  if (s.MainWindowPositionSet) {
    e.Int(L"MainWindowX", s.MainWindowX);
    e.Int(L"MainWindowY", s.MainWindowY);
  }
  return e.Take();
}

bool WriteImportedSettings(const std::vector<ImportedSettings>& records,
                           const base::FilePath& ini_path,
                           uint32_t ansi_code_page) {
  bool all_written = true;
  // UTF-16 when new, so that no character of a setting is lost (see
  // CreateUnicodeProfileFile); a failure here shows in the writes.
  if (!records.empty())
    (void)base::CreateUnicodeProfileFile(ini_path.value());
  for (const ImportedSettings& record : records) {
    for (const auto& [key, value] : SettingsEntries(record)) {
      if (!base::WritePrivateProfileStringW(importer_names::kSettingsSection, key.c_str(),
                                            value.c_str(), ini_path.value().c_str(),
                                            ansi_code_page))
        all_written = false;
    }
  }
  return all_written;
}

}  // namespace data_importer
