#include "tools/data_importer/data_importer_main.h"

#include <chrono>
#include <exception>
#include <string>

#include "base/command_line.h"
#include "base/file_util.h"
#include "base/path_service.h"
#include "base/windows_path.h"
#include "common/exception_report/crash_handler.h"
#include "logging/logging.h"
#include "tools/data_importer/environment/data_folder.h"
#include "tools/data_importer/run_record/import_report.h"
#include "tools/data_importer/driver/import_run.h"
#include "tools/data_importer/run_record/importer_names.h"
#include "tools/data_importer/environment/installation_lookup.h"
#include "tools/data_importer/driver/leftover_files.h"
#include "tools/data_importer/driver/playlist_storage.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/target_store/replacement_commit.h"
#include "tools/data_importer/driver/task_decision.h"
#include "tools/data_importer/version3_upgrade/upgrade_result.h"
#include "tools/data_importer/version3_upgrade/upgrade_tasks.h"

namespace {

// Keeps what a version-2 task did for the host, in the import report and
// in a file of its own; the run goes on without the file.
void KeepUpgradeResult(const base::FilePath& data_folder, const UpgradeResult& result,
                       ProgressRecord* record) {
  record->report()->SetUpgradeOutcome(UpgradeResultJson(result));
  if (!WriteUpgradeResult(data_folder, result)) {
    VLOG_AT(logging::LOG_FAILURE) << L"DataImporterMain: writing {" << kUpgradeResultFile
                                  << L"} FAILED.";
  }
}

void RunTask(const std::wstring& task, const base::FilePath& data_folder,
             ProgressRecord* record) {
  if (IsTask(task, kTaskUpgradeVersion3)) {
    KeepUpgradeResult(data_folder, RunVersion3Upgrade(record), record);
    return;  // the playlist storage stays untouched
  }
  if (IsTask(task, kTaskCopyVersion2)) {
    KeepUpgradeResult(data_folder, RunVersion2Copy(record), record);
  } else if (base::PathExists(data_folder.Append(importer_names::kMusicDatabaseV2))) {
    // Already imported by an earlier release.
    record->WriteImportStart();
    return;
  } else if (int kind = ImportKindOfTask(task)) {
    record->set_import_kind(kind);
    record->SetProgress(10);
    RunImport(record);
    record->SetProgress(100);
  }
  // The refresh only tells the player that its lists changed; the run's
  // outcome stays as it is whatever it answers.
  StorageRefresh refresh = RefreshPlaylistStorage(data_folder);
  VLOG_AT(refresh == StorageRefresh::kWriteFailed ? logging::LOG_FAILURE : logging::LOG_PROGRESS)
      << L"Playlist storage: {" << StorageRefreshText(refresh) << L"}.";
}

void Run() {
  base::FilePath exe_folder;
  // Unknown, the crash records name an empty executable folder.
  (void)base::PathService::Get(base::DIR_EXE, &exe_folder);
  exception_report::ScopedCrashHandler crash_handler(exe_folder, GetCrashFolder());

  base::CommandLine::Init(0, nullptr);
  RunStartupRegistryStep();

  base::CommandLine command_line = base::CommandLine::FromString(base::GetCommandLineW());
  base::CommandLine::SwitchMap switches = command_line.GetSwitches();
  auto source = switches.find("i");
  // The player may pass a Windows path ("D:\\Old Player\\data").
  base::FilePath source_folder =
      source == switches.end() ? base::FilePath() : base::MapWindowsPath(source->second);

  auto decision_start = std::chrono::steady_clock::now();
  base::FilePath data_folder = GetDataFolder();
  // A build killed between its two renames is completed before the task is
  // decided, so the decision sees both version-3 files or neither. Without a
  // data folder there is nothing to clean (and no relative path may be).
  bool replacement_complete = true;
  if (!data_folder.empty()) {
    RemoveStaleWorkFiles(data_folder);
    replacement_complete = CompleteOrUndoReplacement(data_folder);
  }
  std::wstring task = DecideTask(data_folder, source_folder);
  std::chrono::duration<double> decision_time = std::chrono::steady_clock::now() - decision_start;
  VLOG_AT(logging::LOG_PROGRESS) << importer_names::kTaskLogMarker << task << L"}, source folder {"
                                 << source_folder.value() << L"}.";

  ImportReport report;
  report.SetTask(task, ImportKindOfTask(task));
  report.AddStage("TaskDecision", decision_time.count());
  ProgressRecord record;
  record.set_report(&report);
  record.Initialise(GetDataFolder());
  if (!replacement_complete)
    record.ReportFailure(ProgressRecord::kStateBuildFailed);
  ClearUpgradeResult(data_folder);
  RunTask(task, data_folder, &record);

  // The account of the run, for the player's support and the host program.
  if (!data_folder.empty() && !report.Write(data_folder)) {
    VLOG_AT(logging::LOG_FAILURE) << L"DataImporterMain: cannot write {"
                                  << data_folder.Append(importer_names::kReportFileName).value()
                                  << L"}, error code {" << base::GetLastSystemError() << L"}.";
  }
}

// Runs the whole import; nothing escapes.
void RunAndReport() {
  try {
    Run();
  } catch (const std::exception& e) {
    VLOG_AT(logging::LOG_ASSERT) << L"DataImporterMain: unexpected exception {"
                                 << e.what() << L"}.";
  } catch (...) {
    VLOG_AT(logging::LOG_ASSERT) << L"DataImporterMain: unexpected exception.";
  }
}

}  // namespace

extern "C" __attribute__((visibility("default"))) void DataImporterMain() {
  // Nothing may escape into the player's thread. The log is the data
  // folder's, opened once for the run, with the level and the stderr switch
  // read once from the environment.
  try {
    logging::ScopedLogging logging(logging::LogSettingsFromEnvironment(GetLogFile()));
    RunAndReport();
  } catch (...) {
    // Only starting the log can get here (no memory): nowhere to report to.
  }
}
