#include "tools/data_importer/data_importer_main.h"
#include "tools/data_importer/driver/data_importer_run.h"

#include <chrono>
#include <exception>
#include <string>

#include "base/command_line.h"
#include "base/file_util.h"
#include "base/path_service.h"
#include "base/time.h"
#include "base/utf_string_conversions.h"
#include "base/windows_path.h"
#include "common/exception_report/crash_handler.h"
#include "logging/logging.h"
#include "tools/data_importer/environment/ansi_code_page.h"
#include "tools/data_importer/environment/data_folder.h"
#include "tools/data_importer/run_record/import_report.h"
#include "tools/data_importer/driver/import_run.h"
#include "tools/data_importer/run_record/importer_names.h"
#include "tools/data_importer/environment/installation_lookup.h"
#include "tools/data_importer/driver/leftover_files.h"
#include "tools/data_importer/driver/playlist_storage.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/run_record/report_history.h"
#include "tools/data_importer/target_store/replacement_commit.h"
#include "tools/data_importer/driver/task_decision.h"
#include "tools/data_importer/version3_upgrade/upgrade_result.h"
#include "tools/data_importer/version3_upgrade/upgrade_tasks.h"

namespace data_importer {

namespace {

// Keeps what a version-2 task did for the host, in the import report and
// in a file of its own; the run goes on without the file.
void KeepUpgradeResult(const base::FilePath& data_folder,
                       const UpgradeResult& result,
                       ProgressRecord* record) {
  record->report()->SetUpgradeOutcome(UpgradeResultJson(result));
  if (!WriteUpgradeResult(data_folder, result)) {
    VLOG_AT(logging::LOG_FAILURE) << L"DataImporterMain: writing {" << kUpgradeResultFile
                                  << L"} FAILED.";
  }
}

// The account of the run, for the player's support and the host program:
// every run's report joins the history of runs; "ImportReport.json" is
// replaced only by a run that imported, so the record of what the data
// folder's databases were made from outlives the upgrades and the runs that
// found nothing.
void KeepReport(const base::FilePath& data_folder, bool imported, ImportReport* report) {
  if (data_folder.empty())
    return;
  double now = base::Time::Now().ToDoubleT();
  std::string stamp = UtcTimeStamp(now);
  // "20261124T234313Z" -> "2026-11-24T23:43:13Z".
  report->SetEndTime(stamp.substr(0, 4) + "-" + stamp.substr(4, 2) + "-" + stamp.substr(6, 5) +
                     ":" + stamp.substr(11, 2) + ":" + stamp.substr(13));
  if (KeepRunReport(data_folder, report->task(), now, report->ToText()).empty()) {
    VLOG_AT(logging::LOG_FAILURE)
        << L"DataImporterMain: cannot write the run's report into {"
        << data_folder.Append(importer_names::kReportHistoryFolder).value() << L"}, error code {"
        << base::GetLastSystemError() << L"}.";
  }
  if (imported && !report->Write(data_folder)) {
    VLOG_AT(logging::LOG_FAILURE) << L"DataImporterMain: cannot write {"
                                  << data_folder.Append(importer_names::kReportFileName).value()
                                  << L"}, error code {" << base::GetLastSystemError() << L"}.";
  }
}

void RunTask(const std::wstring& task, const RunContext& context, ProgressRecord* record) {
  const base::FilePath& data_folder = context.m_data_folder;
  if (IsTask(task, kTaskUpgradeVersion3)) {
    KeepUpgradeResult(data_folder, RunVersion3Upgrade(data_folder, record), record);
    return;  // the playlist storage stays untouched
  }
  if (IsTask(task, kTaskCopyVersion2)) {
    KeepUpgradeResult(data_folder, RunVersion2Copy(data_folder, record), record);
  } else if (base::PathExists(data_folder.Append(importer_names::kMusicDatabaseV2))) {
    // Already imported by an earlier release.
    record->WriteImportStart();
    return;
  } else if (int kind = ImportKindOfTask(task)) {
    record->set_import_kind(kind);
    record->SetProgress(10);
    RunImport(context, record);
    record->SetProgress(100);
  }
  // The refresh only tells the player that its lists changed; the run's
  // outcome stays as it is whatever it answers.
  StorageRefresh refresh = RefreshPlaylistStorage(data_folder);
  VLOG_AT(refresh == StorageRefresh::kWriteFailed ? logging::LOG_FAILURE : logging::LOG_PROGRESS)
      << L"Playlist storage: {" << StorageRefreshText(refresh) << L"}.";
}

void Run(const RunContext& context) {
  base::FilePath exe_folder;
  // Unknown, the crash records name an empty executable folder.
  (void)base::PathService::Get(base::DIR_EXE, &exe_folder);
  exception_report::ScopedCrashHandler crash_handler(exe_folder, GetCrashFolder(context));

  RunStartupRegistryStep();

  auto decision_start = std::chrono::steady_clock::now();
  const base::FilePath& data_folder = context.m_data_folder;
  if (!data_folder.empty() && !base::DirectoryExists(data_folder))
    // A folder that cannot be made shows when its files are written.
    (void)base::CreateDirectory(data_folder);
  // A build killed between its two renames is completed before the task is
  // decided, so the decision sees both version-3 files or neither. Without a
  // data folder there is nothing to clean (and no relative path may be).
  bool replacement_complete = true;
  if (!data_folder.empty()) {
    RemoveStaleWorkFiles(data_folder);
    replacement_complete = CompleteOrUndoReplacement(data_folder);
  }
  TaskSearch search;
  std::wstring task = DecideTask(context, &search);
  base::Value lookup = DescribeTaskSearch(context, search);
  for (const auto& line : lookup["lines"])
    VLOG_AT(logging::LOG_PROGRESS)
        << L"Looked for earlier installations: " << base::UTF8ToWide(line.get<std::string>());
  std::chrono::duration<double> decision_time = std::chrono::steady_clock::now() - decision_start;
  VLOG_AT(logging::LOG_PROGRESS) << importer_names::kTaskLogMarker << task << L"}, source folder {"
                                 << context.m_source_folder.value() << L"}.";

  ImportReport report;
  report.set_stage_observer(context.m_stage_observer);
  report.SetTask(task, ImportKindOfTask(task));
  report.AddStage("TaskDecision", decision_time.count());
  report.SetLookup(std::move(lookup));
  ProgressRecord record;
  record.set_report(&report);
  record.SetAnsiCodePage(context.m_ansi_code_page);
  record.Initialise(data_folder);
  if (!replacement_complete)
    record.ReportFailure(ProgressRecord::kStateBuildFailed);
  ClearUpgradeResult(data_folder);
  RunTask(task, context, &record);

  KeepReport(data_folder, record.import_kind() != 0, &report);
}

// Runs the whole import; nothing escapes.
void RunAndReport(const RunContext& context) {
  try {
    Run(context);
  } catch (const std::exception& e) {
    VLOG_AT(logging::LOG_ASSERT) << L"DataImporterMain: unexpected exception {" << e.what()
                                 << L"}.";
  } catch (...) {
    VLOG_AT(logging::LOG_ASSERT) << L"DataImporterMain: unexpected exception.";
  }
}

}  // namespace

RunContext RunContextOfProcess() {
  RunContext context = RunContextFromEnvironment();
  base::CommandLine::Init(0, nullptr);
  base::CommandLine command_line = base::CommandLine::FromString(base::GetCommandLineW());
  base::CommandLine::SwitchMap switches = command_line.GetSwitches();
  auto source = switches.find("i");
  // The player may pass a Windows path ("D:\\Old Player\\data").
  if (source != switches.end())
    context.m_source_folder = base::MapWindowsPath(source->second, context.m_drives);
  return context;
}

void RunDataImporter(const RunContext& context) {
  // Nothing may escape into the caller's thread. The log is opened once for
  // the run.
  try {
    logging::ScopedLogging logging(
        {context.m_log_file, context.m_log_level, context.m_log_to_stderr});
    RunAndReport(context);
  } catch (...) {
    // Only starting the log can get here (no memory): nowhere to report to.
  }
}

extern "C" __attribute__((visibility("default"))) void DataImporterMain() {
  try {
    RunDataImporter(RunContextOfProcess());
  } catch (...) {
    // Only reading the environment can get here (no memory): nowhere to
    // report to.
  }
}

}  // namespace data_importer
