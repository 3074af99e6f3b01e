// Runs the generation-7 settings migration over arbitrary bytes as the
// settings file "vantu.ini" of a scratch generation-7 folder.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "base/environment.h"
#include "base/file_util.h"
#include "fuzz/fuzz_scratch.h"
#include "tools/data_importer/settings/v7_settings_migration.h"

using namespace data_importer;  // the importer under use

namespace {
base::FilePath g_folder;
}

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
  (void)base::SetEnvironmentString("VANTU_LOG_LEVEL", L"5");  // fails only without memory
  g_folder = FuzzScratchPath("vantu-v7-settings-fuzz");
  if (!base::CreateDirectory(g_folder))
    std::abort();
  // The scratch folder goes with the process.
  std::atexit([] { (void)base::DeleteFile(g_folder, true); });
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!base::WriteFile(g_folder.Append(L"vantu.ini"),
                       std::string(reinterpret_cast<const char*>(data), size)))
    return 0;
  // 936, the code page a run takes when the machine names none.
  (void)MigrateV7Settings(g_folder, 936);  // every outcome is allowed; crashes are not
  return 0;
}
