// Measures the writers and the whole database build on a library of
// 100,000 files against the engine's own pace: a baseline that executes the
// very statement texts the build sent (recorded through SQLite's trace hook
// in an earlier run) and then encrypts, as the build does.

#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cwchar>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/file_util.h"
#include "benchmarks/sample_library.h"
#include "testing/fixtures/generation6_fixture.h"
#include "testing/fixtures/generation7_fixture.h"
#include "tools/data_importer/data_importer_main.h"
#include "testing/test_support.h"
#include "tools/data_importer/target_store/build_sequence.h"
#include "tools/data_importer/database_helper/database_helper.h"
#include "tools/data_importer/environment/run_context.h"
#include "tools/data_importer/run_record/importer_names.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/source_readers/v6_data_exporter/v6_data_exporter.h"
#include "tools/data_importer/source_readers/v7_data_exporter/v7_data_exporter.h"

using namespace data_importer;  // the importer under use

namespace {

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point since) {
  return std::chrono::duration<double>(Clock::now() - since).count();
}

double CpuSeconds(const rusage& usage) {
  return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// Processor time this process has used so far. On a machine others use too,
// a case's processor time against its baseline's holds better than the
// times on the clock, which count the waits for a processor.
double CpuSeconds() {
  rusage usage{};
  return getrusage(RUSAGE_SELF, &usage) == 0 ? CpuSeconds(usage) : 0;
}

// Statement texts as SQLite runs them, per connection.
struct Recording {
  std::vector<std::string> statements;
};

int RecordStatement(unsigned type, void* context, void*, void* text) {
  if (type == SQLITE_TRACE_STMT) {
    const char* sql = static_cast<const char*>(text);
    // Statements run from inside a trigger or a pragma start with "--".
    if (sql[0] != '-' || sql[1] != '-')
      static_cast<Recording*>(context)->statements.push_back(sql);
  }
  return 0;
}

void StartRecording(DatabaseHelper* helper, Recording* recording) {
  sqlite3_trace_v2(helper->connection()->db(), SQLITE_TRACE_STMT, RecordStatement, recording);
}

void StopRecording(DatabaseHelper* helper) {
  if (helper && helper->connection()->db())
    sqlite3_trace_v2(helper->connection()->db(), 0, nullptr, nullptr);
}

// A plain target database set up as the build sets up its temporary files;
// null when it cannot be opened.
std::unique_ptr<DatabaseHelper> OpenTarget(const base::FilePath& path) {
  auto helper = std::make_unique<DatabaseHelper>();
  if (!helper->OpenAndCheck(path) || !helper->connection()->Execute("PRAGMA synchronous=OFF") ||
      !helper->connection()->Execute("PRAGMA journal_mode=MEMORY"))
    return nullptr;
  return helper;
}

void Replay(DatabaseHelper* helper, const Recording& recording) {
  for (const std::string& statement : recording.statements) {
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v2(helper->connection()->db(), statement.c_str(), -1, &stmt, nullptr) ==
        SQLITE_OK) {
      while (sqlite3_step(stmt) == SQLITE_ROW) {
      }
    }
    sqlite3_finalize(stmt);
  }
}

// The id maps the build fills, emptied before the model is built again.
void ClearIdMaps(ImportModel* model) {
  model->m_music_id_map.clear();
  model->m_mv_id_map.clear();
  model->m_hash_id_map.clear();
  model->m_folder_id_map.clear();
}

// The engine's pace for one model's build: an untimed build records the
// statements it ran; they are then executed on fresh files and both files
// encrypted, as the build does.
struct Baseline {
  double statements_s = 0;
  double export_s = 0;
  double cpu_s = 0;  // processor time of both
  size_t statements = 0;
  bool failed = false;  // the encryption failed: the figures mean nothing

  double seconds() const { return statements_s + export_s; }
  void Report(benchmark::State* state) const {
    state->counters["baseline_statements_s"] = statements_s;
    state->counters["baseline_export_s"] = export_s;
    state->counters["statements"] = static_cast<double>(statements);
  }
};

