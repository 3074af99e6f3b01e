#ifndef TOOLS_DATA_IMPORTER_RUN_RECORD_TASK_NAMES_H_
#define TOOLS_DATA_IMPORTER_RUN_RECORD_TASK_NAMES_H_

#include <string>

#include "tools/data_importer/run_record/importer_names.h"

namespace data_importer {

// Task names of a run (defined with the other shared names).
using importer_names::kTaskCopyVersion2;
using importer_names::kTaskImport2008;
using importer_names::kTaskImportCurrent;
using importer_names::kTaskImportGeneration6;
using importer_names::kTaskImportGeneration7;
using importer_names::kTaskUpgradeVersion3;

// Case-sensitive comparison of a task name: length first, then each
// character.
bool IsTask(const std::wstring& task, const wchar_t* name);

// The import kind of an import task (1 2008 edition, 2 generation 6,
// 3 generation 7, 4 current generation), 0 for any other name.
int ImportKindOfTask(const std::wstring& task);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_RUN_RECORD_TASK_NAMES_H_
