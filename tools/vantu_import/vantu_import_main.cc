// vantu-import: runs the data importer once, the way the player does. The
// importer runs on a worker thread; the main thread watches section
// "DBCheck" of "Vantu.ini" and shows the progress, then tells what the run
// did from the import report it wrote.

#include <stdlib.h>

#if defined(_WIN32)
#include <io.h>

#include "base/command_line.h"
#include "base/windows_headers.h"

#include <shellapi.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "base/environment.h"
#include "base/file_util.h"
#include "base/string_number_conversions.h"
#include "base/time.h"
#include "base/utf_string_conversions.h"
#include "tools/data_importer/driver/data_importer_run.h"
#include "tools/data_importer/run_record/importer_names.h"
#include "tools/data_importer/run_record/report_history.h"
#include "tools/data_importer/data_importer_main.h"
#include "tools/vantu_import/data_folder_check.h"
#include "tools/vantu_import/demo_profile.h"
#include "tools/vantu_import/host_options.h"
#include "tools/vantu_import/run_outcome.h"

using namespace data_importer;  // the importer under use

namespace names = importer_names;

namespace {

// The terminal's width in columns (80 when it cannot be told).
int TerminalColumns() {
#if defined(_WIN32)
  CONSOLE_SCREEN_BUFFER_INFO info;
  if (GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info))
    return info.srWindow.Right - info.srWindow.Left + 1;
  return 80;
#else
  struct winsize size = {};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col ? size.ws_col : 80;
#endif
}

constexpr auto kPollInterval = std::chrono::milliseconds(100);

// Shows the progress of the run from its start: on a terminal one bar line
// with the elapsed time, redrawn in full each time (so it never ends half
// drawn) and ended by Finish(); otherwise one line each time a value
// changes.
class ProgressView {
 public:
  ProgressView(bool enabled, bool terminal) : m_enabled(enabled), m_terminal(terminal) {}

  void Show(const std::wstring& import_progress,
            const std::wstring& update_progress,
            const std::string& stage,
            double seconds) {
    if (!m_enabled)
      return;
    std::string label = "import";
    std::wstring value = import_progress;
    if (value.empty() && !update_progress.empty()) {
      label = "upgrade";
      value = update_progress;
    }
    int percent = value.empty() ? 0 : std::clamp(base::WToI(value), 0, 100);
    if (!m_terminal) {
      if (!value.empty() && (label != m_last_label || value != m_last_value))
        std::printf("%s progress: %d%%\n", label.c_str(), percent);
      m_last_label = label;
      m_last_value = value;
      return;
    }
    if (value.empty())
      label = "start";
    // The width is read at each redraw: the terminal may be resized.
    int columns = TerminalColumns();
    // "\r" and clearing to the end of the line redraw the bar in place.
    std::printf("\r%s\x1b[K", ProgressBarLine(label, percent, seconds, columns, stage).c_str());
    std::fflush(stdout);
    m_bar_shown = true;
  }

  void Finish() {
    if (m_bar_shown)
      std::printf("\n");
    m_bar_shown = false;
  }

 private:
  bool m_enabled;
  bool m_terminal;
  bool m_bar_shown = false;
  std::string m_last_label;
  std::wstring m_last_value;
};

// Set by Ctrl-C (SIGINT); the main thread looks at it while the import
// runs.
volatile std::sig_atomic_t g_interrupted = 0;

// The temporary folders to remove when Ctrl-C ends the program (the
// TemporaryFolder objects below are not destroyed then).
std::vector<std::string>& FoldersToRemoveOnInterrupt() {
  static std::vector<std::string> folders;
  return folders;
}

void OnInterrupt(int) {
  g_interrupted = 1;
}

// Ends the program after Ctrl-C, saying in what state the data folder was
// left: the importer is stopped where it stands, as a killed player would
// stop it, and the next run recovers from there.
[[noreturn]] void StopOnInterrupt(const base::FilePath& data_folder, bool started) {
  std::printf("\n");
  if (!started) {
    std::printf("Stopped before the import started: nothing was changed.\n");
  } else if (base::PathExists(data_folder.Append(names::kReplaceRecordName))) {
    std::printf(
        "Stopped while the new databases were replacing the old ones: the next run "
        "completes the replacement.\n");
  } else {
    std::printf(
        "Stopped before anything was replaced: the old databases are in place; the "
        "next run starts the import again.\n");
  }
  std::fflush(stdout);
  for (const std::string& folder : FoldersToRemoveOnInterrupt()) {
    std::error_code ignored;  // a leftover in the temporary folder is harmless
    std::filesystem::remove_all(folder, ignored);
  }
  std::_Exit(kExitInterrupted);
}