Baseline MeasureBaseline(ImportModel* model) {
  Recording music_statements, playlist_statements;
  {
    testing_support::ScopedTempDir record_dir;
    ClearIdMaps(model);
    // Only the statements are wanted here; the files go with the folder.
    (void)BuildDatabases(model, record_dir.path(), [&](const char* stage) {
      if (std::string(stage) == "Prepare") {
        StartRecording(model->m_music_db.get(), &music_statements);
        StartRecording(model->m_playlist_db.get(), &playlist_statements);
      } else if (std::string(stage) == "ListCountReport") {
        StopRecording(model->m_music_db.get());
        StopRecording(model->m_playlist_db.get());
      }
    });
  }
  Baseline baseline;
  testing_support::ScopedTempDir baseline_dir;
  double cpu_start = CpuSeconds();
  auto start = Clock::now();
  auto music = OpenTarget(baseline_dir.path().Append(L"music.db"));
  auto playlists = OpenTarget(baseline_dir.path().Append(L"playlist.db"));
  Replay(music.get(), music_statements);
  Replay(playlists.get(), playlist_statements);
  baseline.statements_s = Seconds(start);
  start = Clock::now();
  if (!playlists->connection()->DbEncrypt(kVersion3DatabaseKey) ||
      !music->connection()->DbEncrypt(kVersion3DatabaseKey))
    baseline.failed = true;
  baseline.export_s = Seconds(start);
  baseline.cpu_s = CpuSeconds() - cpu_start;
  baseline.statements = music_statements.statements.size() + playlist_statements.statements.size();
  return baseline;
}

constexpr int kFiles = 100000;

void BM_ShareFileItems(benchmark::State& state) {
  ImportModel model;
  FillSampleLibrary(&model, kFiles, 0, 0, 0);
  for (auto _ : state) {
    state.PauseTiming();
    testing_support::ScopedTempDir dir;
    model.m_music_id_map.clear();
    model.m_mv_id_map.clear();
    model.m_hash_id_map.clear();
    model.m_music_db = OpenTarget(dir.path().Append(L"music.db"));
    if (!model.m_music_db) {
      state.SkipWithError("the target database cannot be opened");
      break;
    }
    Recording recording;
    StartRecording(model.m_music_db.get(), &recording);
    state.ResumeTiming();

    model.WriteShareFileItems();

    state.PauseTiming();
    StopRecording(model.m_music_db.get());
    model.m_music_db.reset();
    auto baseline_db = OpenTarget(dir.path().Append(L"baseline.db"));
    if (!baseline_db) {
      state.SkipWithError("the baseline database cannot be opened");
      break;
    }
    auto start = Clock::now();
    Replay(baseline_db.get(), recording);
    state.counters["baseline_rows_per_s"] = kFiles / Seconds(start);
    state.ResumeTiming();
  }
  state.counters["rows_per_s"] = benchmark::Counter(
      static_cast<double>(kFiles) * state.iterations(), benchmark::Counter::kIsRate);
  state.counters["peak_MB"] = PeakMemoryMegabytes();
}
BENCHMARK(BM_ShareFileItems)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

