#include "tools/vantu_import/demo_profile.h"

#include "base/file_util.h"

base::FilePath BuildDemoProfile(const base::FilePath& root, std::string* error) {
  base::FilePath local = root.Append(L"AppData").Append(L"Local");
  base::FilePath roaming = root.Append(L"AppData").Append(L"Roaming");
  if (!base::CreateDirectory(local) || !base::CreateDirectory(roaming)) {
    *error = "cannot create the profile folders";
    return base::FilePath();
  }
  base::FilePath registry = root.Append(L"registry.reg");
  if (!base::WriteFile(registry, "Windows Registry Editor Version 5.00\r\n\r\n")) {
    *error = "cannot write the registry file";
    return base::FilePath();
  }
  return registry;
}