// Runs the importer on |context| on a worker thread and shows its progress
// until it returns.
void RunImporter(const RunContext& context, const base::FilePath& ini, ProgressView* view) {
  if (g_interrupted)
    StopOnInterrupt(context.m_data_folder, false);
  std::mutex mutex;
  std::condition_variable finished;
  bool done = false;
  // The stage the run is in, set on the worker's thread.
  std::string stage;
  RunContext observed = context;
  observed.m_stage_observer = [&](const std::string& entered) {
    std::lock_guard<std::mutex> lock(mutex);
    stage = entered;
  };
  auto start = std::chrono::steady_clock::now();
  std::thread worker([&] {
    RunDataImporter(observed);
    std::lock_guard<std::mutex> lock(mutex);
    done = true;
    finished.notify_one();
  });
  // The section holds the previous run's values until this run resets it:
  // they are not shown as this run's.
  const std::wstring previous_import =
      ReadDBCheck(base::ResolvePathCase(ini), names::kKeyImportProgress);
  const std::wstring previous_update =
      ReadDBCheck(base::ResolvePathCase(ini), names::kKeyUpdateProgress);
  bool reset_seen = previous_import.empty() && previous_update.empty();
  auto show = [&] {
    base::FilePath current = base::ResolvePathCase(ini);
    std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    std::wstring import_progress = ReadDBCheck(current, names::kKeyImportProgress);
    std::wstring update_progress = ReadDBCheck(current, names::kKeyUpdateProgress);
    reset_seen =
        reset_seen || import_progress != previous_import || update_progress != previous_update;
    if (!reset_seen) {
      import_progress.clear();
      update_progress.clear();
    }
    std::string current_stage;
    {
      std::lock_guard<std::mutex> lock(mutex);
      current_stage = done ? std::string() : stage;
    }
    view->Show(import_progress, update_progress, current_stage, elapsed.count());
  };
  std::unique_lock<std::mutex> lock(mutex);
  while (!done) {
    lock.unlock();
    if (g_interrupted)
      StopOnInterrupt(context.m_data_folder, true);
    show();
    lock.lock();
    finished.wait_for(lock, kPollInterval, [&] { return done; });
  }
  lock.unlock();
  worker.join();
  show();
  view->Finish();
}

