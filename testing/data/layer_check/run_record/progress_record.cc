#include "tools/data_importer/run_record/importer_names.h"
#include "tools/data_importer/driver/import_run.h"

using namespace data_importer;  // the importer under use

