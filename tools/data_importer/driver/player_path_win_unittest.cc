// The run as the player makes it on Windows: no folder given by the
// environment, so the user's folders come from the shell
// (SHGetFolderPathW) and the earlier installations from the user's own
// registry (HKEY_CURRENT_USER). These tests change that user's real folders
// and registry, so they run one at a time, in a Wine prefix of their own.

#include <gtest/gtest.h>

#include "base/windows_headers.h"
#include <shlobj.h>

#include "base/file_util.h"
#include "base/path_service.h"
#include "base/profile_string.h"
#include "testing/fixtures/generation6_fixture.h"
#include "testing/fixtures/generation7_fixture.h"
#include "testing/test_support.h"
#include "tools/data_importer/data_importer_main.h"
#include "tools/data_importer/environment/installation_lookup.h"
#include "tools/data_importer/environment/run_context.h"

namespace data_importer {

namespace {

base::FilePath ShellFolder(int csidl) {
  wchar_t buffer[MAX_PATH];
  if (FAILED(SHGetFolderPathW(nullptr, csidl | CSIDL_FLAG_CREATE, nullptr, SHGFP_TYPE_CURRENT,
                              buffer)))
    return base::FilePath();
  return base::FilePath(buffer);
}

class PlayerPathTest : public testing::Test {
 protected:
  void SetUp() override {
    m_env.Set(base::kFoldersFromEnvironment, std::nullopt);
    m_env.Set("VANTU_REGISTRY_FILE", std::nullopt);
    m_local = ShellFolder(CSIDL_LOCAL_APPDATA);
    m_roaming = ShellFolder(CSIDL_APPDATA);
    ASSERT_FALSE(m_local.empty());
    ASSERT_FALSE(m_roaming.empty());
    Clean();
  }
  void TearDown() override { Clean(); }

  // Nothing of another test's run is left in the user's folders.
  void Clean() {
    for (const base::FilePath& folder :
         {data_folder(), m_roaming.Append(L"VanTu7"), m_program.path()}) {
      if (base::PathExists(folder))
        EXPECT_TRUE(base::DeleteFile(folder, true)) << folder.AsUTF8Unsafe();
    }
    ASSERT_TRUE(base::CreateDirectory(m_program.path()));
    LSTATUS status = RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\VanTa6");
    EXPECT_TRUE(status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND) << status;
  }

  base::FilePath data_folder() const { return m_local.Append(L"VanTu8"); }
  std::wstring DBCheck(const wchar_t* key) const {
    return base::GetPrivateProfileStringW(L"DBCheck", key, L"#missing#",
                                          data_folder().Append(L"Vantu.ini").value(), GetACP());
  }

  testing_support::ScopedEnv m_env;
  testing_support::ScopedTempDir m_program;
  base::FilePath m_local;
  base::FilePath m_roaming;
};

// Generation 7 lives in the user's roaming folder, which the shell names.
TEST_F(PlayerPathTest, Generation7FromTheShellsRoamingFolder) {
  V7SampleSize size;
  size.songs = 30;
  ASSERT_TRUE(WriteSampleV7Installation(m_roaming, size));
  DataImporterMain();
  EXPECT_EQ(L"100", DBCheck(L"ImportProgress"));
  EXPECT_TRUE(base::PathExists(data_folder().Append(L"VTMusicV3.db")));
  EXPECT_TRUE(base::PathExists(data_folder().Append(L"playlistV3.db")));
  // The settings file the run made holds every character.
  EXPECT_EQ(0u, testing_support::ReadBytes(data_folder().Append(L"Vantu.ini")).find("\xFF\xFE"));
}

// Generation 6 is found through the program path in the user's registry;
// a copied profile without a registry file of its own reads none, not that
// of the user who runs the copy.
TEST_F(PlayerPathTest, Generation6NamedInTheUsersRegistry) {
  ASSERT_TRUE(WriteSampleV6Installation(m_program.path(), 5));
  HKEY key = nullptr;
  ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\VanTa6", 0, nullptr, 0,
                                           KEY_SET_VALUE, nullptr, &key, nullptr));
  const std::wstring program = m_program.path().Append(L"VanTa6.exe").value();
  LSTATUS status =
      RegSetValueExW(key, L"AppFileName", 0, REG_SZ, reinterpret_cast<const BYTE*>(program.c_str()),
                     static_cast<DWORD>((program.size() + 1) * sizeof(wchar_t)));
  RegCloseKey(key);
  ASSERT_EQ(ERROR_SUCCESS, status);
  RunContext copied;
  copied.m_own_registry = false;
  EXPECT_FALSE(LookUpRegistryPath(copied, L"Software\\VanTa6", L"AppFileName").value_found);
  RunContext own;
  EXPECT_EQ(program, LookUpRegistryPath(own, L"Software\\VanTa6", L"AppFileName").text);

  DataImporterMain();
  EXPECT_EQ(L"4", DBCheck(L"ImportEnd"));
  EXPECT_TRUE(base::PathExists(data_folder().Append(L"VTMusicV3.db")));
  EXPECT_TRUE(base::PathExists(data_folder().Append(L"playlistV3.db")));
}

}  // namespace

}  // namespace data_importer
