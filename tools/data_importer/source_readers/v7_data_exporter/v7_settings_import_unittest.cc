// The generation-7 settings file carried through the exporter and a whole
// import run.

#if defined(_WIN32)
#include "base/windows_headers.h"
#endif

#include <gtest/gtest.h>

#include <string>

#include "base/file_util.h"
#include "testing/fixtures/generation7_fixture.h"
#include "testing/test_support.h"
#include "tools/data_importer/environment/data_folder.h"
#include "tools/data_importer/data_importer_main.h"
#include "testing/importer_test_util.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/source_readers/v7_data_exporter/v7_data_exporter.h"

namespace data_importer {

namespace {

const wchar_t kSettings[] =
    L"[Player]\r\nVolume=66\r\n[MainPlayList]\r\nPlayMode=4\r\n"
    L"[LyrciConfig]\r\nLyricPlayClrNew=255;65280\r\nLyricFontName=\u5b8b\u4f53\r\n"
    L"[HotKeyConfig]\r\nGlobalHotKey=4390915,0,0,0,0,0,0,0,0,0,0,0\r\n"
    L"[NetConfig]\r\nProxyType=2\r\n";

class V7SettingsImportTest : public testing::Test {
 protected:
  void SetUp() override {
    V7SampleSize size;
    size.songs = 20;
    size.list_entries = 30;
    ASSERT_TRUE(MakeSampleV7Database(size).Write(v7().Append(L"VTData.db")));
  }

  base::FilePath v7() const { return Generation7Folder(m_profile.roaming()); }
  void WriteSettings() {
    testing_support::WriteBytes(v7().Append(L"VANTU.INI"),
                                "\xFF\xFE" + testing_support::UTF16Bytes(kSettings, false));
    ASSERT_TRUE(base::CreateDirectory(v7().Append(L"SkinPic2012")));
  }

  // Runs the exporter alone; answers the progress it reached.
  int Export(ImportModel* model) {
    const RunContext run_context = TestRunContext();
    V7DataExporter exporter(run_context, model);
    EXPECT_EQ(ExportResult::kExported, exporter.ExportData());
    return model->m_progress->progress();
  }

  TestProfile m_profile;
};

// The settings step alone, as the exporter runs it after the table readers.
class SettingsStep : public V7DataExporter {
 public:
  using V7DataExporter::MigrateSettings;
  using V7DataExporter::V7DataExporter;
};

// The settings file adds one record and exactly one progress step; without
// it, neither.
TEST_F(V7SettingsImportTest, OneRecordAndOneStepOnlyWithTheFile) {
  ProgressRecord record;
  record.Initialise(TestDataFolder());
  record.SetProgress(20);
  ImportModel model(&record);
  const RunContext run_context = TestRunContext();
  SettingsStep step(run_context, &model);
  step.MigrateSettings();
  EXPECT_EQ(20, record.progress());
  EXPECT_TRUE(model.m_settings.empty());

  WriteSettings();
  step.MigrateSettings();
  EXPECT_EQ(21, record.progress());
  ASSERT_EQ(1u, model.m_settings.size());
  EXPECT_EQ(66, model.m_settings[0].Volume);
  EXPECT_FALSE(model.m_settings[0].MainWindowPositionSet);
  // A file in UTF-16LE without its byte-order mark, as generation 7 could
  // leave it, is read all the same.
  testing_support::WriteBytes(v7().Append(L"VANTU.INI"),
                              testing_support::UTF16Bytes(kSettings, false));
  step.MigrateSettings();
  ASSERT_EQ(2u, model.m_settings.size());
  EXPECT_EQ(66, model.m_settings[1].Volume);
  EXPECT_EQ(L"\u5b8b\u4f53", model.m_settings[1].LyricFontName);
  // The whole export carries the same record.
  ImportModel whole(&record);
  EXPECT_EQ(49, Export(&whole));
  ASSERT_EQ(1u, whole.m_settings.size());
  EXPECT_EQ(L"\u5b8b\u4f53", whole.m_settings[0].LyricFontName);
  EXPECT_EQ(66, whole.m_settings[0].Volume);
}

TEST_F(V7SettingsImportTest, SettingsArriveInTheNewIni) {
  WriteSettings();
  DataImporterMain();
  EXPECT_EQ(L"4", m_profile.DBCheck(L"ImportEnd"));
  EXPECT_EQ(L"100", m_profile.DBCheck(L"ImportProgress"));
  EXPECT_EQ(L"66", m_profile.Setting(L"Volume"));
  EXPECT_EQ(L"2147483649", m_profile.Setting(L"PlayMode"));
  EXPECT_EQ(L"-65536,-16711936", m_profile.Setting(L"LyricPlayColors"));
  EXPECT_EQ(L"\u5b8b\u4f53", m_profile.Setting(L"LyricFontName"));
  EXPECT_EQ(L"1603", m_profile.Setting(L"GlobalHotKeys0"));
  EXPECT_EQ(L"2", m_profile.Setting(L"ProxyType"));
  EXPECT_EQ(L"9000", m_profile.Setting(L"DownloadPort"));
  EXPECT_EQ(L"#missing#", m_profile.Setting(L"MainWindowX"));
}

// A Chinese Windows wrote the old settings file, and the player's own
// settings file, in code page 936: both are read in it, and the new keys go
// into the existing file in it, its other lines untouched.
TEST_F(V7SettingsImportTest, EightBitFilesInTheUsersCodePage) {
#if defined(_WIN32)
  if (GetACP() != 936)
    GTEST_SKIP() << "Windows reads and writes 8-bit settings files in the system's own code page, "
                    "which is not the Chinese one here";
#endif
  testing_support::WriteBytes(v7().Append(L"vantu.ini"),
                              "[Player]\r\nVolume=66\r\n[LyrciConfig]\r\n"
                              "LyricPath=D:\\\xB8\xE8\xB4\xCA\r\nLyricFontName=Caf\xA8\xA6\r\n");
  const std::string own = "[Player]\r\nSkin=\xC4\xAC\xC8\xCF\r\n";  // 默认
  ASSERT_TRUE(base::CreateDirectory(m_profile.data_folder()));
  testing_support::WriteBytes(m_profile.ini(), own);

  DataImporterMain();

  EXPECT_EQ(L"4", m_profile.DBCheck(L"ImportEnd"));
  EXPECT_EQ(L"66", m_profile.Setting(L"Volume"));
  EXPECT_EQ(L"D:\\\u6b4c\u8bcd", m_profile.Setting(L"LyricPath"));
  EXPECT_EQ(L"Caf\u00e9", m_profile.Setting(L"LyricFontName"));
  const std::string bytes = testing_support::ReadBytes(m_profile.ini());
  EXPECT_EQ(0u, bytes.find(own));
  EXPECT_NE(std::string::npos, bytes.find("LyricPath=D:\\\xB8\xE8\xB4\xCA\r\n"));
}

}  // namespace

}  // namespace data_importer
