#include "tools/data_importer/environment/installation_lookup.h"

base::FilePath FindGeneration6ProgramByShortcut() {
  return base::FilePath();
}

void RunStartupRegistryStep() {}
