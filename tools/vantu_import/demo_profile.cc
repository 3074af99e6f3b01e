#include "tools/vantu_import/demo_profile.h"

#include "base/file_util.h"
#include "testing/fixtures/generation6_fixture.h"
#include "testing/fixtures/version2_fixture.h"
#include "tools/data_importer/importer_names.h"
#include "tools/data_importer/target_store/build_sequence.h"

namespace {

// A generation-6 "V1" installation with a few hundred songs.
constexpr int kDemoSongs = 300;

}  // namespace

base::FilePath BuildDemoProfile(const base::FilePath& root, const std::string& kind,
                                std::string* error) {
  base::FilePath local = root.Append(L"AppData").Append(L"Local");
  base::FilePath roaming = root.Append(L"AppData").Append(L"Roaming");
  if (!base::CreateDirectory(local) || !base::CreateDirectory(roaming)) {
    *error = "cannot create the profile folders";
    return base::FilePath();
  }
  base::FilePath data_folder = local.Append(importer_names::kDataFolderName);
  if (kind == "v2" || kind == "v3") {
    bool written = kind == "v2"
                       ? WriteSampleVersion2Databases(data_folder)
                       : WriteSampleVersion3Databases(data_folder, kVersion3DatabaseKey);
    base::FilePath registry = root.Append(L"registry.reg");
    if (!written || !base::WriteFile(registry, "Windows Registry Editor Version 5.00\r\n")) {
      *error = "cannot write the sample databases of the current generation";
      return base::FilePath();
    }
    return registry;
  }
  base::FilePath program = root.Append(L"Program Files").Append(L"VanTa6");
  if (!base::CreateDirectory(program) || !WriteSampleV6Installation(program, kDemoSongs)) {
    *error = "cannot write the sample generation-6 installation";
    return base::FilePath();
  }
  base::FilePath registry = root.Append(L"registry.reg");
  if (!base::WriteFile(registry, V6RegistryText(program))) {
    *error = "cannot write the registry file";
    return base::FilePath();
  }
  return registry;
}
