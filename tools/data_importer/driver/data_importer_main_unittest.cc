#include "tools/data_importer/data_importer_main.h"

#include <gtest/gtest.h>

#if defined(_WIN32)
#include "base/windows_headers.h"
#else
#include <signal.h>
#endif

#include <algorithm>
#include <string>
#include <vector>

#include "base/file_util.h"
#include "base/json_file.h"
#include "testing/fixtures/generation6_fixture.h"
#include "testing/importer_test_util.h"
#include "tools/data_importer/driver/data_importer_run.h"

namespace data_importer {

namespace {

class DataImporterMainTest : public ::testing::Test {
 protected:
  base::FilePath Data(const wchar_t* name) { return m_profile.data_folder().Append(name); }

  void WriteStorage(const std::string& text) {
    testing_support::WriteBytes(Data(L"pls_storage"), text);
  }

  // Gives "playlistV3.db" a known modification time.
  double TouchPlaylist() {
    TestProfile::Touch(Data(L"playlistV3.db"));
    base::FileInfo info;
    EXPECT_TRUE(base::GetFileInfo(Data(L"playlistV3.db"), &info));
    return info.last_modified;
  }

  TestProfile m_profile;
};

TEST_F(DataImporterMainTest, NothingToDoLeavesTheStartValues) {
  DataImporterMain();
  EXPECT_TRUE(base::DirectoryExists(m_profile.data_folder()));
  EXPECT_EQ(L"", m_profile.DBCheck(L"ImportProgress"));
  EXPECT_EQ(L"", m_profile.DBCheck(L"UpdateProgress"));
  EXPECT_EQ(L"-1", m_profile.DBCheck(L"BeforceImportEmpty"));
  EXPECT_EQ(L"#missing#", m_profile.DBCheck(L"ImportEnd"));
  EXPECT_EQ(L"#missing#", m_profile.DBCheck(L"ImportStart"));
}

TEST_F(DataImporterMainTest, SectionIsResetAtEveryRun) {
  EXPECT_TRUE(base::CreateDirectory(m_profile.data_folder()));
  testing_support::WriteBytes(m_profile.ini(),
                              "[DBCheck]\r\nImportProgress=55\r\nImportState=9\r\n"
                              "ForceDeleteDb=1\r\n[Player]\r\nVolume=80\r\n");
  DataImporterMain();
  EXPECT_EQ(L"", m_profile.DBCheck(L"ImportProgress"));
  EXPECT_EQ(L"", m_profile.DBCheck(L"ImportState"));
  EXPECT_EQ(L"", m_profile.DBCheck(L"ForceDeleteDb"));
  EXPECT_EQ(L"-1", m_profile.DBCheck(L"BeforceImportEmpty"));
  // Other sections are left alone.
  EXPECT_NE(std::string::npos,
            testing_support::ReadBytes(m_profile.ini()).find("[Player]\r\nVolume=80\r\n"));
}

TEST_F(DataImporterMainTest, UpgradeTaskLeavesPlaylistStorageAlone) {
  EXPECT_TRUE(base::CreateDirectory(m_profile.data_folder()));
  TestProfile::Touch(Data(L"VTMusicV2.db"));
  TouchPlaylist();
  WriteStorage("{\"modify_time\":1.5}");
  DataImporterMain();
  EXPECT_EQ(L"100", m_profile.DBCheck(L"UpdateProgress"));
  EXPECT_EQ(L"-1", m_profile.DBCheck(L"BeforceImportEmpty"));
  EXPECT_EQ(L"", m_profile.DBCheck(L"ImportProgress"));
  EXPECT_EQ("{\"modify_time\":1.5}", testing_support::ReadBytes(Data(L"pls_storage")));
}

TEST_F(DataImporterMainTest, CopyTaskWithoutPlaylistDatabaseLeavesStorage) {
  EXPECT_TRUE(base::CreateDirectory(m_profile.data_folder()));
  TestProfile::Touch(Data(L"VTMusicV2.db"));
  WriteStorage("{\"lists\":[1,2],\"modify_time\":1.5}");
  DataImporterMain();
  EXPECT_EQ(L"100", m_profile.DBCheck(L"UpdateProgress"));
  EXPECT_EQ(L"-1", m_profile.DBCheck(L"BeforceImportEmpty"));

  // The copy made no "playlistV3.db" yet, so nothing was refreshed; with one
  // in place the next copy run refreshes the dictionary, keeping its keys.
  EXPECT_EQ("{\"lists\":[1,2],\"modify_time\":1.5}",
            testing_support::ReadBytes(Data(L"pls_storage")));
}

TEST_F(DataImporterMainTest, ImportRunGoesFromTenToHundred) {
  base::FilePath program2008 = m_profile.root().Append(L"VanTa").Append(L"VanTa.exe");
  TestProfile::Touch(program2008);
  m_profile.SetRegistryValue(L"Software\\VanTa", L"AppFileName", program2008.value());
  DataImporterMain();
  EXPECT_EQ(L"100", m_profile.DBCheck(L"ImportProgress"));
  EXPECT_EQ(L"", m_profile.DBCheck(L"UpdateProgress"));
  EXPECT_FALSE(base::PathExists(Data(L"VTMusicV3.db")));
  EXPECT_FALSE(base::PathExists(Data(L"playlistV3.db")));
}

// The run names each stage it enters to the context's observer, in the
// order it works: the source's tables, then the writers, then encrypting,
// verifying and replacing the files.
TEST_F(DataImporterMainTest, StagesAreNamedInOrder) {
  base::FilePath old = m_profile.root().Append(L"Old Player");
  ASSERT_TRUE(WriteSampleV6Installation(old, 5));
  RunContext context = RunContextFromEnvironment();
  context.m_source_folder = old;
  std::vector<std::string> stages;
  context.m_stage_observer = [&](const std::string& stage) { stages.push_back(stage); };
  RunDataImporter(context);
  ASSERT_TRUE(base::PathExists(Data(L"playlistV3.db")));

  auto at = [&](const std::string& stage) {
    return std::find(stages.begin(), stages.end(), stage) - stages.begin();
  };
  const std::vector<std::string> expected_order = {
      "reading MusicItems", "writing songs", "writing lists", "writing list entries",
      "encrypting",         "verifying",     "replacing"};
  std::string all;
  for (const std::string& stage : stages)
    all += stage + "; ";
  for (size_t i = 0; i < expected_order.size(); ++i) {
    ASSERT_LT(at(expected_order[i]), static_cast<long>(stages.size()))
        << expected_order[i] << ": " << all;
    if (i > 0)
      EXPECT_LT(at(expected_order[i - 1]), at(expected_order[i])) << all;
  }
  EXPECT_EQ("replacing", stages.back()) << all;
}

// After an import the playlist storage learns the new list database's
// modification time; its other keys stay.
TEST_F(DataImporterMainTest, ImportRefreshesPlaylistStorage) {
  base::FilePath program = m_profile.root().Append(L"Program Files").Append(L"VanTa6");
  ASSERT_TRUE(WriteSampleV6Installation(program, 5));
  ASSERT_TRUE(base::WriteFile(m_profile.root().Append(L"user.reg"), V6RegistryText(program)));
  ASSERT_TRUE(base::CreateDirectory(m_profile.data_folder()));
  WriteStorage("{\"lists\":[1],\"modify_time\":1.5}");
  DataImporterMain();
  ASSERT_EQ(L"4", m_profile.DBCheck(L"ImportEnd"));

  base::FileInfo info;
  ASSERT_TRUE(base::GetFileInfo(Data(L"playlistV3.db"), &info));
  base::Value storage;
  ASSERT_TRUE(base::ReadJsonFile(Data(L"pls_storage"), &storage));
  EXPECT_EQ(info.last_modified, storage["modify_time"].get<double>());
  EXPECT_NE(1.5, storage["modify_time"].get<double>());
  EXPECT_EQ(1, storage["lists"][0].get<int>());
}

#if defined(_WIN32)
LONG WINAPI HostFilter(EXCEPTION_POINTERS*) {
  return EXCEPTION_CONTINUE_SEARCH;
}

// The library runs inside the player's process: after a run the player's
// own unhandled-exception filter is back in place.
TEST_F(DataImporterMainTest, HostExceptionFilterIsRestored) {
  LPTOP_LEVEL_EXCEPTION_FILTER before = SetUnhandledExceptionFilter(HostFilter);
  DataImporterMain();
  LPTOP_LEVEL_EXCEPTION_FILTER after = SetUnhandledExceptionFilter(before);
  EXPECT_EQ(reinterpret_cast<void*>(HostFilter), reinterpret_cast<void*>(after));
}
#else
void HostHandler(int) {}

// The library runs inside the player's process: after a run the player's
// own signal handlers are back in place.
TEST_F(DataImporterMainTest, HostSignalHandlersAreRestored) {
  struct sigaction host = {}, before = {}, after = {};
  host.sa_handler = HostHandler;
  sigemptyset(&host.sa_mask);
  sigaction(SIGSEGV, &host, &before);
  DataImporterMain();
  sigaction(SIGSEGV, &before, &after);
  EXPECT_EQ(reinterpret_cast<void*>(HostHandler), reinterpret_cast<void*>(after.sa_handler));
}
#endif

}  // namespace

}  // namespace data_importer
