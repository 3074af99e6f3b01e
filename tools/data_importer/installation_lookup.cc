#include "tools/data_importer/installation_lookup.h"

#include "base/reg_key.h"

std::wstring ReadRegistryString(const std::wstring& subkey, const std::wstring& value_name) {
  base::RegKey key;
  std::wstring value;
  if (key.Open(subkey))
    // A missing value leaves |value| empty, which is the answer.
    (void)key.ReadValue(value_name, &value);
  return value;
}

base::FilePath GetGeneration6ProgramPath() {
  return base::FilePath(ReadRegistryString(L"Software\\VanTa6", L"AppFileName"));
}
