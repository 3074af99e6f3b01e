#include "tools/data_importer/settings/imported_settings.h"
#include "tools/data_importer/run_record/import_report.h"

using namespace data_importer;  // the importer under use

