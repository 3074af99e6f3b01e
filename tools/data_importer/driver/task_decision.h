#ifndef TOOLS_DATA_IMPORTER_DRIVER_TASK_DECISION_H_
#define TOOLS_DATA_IMPORTER_DRIVER_TASK_DECISION_H_

#include <string>
#include <utility>
#include <vector>

#include "base/file_path.h"
#include "base/json_file.h"
#include "tools/data_importer/environment/installation_lookup.h"
#include "tools/data_importer/environment/run_context.h"
#include "tools/data_importer/run_record/task_names.h"

namespace data_importer {

// Decides the run's task from what lies in the context's data folder, its
// roaming application-data folder, the registry and its source folder (the
// "i" switch; may be empty). First match wins; may copy generation-6
// database files from the source folder into the data folder on the way.
// Answers an empty name when there is nothing to do.
std::wstring DecideTask(const RunContext& context);

// What one decision looked at, so that a run can say where it looked for
// earlier installations and why it took the one it took.
struct TaskSearch {
  base::FilePath registry_file;  // empty: the run was given none
  bool registry_readable = false;
  // The data folder's own databases, in the order of the rules.
  std::vector<std::pair<std::wstring, bool>> data_folder_files;  // name, found
  base::FilePath generation7_database;
  bool generation7_found = false;
  RegistryPathLookup generation6;
  RegistryPathLookup edition2008;
  bool source_has_databases = false;  // the "i" folder holds generation-6 files
  std::wstring task;                  // what was decided
};

// As above, and fills |search|, which looks at every installation (the
// rules still take the first match, and only its files are copied).
std::wstring DecideTask(const RunContext& context, TaskSearch* search);

// |search| for the log and the import report ("lookup"): "lines", one per
// place looked at, e.g. "generation 6: registry value
// HKEY_CURRENT_USER\Software\VanTa6\AppFileName = \"C:\...\" -> /mnt/c/...
// (not found)"; "passed_over", each installation found but not imported
// ("generation", "path", "rule"); "unreachable", each installation the
// registry names whose files are not found ("generation", "value",
// "tried", "drive", the letter whose folder would map it).
base::Value DescribeTaskSearch(const RunContext& context, const TaskSearch& search);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_DRIVER_TASK_DECISION_H_
