#include "tools/data_importer/source_readers/vt2008_data_exporter/vt2008_data_exporter.h"

#include "logging/logging.h"
#include "tools/data_importer/run_record/progress_record.h"

namespace data_importer {

VT2008DataExporter::VT2008DataExporter(const RunContext& context, ImportModel* model)
    : DataExporter(context, model) {}

VT2008DataExporter::~VT2008DataExporter() = default;

ExportResult VT2008DataExporter::ExportData() {
  VLOG_AT(logging::LOG_FAILURE)
      << L"[VT2008数据导入] The 2008 edition is detected but not imported.";
  ReportState(ProgressRecord::kStateNotStarted);
  return ExportResult::kNothingExported;
}

std::wstring VT2008DataExporter::Dump(const base::FilePath& path) {
  VLOG_AT(logging::LOG_ASSERT) << L"[VT2008DataExporter::Dump] Assert(false) ";
  return std::wstring();
}

base::FilePath VT2008DataExporter::GetDatabasePath() {
  return base::FilePath();
}

}  // namespace data_importer
