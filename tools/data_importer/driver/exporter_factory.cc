#include "tools/data_importer/driver/exporter_factory.h"

#include "logging/logging.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/source_readers/v6_data_exporter/v6_data_exporter.h"
#include "tools/data_importer/source_readers/v7_data_exporter/v7_data_exporter.h"
#include "tools/data_importer/source_readers/v8_data_exporter/v8_data_exporter.h"
#include "tools/data_importer/source_readers/vt2008_data_exporter/vt2008_data_exporter.h"

namespace data_importer {

namespace {

// Stands in for the reader of a generation that this library cannot read
// yet: the source counts as not found.
class UnavailableDataExporter : public DataExporter {
 public:
  UnavailableDataExporter(const RunContext& context, ImportModel* model, int kind)
      : DataExporter(context, model), m_kind(kind) {}

  ExportResult ExportData() override {
    VLOG_AT(logging::LOG_FAILURE) << L"No reader for import kind {" << m_kind << L"}.";
    ReportState(ProgressRecord::kStateNotStarted);
    return ExportResult::kNothingExported;
  }
  std::wstring Dump(const base::FilePath& path) override { return std::wstring(); }
  base::FilePath GetDatabasePath() override { return base::FilePath(); }

 private:
  int m_kind;
};

}  // namespace

std::unique_ptr<DataExporter> CreateExporter(const RunContext& context,
                                             int import_kind,
                                             ImportModel* model) {
  switch (import_kind) {
    case ProgressRecord::kKind2008:
      return std::make_unique<VT2008DataExporter>(context, model);
    case ProgressRecord::kKindGeneration6:
      return std::make_unique<V6DataExporter>(context, model);
    case ProgressRecord::kKindGeneration7:
      return std::make_unique<V7DataExporter>(context, model);
    case ProgressRecord::kKindCurrent:
      return std::make_unique<V8DataExporter>(context, model);
    default:
      return std::make_unique<UnavailableDataExporter>(context, model, import_kind);
  }
}

}  // namespace data_importer
