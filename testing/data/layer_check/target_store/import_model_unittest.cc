#include "tools/data_importer/driver/import_run.h"
#include "tools/data_importer/data_importer_main.h"

using namespace data_importer;  // the importer under use