// Our own per-row work alone: the statement texts and the id maps, with no
// database to execute them.
void BM_ShareFileItemsWithoutEngine(benchmark::State& state) {
  ImportModel model;
  FillSampleLibrary(&model, kFiles, 0, 0, 0);
  for (auto _ : state) {
    model.m_music_id_map.clear();
    model.m_mv_id_map.clear();
    model.m_hash_id_map.clear();
    model.WriteShareFileItems();
  }
  state.counters["rows_per_s"] = benchmark::Counter(
      static_cast<double>(kFiles) * state.iterations(), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_ShareFileItemsWithoutEngine)->Unit(benchmark::kMillisecond)->UseRealTime();

// The whole build: 100,000 files, 500 lists with 300,000 entries, 20,000
// downloads, encryption and replacement.
void BM_WholeBuild(benchmark::State& state) {
  ImportModel model;
  FillSampleLibrary(&model, kFiles, 500, 300000, 20000);

  for (auto _ : state) {
    testing_support::ScopedTempDir dir;
    ClearIdMaps(&model);
    std::map<std::string, double> stages;
    auto last = Clock::now();
    auto start = last;
    double cpu_start = CpuSeconds();
    base::Status built = BuildDatabases(&model, dir.path(), [&](const char* stage) {
      stages[stage] = Seconds(last);
      last = Clock::now();
    });
    double build = Seconds(start);
    double build_cpu = CpuSeconds() - cpu_start;
    if (!built.ok())
      state.SkipWithError("the build failed");
    state.PauseTiming();
    // Peak memory of the model and the build, before the recording below.
    // The figure is the process's high-water mark: it holds for the first
    // run of a process only (benchmarks/run.sh runs each in a process of
    // its own).
    state.counters["peak_MB"] = PeakMemoryMegabytes();

    Baseline baseline = MeasureBaseline(&model);
    state.ResumeTiming();

    for (const auto& [stage, seconds] : stages)
      state.counters["s_" + stage] = seconds;
    baseline.Report(&state);
    state.counters["build_s"] = build;
    state.counters["ratio_to_baseline"] = build / baseline.seconds();
    state.counters["cpu_ratio_to_baseline"] = build_cpu / baseline.cpu_s;
  }
}
BENCHMARK(BM_WholeBuild)->Unit(benchmark::kSecond)->Iterations(1)->UseRealTime();

// Runs |work| in a child process, so that the memory it takes is never
// this process's; answers whether it succeeded.
template <typename Work>
bool RunInChild(Work work) {
  std::fflush(nullptr);
  pid_t child = fork();
  if (child == 0)
    _exit(work() ? 0 : 1);
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child)
    return false;
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

constexpr char kImportChildSwitch[] = "--import-child";

// One timed run of DataImporterMain in a fresh process (this program again,
// started with kImportChildSwitch): its time becomes the iteration's, its
// processor time goes to |*cpu_seconds|, its peak memory to |*peak_mb|. A forked child alone would
// not do: it starts with the parent's resident pages (the model and the baseline of an earlier run)
// and its peak would count them. False (the benchmark skipped with an error) when the run failed.
bool TimedImportInChild(benchmark::State* state,
                        double* seconds,
                        double* cpu_seconds,
                        double* peak_mb) {
  testing_support::ScopedTempDir scratch;
  const std::string peak_file = scratch.path().Append(L"peak").AsUTF8Unsafe();
  std::fflush(nullptr);
  auto start = Clock::now();
  pid_t child = fork();
  if (child == 0) {
    execl("/proc/self/exe", "import_build_benchmark", kImportChildSwitch, peak_file.c_str(),
          static_cast<char*>(nullptr));
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  bool ok = child > 0 && wait4(child, &status, 0, &usage) == child && WIFEXITED(status) &&
            WEXITSTATUS(status) == 0;
  *seconds = Seconds(start);
  *cpu_seconds = CpuSeconds(usage);
  std::string peak;
  *peak_mb = ok && base::ReadFileToString(base::FilePath::FromUTF8Unsafe(peak_file), &peak)
                 ? std::strtod(peak.c_str(), nullptr)
                 : 0;
  state->SetIterationTime(*seconds);
  if (!ok)
    state->SkipWithError("the import run failed");
  return ok;
}

// The child's side of TimedImportInChild: the run, then its peak memory
// written to |peak_file|.
int RunImportChild(const char* peak_file) {
  DataImporterMain();
  return base::WriteFile(base::FilePath::FromUTF8Unsafe(peak_file),
                         std::to_string(PeakMemoryMegabytes()))
             ? 0
             : 1;
}

// A generation-6 installation under |profile|: the program folder "VanTa6"
// with a database of |items| music items and 300,000 list entries in
// |lists| lists, and the registry file "user.reg" that names it.
bool WriteGeneration6Profile(const base::FilePath& profile, int items, int lists) {
  base::FilePath program = profile.Append(L"VanTa6");
  V6V1Database source;
  for (int i = 1; i <= items; ++i) {
    V6Music music;
    music.id = i;
    music.title = L"\u5468\u6770\u502b - Don't stop \u7a3b\u9999 " + std::to_wstring(i);
    music.file_name = L"D:\\Music\\" + music.title + L".mp3";
    wchar_t hash[40];
    std::swprintf(hash, 40, L"%08X%024X", 0xC0FFEE, i);
    music.hash = hash;
    source.music.push_back(music);
  }
  for (int l = 1; l <= lists; ++l)
    source.lists.push_back({l, l == 1 ? 3 : 0, L"List " + std::to_wstring(l), 0, l});
  for (int item = 1; item <= 300000; ++item)
    source.items.push_back({item, 1 + item % lists, 1 + item * 7 % items, item, item % 5});
  return source.Write(program.Append(L"VTData.db")) &&
         base::WriteFile(program.Append(L"VanTa6.exe"), "") &&
         base::WriteFile(profile.Append(L"user.reg"), V6RegistryText(program));
}

// A generation-7 installation of |songs| music items under |profile|/roaming:
// 500 lists with 3 |songs| entries, |songs|/5 downloads and 50 radio
// channels.
bool WriteGeneration7Profile(const base::FilePath& profile, int songs) {
  V7SampleSize size;
  size.songs = songs;
  size.lists = 494;  // besides the sample's six lists of every type
  // The sample's own lists hold about 1.2 N entries; the rest make 3 N.
  size.list_entries = 3 * songs - (songs + songs / 10 + songs / 11);
  size.downloads = songs / 5;
  size.channels = 50;
  return WriteSampleV7Installation(profile.Append(L"roaming"), size);
}

// The whole run of DataImporterMain on a generation-6 installation of
// 100,000 music items and 300,000 list entries in as many lists as the
// argument says: copy, read, build, encrypt. Then, untimed: the read alone
// (the exporter into a fresh model) and the baseline of that model's build.
// The read phase must not grow with the number of lists.
void BM_Generation6Import(benchmark::State& state) {
  const int lists = static_cast<int>(state.range(0));
  testing_support::ScopedTempDir profile;
  // Built in a child process, so that the source's records leave nothing in
  // this process's memory.
  if (!RunInChild([&] { return WriteGeneration6Profile(profile.path(), kFiles, lists); })) {
    state.SkipWithError("cannot write the generation-6 installation");
    return;
  }
  testing_support::ScopedEnv env;
  env.Set("VANTU_REGISTRY_FILE", profile.path().Append(L"user.reg").AsUTF8Unsafe());
  env.Set("APPDATA", profile.path().Append(L"roaming").AsUTF8Unsafe());

  int run = 0;
  auto fresh_data_folder = [&] {
    base::FilePath local = profile.path().Append(L"local" + std::to_wstring(run++));
    // The data folder itself too: the driver makes it before the exporter
    // runs, and the read below has no driver.
    if (!base::CreateDirectory(local.Append(importer_names::kDataFolderName)))
      state.SkipWithError("the data folder cannot be created");
    env.Set("LOCALAPPDATA", local.AsUTF8Unsafe());
  };
  for (auto _ : state) {
    fresh_data_folder();
    // The run itself goes in a child process, which gives its own peak
    // memory.
    double peak_mb = 0;
    double end_to_end = 0;
    double end_to_end_cpu = 0;
    if (!TimedImportInChild(&state, &end_to_end, &end_to_end_cpu, &peak_mb))
      return;
    state.counters["end_to_end_s"] = end_to_end;
    state.counters["peak_MB"] = peak_mb;

    fresh_data_folder();
    ImportModel model;
    auto start = Clock::now();
    {
      RunContext context = RunContextFromEnvironment();
      V6DataExporter exporter(context, &model);
      if (exporter.ExportData() != ExportResult::kExported) {
        state.SkipWithError("the source cannot be read");
        return;
      }
    }
    state.counters["read_s"] = Seconds(start);
    Baseline baseline = MeasureBaseline(&model);
    baseline.Report(&state);
    state.counters["ratio_to_baseline"] = end_to_end / baseline.seconds();
    state.counters["cpu_ratio_to_baseline"] = end_to_end_cpu / baseline.cpu_s;
  }
}
BENCHMARK(BM_Generation6Import)
    ->Arg(100)
    ->Arg(500)
    ->Unit(benchmark::kSecond)
    ->Iterations(1)
    ->UseManualTime();

// The whole run of DataImporterMain on a generation-7 installation of N
// music items (argument), 500 lists with 3N entries, N/5 downloads and 50
// radio channels: copy, read, build, encrypt. The run itself goes in a child
// process, which gives its own peak memory; the baseline is the engine's
// pace for the build of what that run read (see MeasureBaseline).
void BM_Generation7Import(benchmark::State& state) {
  const int songs = static_cast<int>(state.range(0));
  testing_support::ScopedTempDir profile;
  if (!RunInChild([&] { return WriteGeneration7Profile(profile.path(), songs); })) {
    state.SkipWithError("cannot write the generation-7 source");
    return;
  }
  testing_support::ScopedEnv env;
  env.Set("VANTU_REGISTRY_FILE", profile.path().Append(L"none.reg").AsUTF8Unsafe());
  env.Set("APPDATA", profile.path().Append(L"roaming").AsUTF8Unsafe());

  int run = 0;
  for (auto _ : state) {
    base::FilePath local = profile.path().Append(L"local" + std::to_wstring(run++));
    if (!base::CreateDirectory(local)) {
      state.SkipWithError("the data folder cannot be created");
      return;
    }
    env.Set("LOCALAPPDATA", local.AsUTF8Unsafe());
    double peak_mb = 0;
    double import_s = 0;
    double import_cpu = 0;
    if (!TimedImportInChild(&state, &import_s, &import_cpu, &peak_mb))
      return;

    // What the run read, read again from its work copy, built at the
    // engine's pace.
    ImportModel model;
    RunContext context = RunContextFromEnvironment();
    V7DataExporter exporter(context, &model);
    auto read_start = Clock::now();
    if (exporter.ExportData() != ExportResult::kExported) {
      state.SkipWithError("the work copy cannot be read");
      return;
    }
    double read_s = Seconds(read_start);
    Baseline baseline = MeasureBaseline(&model);
    state.counters["import_s"] = import_s;
    state.counters["read_s"] = read_s;
    state.counters["baseline_s"] = baseline.seconds();
    state.counters["ratio_to_baseline"] = import_s / baseline.seconds();
    state.counters["cpu_ratio_to_baseline"] = import_cpu / baseline.cpu_s;
    state.counters["import_peak_MB"] = peak_mb;
    state.counters["music_items"] = static_cast<double>(model.m_share_files.size());
    size_t entries = 0;
    for (const auto& [id, songs_of_list] : model.m_list_songs)
      entries += songs_of_list.size();
    state.counters["list_entries"] = static_cast<double>(entries);
    state.counters["lists"] = static_cast<double>(model.m_play_lists.size());
    state.counters["downloads"] = static_cast<double>(model.m_downloads.size());
    state.counters["channels"] = static_cast<double>(model.m_radio_channels.size());
  }
}
BENCHMARK(BM_Generation7Import)
    ->Arg(25000)
    ->Arg(50000)
    ->Arg(100000)
    ->Unit(benchmark::kSecond)
    ->Iterations(1)
    ->UseManualTime();

// For running one import under a profiler: writes the installation a
// benchmark case imports into |folder| (made beforehand) and prints the
// environment that lets kImportChildSwitch import it, e.g.
//   import_build_benchmark --write-profile 7 /tmp/p 20000
//   env $(cat /tmp/p/env) valgrind --tool=callgrind import_build_benchmark
//       --import-child /tmp/p/peak
int WriteProfile(int argc, char** argv) {
  if (argc < 5 || argc > 6) {
    std::fprintf(stderr, "usage: %s --write-profile 6|7 FOLDER ITEMS [LISTS]\n", argv[0]);
    return 2;
  }
  const std::string generation = argv[2];
  const base::FilePath folder = base::FilePath::FromUTF8Unsafe(argv[3]);
  const int items = std::atoi(argv[4]);
  const int lists = argc == 6 ? std::atoi(argv[5]) : 500;
  if ((generation != "6" && generation != "7") || items < 1 || lists < 1) {
    std::fprintf(stderr, "--write-profile: generation 6 or 7, items and lists above 0\n");
    return 2;
  }
  bool written = generation == "6" ? WriteGeneration6Profile(folder, items, lists)
                                   : WriteGeneration7Profile(folder, items);
  base::FilePath local = folder.Append(L"local");
  std::string env = "VANTU_REGISTRY_FILE=" +
                    folder.Append(generation == "6" ? L"user.reg" : L"none.reg").AsUTF8Unsafe() +
                    "\nAPPDATA=" + folder.Append(L"roaming").AsUTF8Unsafe() +
                    "\nLOCALAPPDATA=" + local.AsUTF8Unsafe() + "\n";
  if (!written || !base::CreateDirectory(local) || !base::WriteFile(folder.Append(L"env"), env)) {
    std::fprintf(stderr, "--write-profile: cannot write the installation\n");
    return 1;
  }
  std::fputs(env.c_str(), stdout);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3 && std::string(argv[1]) == kImportChildSwitch)
    return RunImportChild(argv[2]);
  if (argc >= 2 && std::string(argv[1]) == "--write-profile")
    return WriteProfile(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv))
    return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
