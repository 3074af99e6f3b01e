#include "tools/data_importer/installation_lookup.h"

base::FilePath FindGeneration6ProgramByShortcut() {
  return base::FilePath();
}

void RunStartupRegistryStep() {}