// Removes a temporary folder of this run (the demo profile, the dry run's
// copy) when the program ends, unless it is to be kept.
class TemporaryFolder {
 public:
  TemporaryFolder() = default;
  ~TemporaryFolder() {
    if (!m_path.empty() && !m_keep) {
      // A leftover in the temporary folder is harmless.
      (void)base::DeleteFile(base::FilePath::FromUTF8Unsafe(m_path), true);
    }
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  // Creates <temporary folder>/<prefix>XXXXXX; false when it cannot.
  bool Create(const char* prefix, bool keep) {
    base::FilePath made;
    if (!base::CreateNewTempDirectory(base::UTF8ToWide(prefix), &made))
      return false;
    m_path = made.AsUTF8Unsafe();
    m_keep = keep;
    if (!keep)
      FoldersToRemoveOnInterrupt().push_back(m_path);
    return true;
  }
  const std::string& path() const { return m_path; }

 private:
  std::string m_path;
  bool m_keep = false;
};

bool StandardOutputIsTerminal() {
#if defined(_WIN32)
  return _isatty(_fileno(stdout)) != 0;
#else
  return isatty(STDOUT_FILENO) != 0;
#endif
}

#if defined(_WIN32)
// The arguments as UTF-8 from the wide command line (argv holds them in the
// ANSI code page, which loses characters).
std::vector<std::string> Utf8Arguments() {
  std::vector<std::string> args;
  int count = 0;
  wchar_t** wide = CommandLineToArgvW(::GetCommandLineW(), &count);
  if (!wide)
    return args;
  for (int i = 0; i < count; ++i)
    args.push_back(base::WideToUTF8(wide[i]));
  LocalFree(wide);
  return args;
}
#endif

int Fail(int status, const std::string& message) {
  std::fprintf(stderr, "vantu-import: %s\n", message.c_str());
  return status;
}

// The files of |folder| with their sizes and modification times, to tell
// whether a run wrote into it.
std::string FolderState(const base::FilePath& folder) {
  std::string state;
  std::error_code error;  // a folder that cannot be listed has no files
  for (const auto& entry : std::filesystem::directory_iterator(folder.AsUTF8Unsafe(), error)) {
    base::FileInfo info;
    if (base::GetFileInfo(base::FilePath::FromUTF8Unsafe(entry.path().string()), &info)) {
      state += entry.path().filename().string() + " " + std::to_string(info.size) + " " +
               std::to_string(info.last_modified) + "\n";
    }
  }
  return state;
}

int Run(const HostOptions& options, RunContext context, TemporaryFolder* dry_run_folder) {
  base::FilePath real_data_folder = context.m_data_folder;
  if (real_data_folder.empty())
    return Fail(kExitFailed, "no local application-data folder: give --local-appdata or --profile");
  base::FilePath data_folder = real_data_folder;
  std::string error;

  if (options.dry_run) {
    // The same import, with the data folder redirected to a copy of it.
    if (!dry_run_folder->Create("vantu-dry-run-", options.keep))
      return Fail(kExitFailed, "cannot create a temporary folder for the dry run");
    base::FilePath temp = base::FilePath::FromUTF8Unsafe(dry_run_folder->path());
    data_folder = temp.Append(names::kDataFolderName);
    if (base::PathExists(real_data_folder)) {
      if (!base::DirectoryExists(real_data_folder))
        return Fail(kExitFailed, "data folder " + real_data_folder.AsUTF8Unsafe() + ": " +
                                     std::strerror(ENOTDIR));
      if (!CopyFolder(real_data_folder, data_folder, &error))
        return Fail(kExitFailed, error);
    }
    SetLocalAppData(temp, &context);
  }
  if (!CheckDataFolder(data_folder, &error))
    return Fail(kExitFailed, error);

  base::FilePath ini = data_folder.Append(names::kSettingsFileName);
  // The run's report is the one it adds to the history of runs.
  base::FilePath report_before = LatestRunReport(data_folder);
  // Today's backup folder, as the importer names it; shown only when this
  // run wrote into it.
  base::FilePath backup =
      data_folder.Append(L"Backup").Append(base::Time::Now().ToLocalDateString());
  std::string backup_before = FolderState(backup);
  bool text = !options.json && !options.quiet;
  ProgressView view(text, StandardOutputIsTerminal() && !options.verbose);
  RunImporter(context, ini, &view);

  // The run must have left both its record in "DBCheck" and a new report.
  base::FilePath report_path = LatestRunReport(data_folder);
  base::Value report;
  if (report_path.empty() || report_path == report_before || !ReadReport(report_path, &report)) {
    return Fail(kExitFailed, "the importer wrote no report in " + data_folder.AsUTF8Unsafe() +
                                 "; see " + data_folder.Append(names::kLogFileName).AsUTF8Unsafe());
  }
  if (ReadDBCheck(base::ResolvePathCase(ini), names::kKeySourceEmpty).empty()) {
    return Fail(kExitFailed,
                "the importer could not write section DBCheck of " + ini.AsUTF8Unsafe());
  }

  if (options.json) {
    std::printf("%s\n", report.dump(2, ' ', false, base::Value::error_handler_t::replace).c_str());
    return ExitStatusOf(report);
  }
  // The import the data folder's databases come from, unless this run made
  // them (a folder never imported into has none).
  base::FilePath last_import_path = data_folder.Append(names::kReportFileName);
  base::Value last_import;
  if (base::PathExists(last_import_path) && !ReadReport(last_import_path, &last_import))
    last_import = base::Value();
  std::printf("%s\n", VerdictLine(report, last_import).c_str());
  if (options.quiet)
    return ExitStatusOf(report);
  if (!options.profile.empty() && options.registry.empty())
    std::printf("The profile %s has no NTUSER.DAT: no registry was read.\n",
                options.profile.c_str());
  // "Nothing to import" shows where the run looked (--verbose shows it for
  // every run, with the details).
  if (ReportTask(report).empty() && !options.verbose)
    std::printf("%s", LookupLines(report).c_str());

  std::printf("Task:          %s\n", TaskInWords(ReportTask(report)).c_str());
  // What a version-2 task ended with, from the report like every other
  // figure (the report of any other task holds null there).
  if (report.contains("upgrade") && report["upgrade"].is_object())
    std::printf("Done:          %s\n", DescribeUpgradeResult(report["upgrade"].dump()).c_str());
  if (options.dry_run) {
    std::printf(
        "Dry run:       nothing was changed; the import ran on a copy of the data folder "
        "in %s (%s)\n",
        dry_run_folder->path().c_str(), options.keep ? "kept" : "removed");
  }
  std::printf("Data folder:   %s\n", real_data_folder.AsUTF8Unsafe().c_str());
  if (!options.dry_run || options.keep) {
    std::printf("Log:           %s\n",
                data_folder.Append(names::kLogFileName).AsUTF8Unsafe().c_str());
    std::string backup_after = FolderState(backup);
    if (!backup_after.empty() && backup_after != backup_before)
      std::printf("Backup folder: %s\n", backup.AsUTF8Unsafe().c_str());
    std::printf("Report:        %s\n", report_path.AsUTF8Unsafe().c_str());
    if (!last_import.is_null() && !FollowedImport(report, last_import).empty())
      std::printf("Last import:   %s\n", last_import_path.AsUTF8Unsafe().c_str());
  }
  if (options.verbose || options.dry_run)
    std::printf("%s", DescribeDetails(report).c_str());
  return ExitStatusOf(report);
}

}  // namespace

