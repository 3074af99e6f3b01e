// Feeds arbitrary bytes to the registry reader as the registry file and
// reads the values the importer looks up.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "base/environment.h"
#include "base/file_util.h"
#include "fuzz/fuzz_scratch.h"
#include "base/reg_key.h"

namespace {
base::FilePath g_file;
}

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
  (void)base::SetEnvironmentString("VANTU_LOG_LEVEL", L"5");  // fails only without memory
  g_file = FuzzScratchPath("vantu-registry-fuzz.reg");
  // The scratch file goes with the process.
  std::atexit([] { (void)base::DeleteFile(g_file); });
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!base::WriteFile(g_file, std::string(reinterpret_cast<const char*>(data), size)))
    return 0;
  std::string reason;
  (void)base::CheckRegistryFile(g_file, &reason);  // any answer will do
  for (const wchar_t* key :
       {L"Software\\VanTa6", L"Software\\VanTa", L"software\\vantu\\database_update"}) {
    base::RegKey reg;
    std::wstring value;
    bool expandable = false;
    if (reg.Open(g_file, key) && reg.ReadValue(L"AppFileName", &value, &expandable) && expandable)
      (void)base::ExpandEnvironmentReferences(value,
                                              [](const std::wstring& name, std::wstring* out) {
                                                *out = name;  // any text will do
                                                return name.size() % 2 == 0;
                                              });
  }
  return 0;
}
