// Measures the writers and the whole database build on a library of
// 100,000 files against the engine's own pace: a baseline that executes the
// very statement texts the build sent (recorded through SQLite's trace hook
// in an earlier run) and then encrypts, as the build does.

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <chrono>
#include <cwchar>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/file_util.h"
#include "benchmarks/sample_library.h"
#include "testing/fixtures/generation6_fixture.h"
#include "tools/data_importer/data_importer_main.h"
#include "testing/test_support.h"
#include "tools/data_importer/target_store/build_sequence.h"
#include "tools/data_importer/database_helper/database_helper.h"
#include "tools/data_importer/target_store/import_model.h"

namespace {

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point since) {
  return std::chrono::duration<double>(Clock::now() - since).count();
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
  state.counters["rows_per_s"] =
      benchmark::Counter(static_cast<double>(kFiles) * state.iterations(),
                         benchmark::Counter::kIsRate);
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
  state.counters["rows_per_s"] =
      benchmark::Counter(static_cast<double>(kFiles) * state.iterations(),
                         benchmark::Counter::kIsRate);
}
BENCHMARK(BM_ShareFileItemsWithoutEngine)->Unit(benchmark::kMillisecond)->UseRealTime();

// The whole build: 100,000 files, 500 lists with 300,000 entries, 20,000
// downloads, encryption and replacement.
void BM_WholeBuild(benchmark::State& state) {
  ImportModel model;
  FillSampleLibrary(&model, kFiles, 500, 300000, 20000);
  auto clear_maps = [&model] {
    model.m_music_id_map.clear();
    model.m_mv_id_map.clear();
    model.m_hash_id_map.clear();
    model.m_folder_id_map.clear();
  };

  for (auto _ : state) {
    testing_support::ScopedTempDir dir;
    clear_maps();
    std::map<std::string, double> stages;
    auto last = Clock::now();
    auto start = last;
    BuildDatabases(&model, dir.path(), [&](const char* stage) {
      stages[stage] = Seconds(last);
      last = Clock::now();
    });
    double build = Seconds(start);
    state.PauseTiming();
    // Peak memory of the model and the build, before the recording below.
    state.counters["peak_MB"] = PeakMemoryMegabytes();

    // A second, untimed build records the statements the engine ran.
    Recording music_statements, playlist_statements;
    {
      testing_support::ScopedTempDir record_dir;
      clear_maps();
      BuildDatabases(&model, record_dir.path(), [&](const char* stage) {
        if (std::string(stage) == "Prepare") {
          StartRecording(model.m_music_db.get(), &music_statements);
          StartRecording(model.m_playlist_db.get(), &playlist_statements);
        } else if (std::string(stage) == "ListCountReport") {
          StopRecording(model.m_music_db.get());
          StopRecording(model.m_playlist_db.get());
        }
      });
    }

    testing_support::ScopedTempDir baseline_dir;
    auto baseline_start = Clock::now();
    auto music = OpenTarget(baseline_dir.path().Append(L"music.db"));
    auto playlists = OpenTarget(baseline_dir.path().Append(L"playlist.db"));
    if (!music || !playlists) {
      state.SkipWithError("the target databases cannot be opened");
      break;
    }
    Replay(music.get(), music_statements);
    Replay(playlists.get(), playlist_statements);
    double statements = Seconds(baseline_start);
    auto export_start = Clock::now();
    if (!playlists->connection()->DbEncrypt(kVersion3DatabaseKey) ||
        !music->connection()->DbEncrypt(kVersion3DatabaseKey)) {
      state.SkipWithError("the encryption failed");
      break;
    }
    double exports = Seconds(export_start);
    state.ResumeTiming();

    for (const auto& [stage, seconds] : stages)
      state.counters["s_" + stage] = seconds;
    state.counters["baseline_statements_s"] = statements;
    state.counters["baseline_export_s"] = exports;
    state.counters["build_s"] = build;
    state.counters["ratio_to_baseline"] = build / (statements + exports);
    state.counters["statements"] =
        static_cast<double>(music_statements.statements.size() +
                            playlist_statements.statements.size());
  }
}
BENCHMARK(BM_WholeBuild)->Unit(benchmark::kSecond)->Iterations(1)->UseRealTime();

// The whole run of DataImporterMain on a generation-6 installation of
// 100,000 music items and 300,000 list items: copy, read, build, encrypt.
void BM_Generation6Import(benchmark::State& state) {
  testing_support::ScopedTempDir profile;
  base::FilePath program = profile.path().Append(L"VanTa6");
  V6V1Database source;
  for (int i = 1; i <= kFiles; ++i) {
    V6Music music;
    music.id = i;
    music.title = L"\u5468\u6770\u502b - Don't stop \u7a3b\u9999 " + std::to_wstring(i);
    music.file_name = L"D:\\Music\\" + music.title + L".mp3";
    wchar_t hash[40];
    std::swprintf(hash, 40, L"%08X%024X", 0xC0FFEE, i);
    music.hash = hash;
    source.music.push_back(music);
  }
  const int kLists = 100;
  for (int l = 1; l <= kLists; ++l)
    source.lists.push_back({l, l == 1 ? 3 : 0, L"List " + std::to_wstring(l), 0, l});
  for (int item = 1; item <= 300000; ++item)
    source.items.push_back({item, 1 + item % kLists, 1 + item * 7 % kFiles, item, item % 5});
  if (!source.Write(program.Append(L"VTData.db")) ||
      !base::WriteFile(program.Append(L"VanTa6.exe"), "") ||
      !base::WriteFile(profile.path().Append(L"user.reg"), V6RegistryText(program))) {
    state.SkipWithError("the source installation cannot be written");
    return;
  }
  testing_support::ScopedEnv env;
  env.Set("VANTU_REGISTRY_FILE", profile.path().Append(L"user.reg").AsUTF8Unsafe());
  env.Set("APPDATA", profile.path().Append(L"roaming").AsUTF8Unsafe());

  int run = 0;
  for (auto _ : state) {
    state.PauseTiming();
    base::FilePath local = profile.path().Append(L"local" + std::to_wstring(run++));
    if (!base::CreateDirectory(local)) {
      state.SkipWithError("the data folder cannot be created");
      break;
    }
    env.Set("LOCALAPPDATA", local.AsUTF8Unsafe());
    state.ResumeTiming();
    DataImporterMain();
  }
  state.counters["peak_MB"] = PeakMemoryMegabytes();
}
BENCHMARK(BM_Generation6Import)->Unit(benchmark::kSecond)->Iterations(1)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
