#include "tools/data_importer/driver/import_run.h"
#include "tools/data_importer/data_importer_main.h"
