#include "tools/data_importer/source_readers/data_exporter.h"

using namespace data_importer;  // the importer under use

  #  include "tools/data_importer/version3_upgrade/upgrade_tasks.h"
