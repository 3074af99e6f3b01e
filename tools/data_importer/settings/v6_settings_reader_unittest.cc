#include "tools/data_importer/settings/v6_settings_reader.h"

#include <gtest/gtest.h>

#include <string>

#include "base/utf_string_conversions.h"
#include "testing/test_support.h"

namespace data_importer {

namespace {

class V6SettingsReaderTest : public testing::Test {
 protected:
  void Write(const std::wstring& text, bool utf16 = false) {
    testing_support::WriteBytes(
        m_dir.path().Append(L"vanta.XML"),
        utf16 ? "\xFF\xFE" + testing_support::UTF16Bytes(text, false) : base::WideToUTF8(text));
  }
  std::optional<ImportedSettings> Read() { return ReadV6Settings(m_dir.path()); }

  testing_support::ScopedTempDir m_dir;
};

TEST_F(V6SettingsReaderTest, ElementsAndAttributes) {
  const struct {
    const char* name;
    std::wstring text;
    // Volume, AutoPlay, MusicFadeIn, MusicFadeOut, MusicUserFade, ProxyType
    std::wstring expected;
  } cases[] = {
      {"elements",
       L"<?xml version=\"1.0\"?>\r\n<VanTa>\r\n <Player>\r\n  <Volume>80</Volume>\r\n"
       L"  <AutoPlay>1</AutoPlay>\r\n </Player>\r\n "
       L"<PlayBack><SFadeInTime>500</SFadeInTime></PlayBack>\r\n"
       L" <Network><ProxyType>2</ProxyType></Network>\r\n</VanTa>\r\n",
       L"80|1|500|0|1|2"},
      {"attributes",
       L"<VanTa><Player Volume=\"35\" AutoPlay=\"true\"/><PlayBack SFadeOutTime='300'/>"
       L"<Network ProxyType=\"1\"/></VanTa>",
       L"35|1|0|300|1|1"},
      {"PlayBack after Player; element before attribute",
       L"<vanta><player volume=\"10\" sfadeintime=\"9\"><SFadeInTime>0</SFadeInTime></player>"
       L"<PLAYBACK Volume=\"20\" AutoPlay=\"0\"/></vanta>",
       L"20|0|0|0|0|0"},
      {"keys only in their own sections",
       L"<VanTa><Network Volume=\"50\"/><Player ProxyType=\"4\" AutoPlay=\"x\"/></VanTa>",
       L"0|0|0|0|0|0"},
      {"VanTa below another root", L"<Config><VanTa><Player Volume=\"7\"/></VanTa></Config>",
       L"7|0|0|0|0|0"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    for (bool utf16 : {false, true}) {
      Write(c.text, utf16);
      const std::optional<ImportedSettings> s = Read();
      ASSERT_TRUE(s.has_value());
      const std::wstring got =
          std::to_wstring(s->Volume) + L"|" + std::to_wstring(s->AutoPlay) + L"|" +
          std::to_wstring(s->MusicFadeIn) + L"|" + std::to_wstring(s->MusicFadeOut) + L"|" +
          std::to_wstring(s->MusicUserFade) + L"|" + std::to_wstring(s->ProxyType);
      EXPECT_EQ(c.expected, got) << (utf16 ? "UTF-16" : "UTF-8");
      EXPECT_EQ(9000, s->DownloadPort);  // not in the file: the default
    }
  }
}

TEST_F(V6SettingsReaderTest, MissingOrUnusableFileGivesNoRecord) {
  EXPECT_FALSE(Read().has_value());
  for (const wchar_t* text : {L"", L"<VanTa><Player Volume=\"1\">", L"<Other Volume=\"1\"/>",
                              L"<VanTa><Player></VanTa>", L"not markup at all"}) {
    SCOPED_TRACE(base::WideToUTF8(text));
    Write(text);
    EXPECT_FALSE(Read().has_value());
  }
}

}  // namespace

}  // namespace data_importer
