#include "tools/vantu_import/demo_profile.h"

#include "base/file_util.h"
#include "testing/fixtures/generation6_fixture.h"
#include "testing/fixtures/generation7_fixture.h"
#include "testing/fixtures/reimport_fixture.h"
#include "testing/fixtures/version2_fixture.h"
#include "tools/data_importer/run_record/importer_names.h"
#include "tools/data_importer/target_store/build_sequence.h"

using namespace data_importer;  // the importer under use

namespace {

// A few hundred songs, as a small real library would have.
constexpr int kDemoSongs = 300;

// A registry export with no values: generation 7 needs none.
constexpr char kEmptyRegistry[] = "Windows Registry Editor Version 5.00\r\n\r\n";

}  // namespace

base::FilePath BuildDemoProfile(const base::FilePath& root, int generation, std::string* error) {
  base::FilePath local = root.Append(L"AppData").Append(L"Local");
  base::FilePath roaming = root.Append(L"AppData").Append(L"Roaming");
  if (!base::CreateDirectory(local) || !base::CreateDirectory(roaming)) {
    *error = "cannot create the profile folders";
    return base::FilePath();
  }
  std::string registry_text = kEmptyRegistry;
  if (generation == 7) {
    V7SampleSize size;
    size.songs = kDemoSongs;
    if (!WriteSampleV7Installation(roaming, size)) {
      *error = "cannot write the sample generation-7 installation";
      return base::FilePath();
    }
  } else {
    base::FilePath program = root.Append(L"Program Files").Append(L"VanTa6");
    if (!base::CreateDirectory(program) || !WriteSampleV6Installation(program, kDemoSongs)) {
      *error = "cannot write the sample generation-6 installation";
      return base::FilePath();
    }
    registry_text = V6RegistryText(program);
  }
  base::FilePath registry = root.Append(L"registry.reg");
  if (!base::WriteFile(registry, registry_text)) {
    *error = "cannot write the registry file";
    return base::FilePath();
  }
  return registry;
}

base::FilePath BuildCurrentGenerationDemo(const base::FilePath& root,
                                          int version,
                                          std::string* error) {
  base::FilePath local = root.Append(L"AppData").Append(L"Local");
  base::FilePath data_folder = local.Append(importer_names::kDataFolderName);
  if (!base::CreateDirectory(data_folder) ||
      !base::CreateDirectory(root.Append(L"AppData").Append(L"Roaming"))) {
    *error = "cannot create the profile folders";
    return base::FilePath();
  }
  bool written = version == 1   ? WriteSampleReimportDatabases(data_folder)
                 : version == 2 ? WriteSampleVersion2Databases(data_folder)
                                : WriteSampleVersion3Databases(data_folder, kVersion3DatabaseKey);
  if (!written) {
    *error = "cannot write the sample databases of the current generation";
    return base::FilePath();
  }
  base::FilePath registry = root.Append(L"registry.reg");
  if (!base::WriteFile(registry, kEmptyRegistry)) {
    *error = "cannot write the registry file";
    return base::FilePath();
  }
  return registry;
}