int main(int argc, char** argv) {
#if defined(_WIN32)
  std::vector<std::string> utf8_args = Utf8Arguments();
  std::vector<char*> utf8_argv;
  for (std::string& arg : utf8_args)
    utf8_argv.push_back(arg.data());
  utf8_argv.push_back(nullptr);
  if (!utf8_args.empty()) {
    argc = static_cast<int>(utf8_args.size());
    argv = utf8_argv.data();
  }
#endif
  std::signal(SIGINT, OnInterrupt);
  HostOptions options;
  std::string error;
  if (!ParseHostOptions(argc, argv, &options, &error))
    return Fail(kExitUsage, error + " (see --help)");
  if (options.help) {
    std::printf("%s", HostUsage().c_str());
    return kExitImported;
  }
  if (options.version) {
    std::printf("vantu-import %s (import report version 1)\n", VANTU_VERSION);
    return kExitImported;
  }
  if (!CheckHostPaths(options, &error))
    return Fail(kExitUsage, error);

  TemporaryFolder demo_folder;
  if (options.demo) {
    if (!demo_folder.Create("vantu-demo-", options.keep))
      return Fail(kExitFailed, "cannot create a temporary folder for the demo");
    base::FilePath root = base::FilePath::FromUTF8Unsafe(demo_folder.path());
    base::FilePath registry = options.demo == 8
                                  ? BuildCurrentGenerationDemo(root, options.demo_version, &error)
                                  : BuildDemoProfile(root, options.demo, &error);
    if (registry.empty())
      return Fail(kExitFailed, "demo profile: " + error);
    options.profile = demo_folder.path();
    options.registry = registry.AsUTF8Unsafe();
    if (!options.quiet && !options.json) {
      std::printf("Demo profile: %s%s\n", demo_folder.path().c_str(),
                  options.keep ? " (kept)" : " (removed at exit; --keep keeps it)");
    }
  }
  if (!ResolveProfileOptions(&options, &error))
    return Fail(kExitUsage, error);
  RunContext context = HostRunContext(options);
  if (!CheckSourceFolder(options, context, &error))
    return Fail(kExitUsage, error);
  TemporaryFolder dry_run_folder;
  return Run(options, std::move(context), &dry_run_folder);
}
