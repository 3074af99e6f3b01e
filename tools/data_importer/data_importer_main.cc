#include "tools/data_importer/data_importer_main.h"

#include <exception>
#include <string>

#include "base/command_line.h"
#include "base/file_util.h"
#include "base/path_service.h"
#include "base/windows_path.h"
#include "common/exception_report/crash_handler.h"
#include "logging/logging.h"
#include "tools/data_importer/data_folder.h"
#include "tools/data_importer/import_run.h"
#include "tools/data_importer/importer_names.h"
#include "tools/data_importer/installation_lookup.h"
#include "tools/data_importer/leftover_files.h"
#include "tools/data_importer/playlist_storage.h"
#include "tools/data_importer/progress_record.h"
#include "tools/data_importer/target_store/replacement_commit.h"
#include "tools/data_importer/task_decision.h"
#include "tools/data_importer/version2_upgrade.h"

namespace {

void RunTask(const std::wstring& task, const base::FilePath& data_folder,
             ProgressRecord* record) {
  if (IsTask(task, kTaskUpdateVersion2)) {
    RunVersion3Upgrade(record);
    return;  // the playlist storage stays untouched
  }
  if (IsTask(task, kTaskCopyVersion2)) {
    RunVersion2Copy(record);
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
  RefreshPlaylistStorage(data_folder);
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

  base::FilePath data_folder = GetDataFolder();
  RemoveStaleWorkFiles(data_folder);
  // A build killed between its two renames is completed before the task is
  // decided, so the decision sees both version-3 files or neither.
  bool replacement_complete = CompleteOrUndoReplacement(data_folder);
  std::wstring task = DecideTask(data_folder, source_folder);
  VLOG_AT(logging::LOG_PROGRESS) << importer_names::kTaskLogMarker << task << L"}, source folder {"
                                 << source_folder.value() << L"}.";

  ProgressRecord record;
  record.Initialise();
  if (!replacement_complete)
    record.ReportFailure(ProgressRecord::kStateBuildFailed);
  RunTask(task, data_folder, &record);
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
