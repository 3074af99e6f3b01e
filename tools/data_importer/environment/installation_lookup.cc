#include "tools/data_importer/environment/installation_lookup.h"

#include "base/reg_key.h"
#include "base/windows_path.h"

std::wstring ReadRegistryString(const std::wstring& subkey, const std::wstring& value_name) {
  base::RegKey key;
  std::wstring value;
  if (!key.Open(subkey) || !key.ReadValue(value_name, &value))
    return std::wstring();
  return value;
}

base::FilePath ReadRegistryPath(const std::wstring& subkey, const std::wstring& value_name) {
  std::wstring value = ReadRegistryString(subkey, value_name);
  return value.empty() ? base::FilePath() : base::MapWindowsPath(value);
}

base::FilePath GetGeneration6ProgramPath() {
  return ReadRegistryPath(L"Software\\VanTa6", L"AppFileName");
}
