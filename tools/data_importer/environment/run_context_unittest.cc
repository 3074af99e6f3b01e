#include "tools/data_importer/environment/run_context.h"

#include <gtest/gtest.h>

#include "base/path_service.h"
#include "testing/test_support.h"
#include "tools/data_importer/environment/installation_lookup.h"

namespace data_importer {

namespace {

// The player's contract: every folder, the registry, the drives and the
// log settings come from the environment variables the player sets.
TEST(RunContextTest, FromTheEnvironment) {
  testing_support::ScopedEnv env;
  env.Set("LOCALAPPDATA", "/u/local");
  env.Set("APPDATA", "/u/roaming");
  env.Set("USERPROFILE", "/u");
  env.Set("VANTU_REGISTRY_FILE", "/u/NTUSER.DAT");
  env.Set("VANTU_DRIVE_D", "/mnt/d");
  env.Set("VANTU_LOG_LEVEL", "3");
  env.Set("VANTU_LOG_STDERR", "1");
  env.Set("ProgramFiles", "D:\\Apps");
  // Windows sets it; here the usual folder stands in for it.
  env.Set("SystemRoot", std::nullopt);
  RunContext context = RunContextFromEnvironment();
  EXPECT_EQ(L"/u/local", context.m_local_app_data.value());
  EXPECT_EQ(testing_support::NativePath(L"/u/local/VanTu8"), context.m_data_folder.value());
  EXPECT_EQ(testing_support::NativePath(L"/u/local/VanTu8/DataImporter.log"),
            context.m_log_file.value());
  EXPECT_EQ(L"/u/roaming", context.m_roaming_app_data.value());
  EXPECT_EQ(L"/u", context.m_user_profile.value());
  EXPECT_EQ(L"/u/NTUSER.DAT", context.m_registry_file.value());
  ASSERT_EQ(1u, context.m_drives.count(L'D'));
  EXPECT_EQ(L"/mnt/d", context.m_drives[L'D'].value());
  EXPECT_EQ(3, context.m_log_level);
  EXPECT_TRUE(context.m_log_to_stderr);
  // A variable of the process wins over the usual Windows folder.
  EXPECT_EQ(L"D:\\Apps\\VanTa6;/u;C:\\Windows;%NotSet%",
            ExpandWindowsVariables(context,
                                   L"%programfiles%\\VanTa6;%USERPROFILE%;"
                                   L"%SystemRoot%;%NotSet%"));

  // Without them: the fallbacks of the home folder, no registry, no drives.
  for (const char* name :
       {"LOCALAPPDATA", "APPDATA", "USERPROFILE", "VANTU_REGISTRY_FILE", "VANTU_DRIVE_D",
        "VANTU_LOG_LEVEL", "VANTU_LOG_STDERR", "XDG_DATA_HOME", "XDG_CONFIG_HOME"})
    env.Set(name, std::nullopt);
#if defined(_WIN32)
  // On Windows the shell knows the user's folders.
  env.Set(base::kFoldersFromEnvironment, std::nullopt);
  context = RunContextFromEnvironment();
  EXPECT_EQ(L"VanTu8", context.m_data_folder.BaseName().value());
  EXPECT_FALSE(context.m_roaming_app_data.empty());
#else
  env.Set("HOME", "/h");
  context = RunContextFromEnvironment();
  EXPECT_EQ(L"/h/.local/share/VanTu8", context.m_data_folder.value());
  EXPECT_EQ(L"/h/.config", context.m_roaming_app_data.value());
#endif
  EXPECT_TRUE(context.m_user_profile.empty());
  EXPECT_TRUE(context.m_registry_file.empty());
  EXPECT_TRUE(context.m_drives.empty());
  EXPECT_FALSE(context.m_log_to_stderr);
}

}  // namespace

}  // namespace data_importer
