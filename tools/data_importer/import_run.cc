#include "tools/data_importer/import_run.h"

#include <memory>

#include "logging/logging.h"
#include "tools/data_importer/target_store/build_sequence.h"
#include "tools/data_importer/data_exporter.h"
#include "tools/data_importer/data_folder.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/progress_record.h"
#include "tools/data_importer/exporter_factory.h"

void RunImport(ProgressRecord* record, const BuildStageCallback& stage_done) {
  ImportModel model;
  model.m_progress = record;

  std::unique_ptr<DataExporter> exporter = CreateExporter(record->import_kind(), &model);
  base::FilePath source = exporter->GetDatabasePath();
  std::wstring summary = exporter->Dump(source);
  if (!summary.empty())
    VLOG_AT(logging::LOG_PROGRESS) << summary;
  if (exporter->ExportData() == 0)
    BuildDatabases(&model, GetDataFolder(), stage_done);
  exporter.reset();
  record->WriteEnd();
}
