#include "tools/data_importer/run_record/task_names.h"

#include <cwchar>

namespace data_importer {

bool IsTask(const std::wstring& task, const wchar_t* name) {
  size_t length = std::wcslen(name);
  if (task.size() != length)
    return false;
  for (size_t i = 0; i < length; ++i) {
    if (task[i] != name[i])
      return false;
  }
  return true;
}

int ImportKindOfTask(const std::wstring& task) {
  if (IsTask(task, kTaskImport2008))
    return importer_names::kKind2008;
  if (IsTask(task, kTaskImportGeneration6))
    return importer_names::kKindGeneration6;
  if (IsTask(task, kTaskImportGeneration7))
    return importer_names::kKindGeneration7;
  if (IsTask(task, kTaskImportCurrent))
    return importer_names::kKindCurrent;
  return importer_names::kKindNone;
}

}  // namespace data_importer
