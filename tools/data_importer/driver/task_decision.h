#ifndef TOOLS_DATA_IMPORTER_DRIVER_TASK_DECISION_H_
#define TOOLS_DATA_IMPORTER_DRIVER_TASK_DECISION_H_

#include <string>

#include "base/file_path.h"
#include "tools/data_importer/run_record/task_names.h"

// Decides the run's task from what lies in |data_folder|, the roaming
// application-data folder, the registry and |source_folder| (the "i" switch;
// may be empty). First match wins; may copy generation-6 database files from
// |source_folder| into |data_folder| on the way. Answers an empty name when
// there is nothing to do.
std::wstring DecideTask(const base::FilePath& data_folder, const base::FilePath& source_folder);

#endif  // TOOLS_DATA_IMPORTER_DRIVER_TASK_DECISION_H_
