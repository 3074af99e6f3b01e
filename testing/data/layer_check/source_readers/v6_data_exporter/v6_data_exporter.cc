#include "tools/data_importer/source_readers/data_exporter.h"
  #  include "tools/data_importer/version3_upgrade/upgrade_tasks.h"
