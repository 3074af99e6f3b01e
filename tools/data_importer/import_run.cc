#include "tools/data_importer/import_run.h"

#include <chrono>
#include <memory>

#include "logging/logging.h"
#include "tools/data_importer/target_store/build_sequence.h"
#include "tools/data_importer/data_exporter.h"
#include "tools/data_importer/data_folder.h"
#include "tools/data_importer/import_report.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/progress_record.h"
#include "tools/data_importer/exporter_factory.h"

void RunImport(ProgressRecord* record) {
  ImportModel model;
  model.m_progress = record;

  // Each stage's time goes into the import report.
  ImportReport* report = record->report();
  auto stage_start = std::chrono::steady_clock::now();
  auto stage_done = [&](const char* stage) {
    auto now = std::chrono::steady_clock::now();
    report->AddStage(stage, std::chrono::duration<double>(now - stage_start).count());
    stage_start = now;
  };

  std::unique_ptr<DataExporter> exporter = CreateExporter(record->import_kind(), &model);
  base::FilePath source = exporter->GetDatabasePath();
  std::wstring summary = exporter->Dump(source);
  if (!summary.empty())
    VLOG_AT(logging::LOG_PROGRESS) << summary;
  int32_t exported = exporter->ExportData();
  stage_done("Export");
  if (exported == 0)
    BuildDatabases(&model, GetDataFolder(), stage_done);
  exporter.reset();
  record->WriteEnd();
}
