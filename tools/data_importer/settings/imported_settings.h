#ifndef TOOLS_DATA_IMPORTER_SETTINGS_IMPORTED_SETTINGS_H_
#define TOOLS_DATA_IMPORTER_SETTINGS_IMPORTED_SETTINGS_H_

#include <array>
#include <cstdint>
#include <string>

namespace data_importer {

// One record of the user's settings taken from an older generation's
// settings file, for the current generation's settings writer. A plain,
// copyable value: default-constructed, every field holds the value the
// player assumes when the old file does not have the key. Each field is
// named after the key that fills it; the writer uses the same names as keys.
struct ImportedSettings {
  // One of the six audio plug-in slots ("VSTPlug1" ... "VSTPlug6").
  struct VstPlug {
    std::wstring Default;
    std::wstring File;
    bool Enable = false;
  };

  static constexpr int kBandCount = 10;
  static constexpr int kHotKeyCount = 12;
  static constexpr int kVstPlugCount = 6;

  bool AutoLogin = false;
  std::wstring MVCacheFolder;
  std::wstring PluginPath;
  bool PlayHello = false;
  bool AutoPlay = false;
  int32_t Volume = 0;
  bool Mute = false;
  bool EnableLyric = false;
  bool GlobalTopMost = false;
  bool AcceptUpdate = false;
  // The current generation's play mode (1, 2 or 3), bit 31 set for
  // "continue with the next list".
  uint32_t PlayMode = 3;
  int32_t TabState = 0;
  bool ClassicMiniTopWnd = true;
  bool MiniTopWnd = true;
  int32_t LyricsBkMode = 0;
  std::wstring LyricsLocalImg;
  uint32_t LyricsSolidBk = 0;  // 0xAARRGGBB
  bool HideMusicLibrary = false;
  bool FeedbackNotify = false;
  bool TaskScrLy = false;
  bool ConPro = false;
  bool IsDownload = false;
  bool MiniOrExit = false;
  bool IsPopupModeSelectMenu = false;
  int32_t DefaultModeSelect = 0;
  int32_t DeleteOperarion = 0;
  std::wstring LyricPath;
  int32_t LockLyrics = 0;
  bool LyricTopMost = false;
  bool OneLine = false;
  std::wstring LyricFontName;
  int32_t LyricFontHeight = 0;
  int32_t LyricTrans = 0;
  std::wstring LyricWinFontName;
  int32_t LyricWinFontHeight = 0;
  int32_t LyricFontType = 0;
  int32_t LyricWinFontType = 0;
  // Colour lists: signed decimal 0xAARRGGBB values joined by ",".
  std::wstring LyricUnPlayColors;
  std::wstring LyricPlayColors;
  int32_t LyricColorIndex = 0;
  std::wstring LyricWinUnPlayColors;
  std::wstring LyricWinPlayColors;
  int32_t LyricWinColorIndex = 0;
  int32_t KrcWindowShowMode = 0;
  bool ShowLyric = false;
  bool ShowLyricPresent = false;  // the old file had the key
  int32_t DownloadPort = 9000;
  int32_t DownloadBandwidth = -1;
  int32_t UploadBandwidth = -1;
  int32_t MaxDownloadFile = 3;
  int32_t MinSizeBandwidth = 1;
  int32_t ProxyType = 0;
  std::wstring ProxyAddress;
  std::wstring ProxyName;
  std::wstring ProxyDomain;
  std::wstring ProxyPort;  // kept as the old file wrote it
  std::wstring ProxyPassword;
  int32_t PostToSrvType = 0;
  int32_t P2PSpeedMode = 0;
  bool ServerTransfer = false;
  int32_t MusicOutputType = 0;
  std::wstring MusicVideoType;
  bool MusicUserFade = false;
  int32_t MusicFadeIn = 0;
  int32_t MusicFadeOut = 0;
  bool EqualizerEnable = false;
  std::array<int32_t, kBandCount> BandsGain{};
  int32_t PreampValue = 0;
  int32_t BalanceValue = 0;
  bool IsUserGlobalHotKey = false;
  // Hot keys: modifier flags in the high byte, virtual-key code in the low.
  std::array<uint16_t, kHotKeyCount> InnerHotKeys{};
  std::array<uint16_t, kHotKeyCount> GlobalHotKeys{};
  bool IsPopInfoWindow = false;
  std::array<VstPlug, kVstPlugCount> VstPlugs{};
  std::wstring KSongSavePath;
  int32_t KSongRecordVolume = 100;
  std::wstring KSongVoiceIn;
  std::wstring KSongVoiceOut;
  bool KSongRemoveNoise = false;
  int32_t KSongPlayMode = 0;
  bool HasInitRadioData = false;
  // The main window's position, when the old generation recorded one.
  bool MainWindowPositionSet = false;
  int32_t MainWindowX = 0;
  int32_t MainWindowY = 0;

  // How many values of the source's settings file this record was read
  // from; every other field holds the current generation's default.
  int m_source_values = 0;
};

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_SETTINGS_IMPORTED_SETTINGS_H_
