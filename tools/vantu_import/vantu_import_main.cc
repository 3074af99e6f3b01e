// vantu-import: runs the data importer once, the way the player does. The
// importer runs on a worker thread; the main thread watches section
// "DBCheck" of "Vantu.ini" and shows the progress, then prints the outcome.

#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include "base/file_util.h"
#include "base/path_service.h"
#include "base/string_number_conversions.h"
#include "base/utf_string_conversions.h"
#include "tools/data_importer/data_importer_main.h"
#include "tools/data_importer/importer_names.h"
#include "tools/vantu_import/demo_profile.h"
#include "tools/vantu_import/host_options.h"
#include "tools/vantu_import/run_outcome.h"

namespace names = importer_names;

namespace {

constexpr auto kPollInterval = std::chrono::milliseconds(200);
constexpr int kBarWidth = 40;

// Shows the progress of the run: a bar on a terminal, else one line each
// time a value changes.
class ProgressView {
 public:
  ProgressView(bool quiet, bool terminal) : quiet_(quiet), terminal_(terminal) {}

  void Show(const std::wstring& import_progress, const std::wstring& update_progress) {
    if (quiet_)
      return;
    std::string label = "import";
    std::wstring value = import_progress;
    if (value.empty() && !update_progress.empty()) {
      label = "upgrade";
      value = update_progress;
    }
    if (value.empty() || (label == last_label_ && value == last_value_))
      return;
    last_label_ = label;
    last_value_ = value;
    int percent = std::clamp(base::WToI(value), 0, 100);
    if (terminal_) {
      int filled = percent * kBarWidth / 100;
      std::printf("\r%-7s [%s%s] %3d%%", label.c_str(), std::string(filled, '#').c_str(),
                  std::string(kBarWidth - filled, ' ').c_str(), percent);
      std::fflush(stdout);
      bar_shown_ = true;
    } else {
      std::printf("%s progress: %d%%\n", label.c_str(), percent);
    }
  }

  void Finish() {
    if (bar_shown_)
      std::printf("\n");
  }

 private:
  bool quiet_;
  bool terminal_;
  bool bar_shown_ = false;
  std::string last_label_;
  std::wstring last_value_;
};

int Run(const HostOptions& options) {
  ApplyHostEnvironment(options);
  base::FilePath app_data;
  // Unknown, the data folder is relative and the outcome shows nothing found.
  (void)base::PathService::Get(base::DIR_LOCAL_APP_DATA, &app_data);
  base::FilePath data_folder = base::ResolvePathCase(app_data.Append(names::kDataFolderName));
  base::FilePath ini = data_folder.Append(names::kSettingsFileName);
  size_t log_offset = LogSize(data_folder);

  if (!options.quiet)
    std::printf("Data folder: %s\n", base::WideToUTF8(data_folder.value()).c_str());

  std::atomic<bool> done{false};
  std::thread worker([&done] {
    DataImporterMain();
    done = true;
  });
  ProgressView view(options.quiet, isatty(STDOUT_FILENO));
  while (!done) {
    std::this_thread::sleep_for(kPollInterval);
    base::FilePath current = base::ResolvePathCase(ini);
    view.Show(ReadDBCheck(current, names::kKeyImportProgress),
              ReadDBCheck(current, names::kKeyUpdateProgress));
  }
  worker.join();
  base::FilePath current = base::ResolvePathCase(ini);
  view.Show(ReadDBCheck(current, names::kKeyImportProgress),
            ReadDBCheck(current, names::kKeyUpdateProgress));
  view.Finish();

  RunOutcome outcome = ReadRunOutcome(base::ResolvePathCase(data_folder), log_offset);
  std::printf("%s", DescribeOutcome(outcome).c_str());
  return ExitStatusOf(outcome);
}

}  // namespace

int main(int argc, char** argv) {
  HostOptions options;
  std::string error;
  if (!ParseHostOptions(argc, argv, &options, &error)) {
    std::fprintf(stderr, "vantu-import: %s\n\n%s", error.c_str(), kHostUsage);
    return 2;
  }
  if (options.help) {
    std::printf("%s", kHostUsage);
    return 0;
  }
  if (options.demo) {
    char folder[] = "/tmp/vantu-demo-XXXXXX";
    if (!mkdtemp(folder)) {
      std::fprintf(stderr, "vantu-import: cannot create a temporary folder\n");
      return 2;
    }
    base::FilePath root = base::FilePath::FromUTF8Unsafe(folder);
    base::FilePath registry = BuildDemoProfile(root, options.demo, &error);
    if (registry.empty()) {
      std::fprintf(stderr, "vantu-import: demo profile: %s\n", error.c_str());
      return 2;
    }
    options.profile = folder;
    options.registry = registry.AsUTF8Unsafe();
    if (!options.quiet)
      std::printf("Demo profile: %s\n", folder);
  }
  if (!ResolveProfileOptions(&options, &error)) {
    std::fprintf(stderr, "vantu-import: %s\n", error.c_str());
    return 2;
  }
  return Run(options);
}
