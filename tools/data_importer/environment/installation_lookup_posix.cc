#include "tools/data_importer/environment/installation_lookup.h"

namespace data_importer {

base::FilePath FindGeneration6ProgramByShortcut() {
  return base::FilePath();
}

void RunStartupRegistryStep() {}

}  // namespace data_importer
