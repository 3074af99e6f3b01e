#include "tools/data_importer/driver/import_run.h"

#include <chrono>
#include <memory>

#include "logging/logging.h"
#include "tools/data_importer/target_store/build_sequence.h"
#include "tools/data_importer/source_readers/data_exporter.h"
#include "tools/data_importer/run_record/import_report.h"
#include "tools/data_importer/environment/data_folder.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/target_store/verify_database.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/driver/exporter_factory.h"

namespace data_importer {

void RunImport(const RunContext& context,
               ProgressRecord* record,
               const BuildStageCallback& stage_done) {
  ImportModel model;
  model.m_progress = record;
  model.m_ansi_code_page = record->ansi_code_page();

  // Each stage's time goes into the import report.
  ImportReport* report = record->report();
  auto stage_start = std::chrono::steady_clock::now();
  auto timed_stage_done = [&](const char* stage) {
    auto now = std::chrono::steady_clock::now();
    report->AddStage(stage, std::chrono::duration<double>(now - stage_start).count());
    if (stage_done)
      stage_done(stage);
    stage_start = std::chrono::steady_clock::now();
  };

  std::unique_ptr<DataExporter> exporter = CreateExporter(context, record->import_kind(), &model);
  base::FilePath source = exporter->GetDatabasePath();
  std::wstring summary = exporter->Dump(source);
  if (!summary.empty())
    VLOG_AT(logging::LOG_PROGRESS) << summary;
  ExportResult exported = exporter->ExportData();
  timed_stage_done("Export");
  if (exported == ExportResult::kExported) {
    // The build records its failures in "DBCheck" itself; the log says why.
    base::Status built = BuildDatabases(&model, context.m_data_folder, timed_stage_done);
    if (!built.ok())
      VLOG_AT(logging::LOG_FAILURE)
          << L"Build of the new databases FAILED: {" << built.message() << L"}.";
    // What the finished files held when they were read back (before they
    // replaced the old ones), beside what the writers sent.
    for (const auto& [name, verified] : {std::pair{"VTMusicV3.db", &model.m_verified_music},
                                         std::pair{"playlistV3.db", &model.m_verified_playlist}}) {
      if (!verified->row_counts.empty() || !verified->error.empty())
        report->SetCountedRows(name, verified->row_counts, verified->ok, verified->error);
    }
  }
  exporter.reset();
  record->WriteEnd();
}

}  // namespace data_importer
