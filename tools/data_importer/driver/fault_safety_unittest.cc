// Whole runs of the importer interrupted by a kill, and runs over damaged
// sources: nothing may crash, change a source byte, leave work files behind
// or put a database in place that does not open with the key.

#if !defined(_WIN32)
#include <signal.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "base/file_util.h"
#include "base/md5.h"
#include "testing/fixtures/generation6_fixture.h"
#include "tools/data_importer/environment/data_folder.h"
#include "tools/data_importer/data_importer_main.h"
#include "tools/data_importer/driver/import_run.h"
#include "testing/importer_test_util.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/target_store/verify_database.h"
#include "tools/data_importer/source_readers/v6_data_exporter/v6_data_exporter.h"

namespace data_importer {

namespace {

constexpr wchar_t kMusic[] = L"VTMusicV3.db";
constexpr wchar_t kPlaylists[] = L"playlistV3.db";

class FaultSafetyTest : public testing::Test {
 protected:
  base::FilePath program() const { return m_profile.root().Append(L"VanTa6"); }
  base::FilePath Data(const wchar_t* name) const { return m_profile.data_folder().Append(name); }

  void InstallSource() {
    ASSERT_TRUE(WriteSampleV6Installation(program(), 12));
    ASSERT_TRUE(base::WriteFile(m_profile.root().Append(L"user.reg"), V6RegistryText(program())));
    TestProfile::Touch(program().Append(L"VanTa6.exe"));
  }

  // Names and digests of every file under |folder|, recursively.
  static std::string Fingerprint(const base::FilePath& folder) {
    std::string all;
    base::FileEnumerator files(folder, L"*");
    for (base::FilePath file = files.Next(); !file.empty(); file = files.Next())
      all += file.BaseName().AsUTF8Unsafe() + ":" +
             base::MD5String(testing_support::ReadBytes(file)) + ";";
    base::FileEnumerator lyrics(folder.Append(L"Lyric"), L"*");
    for (base::FilePath file = lyrics.Next(); !file.empty(); file = lyrics.Next())
      all += file.BaseName().AsUTF8Unsafe() + ";";
    return all;
  }

  // Work files that must never outlive a run.
  std::vector<std::string> Leftovers() const {
    std::vector<std::string> found;
    for (const wchar_t* pattern :
         {L"*.tmp", L"*.enc", L"*.commit*", L"*.copy-*", L"Vantu.ini.tmp*"}) {
      base::FileEnumerator files(m_profile.data_folder(), pattern);
      for (base::FilePath file = files.Next(); !file.empty(); file = files.Next())
        found.push_back(file.BaseName().AsUTF8Unsafe());
    }
    return found;
  }

#if !defined(_WIN32)
  // Kill tests fork a child process and kill it: the Windows build has no fork.
  // Runs |body| in a child process and answers how it ended.
  static int InChild(const std::function<void()>& body) {
    pid_t child = fork();
    if (child == 0) {
      body();
      _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status;
  }

#endif  // !defined(_WIN32)
  TestProfile m_profile;
};

#if !defined(_WIN32)
// Kill tests fork a child process and kill it: the Windows build has no fork.
// A run killed at any point of the import, then run again, ends with both
// version-3 files holding every row (of the killed run or of a fresh
// import), no work file left and the installation unchanged. Kill points:
// the end of each stage of the build, each step of the replacement, and
// random amounts of processor time into a whole run.
TEST_F(FaultSafetyTest, KilledRunIsCompletedOrRedoneByTheNextRun) {
  InstallSource();
  std::string source = Fingerprint(program());

  // A clean run in a child gives the expected counts and its processor time.
  const long run_micros = ProcessorMicrosOfWholeRun();
  ASSERT_GT(run_micros, 0);
  int status = 0;
  VerifiedDatabase music = VerifyEncryptedDatabase(Data(kMusic));
  VerifiedDatabase playlists = VerifyEncryptedDatabase(Data(kPlaylists));
  ASSERT_TRUE(music.ok && playlists.ok);
  ASSERT_GT(music.row_counts.at("ShareFileItems"), 10);

  std::vector<std::string> stages = {"Prepare", "Encrypt", "CommitRecord", "ReplaceMusic",
                                     "ReplacePlaylist"};
  std::mt19937 random(17);
  constexpr int kRandomPoints = 3;
  for (size_t point = 0; point < stages.size() + kRandomPoints; ++point) {
    ASSERT_TRUE(base::DeleteFile(m_profile.data_folder(), true));
    std::string where;
    if (point < stages.size()) {
      where = stages[point];
      status = InChild([&] {
        ProgressRecord record;
        record.Initialise(TestDataFolder());
        record.set_import_kind(ProgressRecord::kKindGeneration6);
        RunImport(TestRunContext(), &record, [&](const char* stage) {
          if (where == stage)
            raise(SIGKILL);
        });
      });
      EXPECT_TRUE(WIFSIGNALED(status)) << where;
    } else {
      long micros = std::uniform_int_distribution<long>(1000, run_micros)(random);
      where = "after " + std::to_string(micros) + " us";
      status = InChild([&] {
        itimerval timer{{0, 0}, {micros / 1000000, micros % 1000000}};
        setitimer(ITIMER_PROF, &timer, nullptr);  // SIGPROF ends the process
        DataImporterMain();
      });
    }

    DataImporterMain();  // the next run

    VerifiedDatabase music_after = VerifyEncryptedDatabase(Data(kMusic));
    VerifiedDatabase playlists_after = VerifyEncryptedDatabase(Data(kPlaylists));
    EXPECT_TRUE(music_after.ok) << where << ": " << music_after.error;
    EXPECT_TRUE(playlists_after.ok) << where << ": " << playlists_after.error;
    EXPECT_EQ(music.row_counts, music_after.row_counts) << where;
    EXPECT_EQ(playlists.row_counts, playlists_after.row_counts) << where;
    EXPECT_EQ(std::vector<std::string>(), Leftovers()) << where;
    EXPECT_EQ(source, Fingerprint(program())) << where;
  }
}

#endif  // !defined(_WIN32)

// One damage of |bytes|, chosen by |random|: bit flips, a truncation, a
// page of zeros, or one page copied over another.
std::string Mutate(std::string bytes, std::mt19937* random) {
  auto pick = [random](size_t below) {
    return std::uniform_int_distribution<size_t>(0, below - 1)(*random);
  };
  constexpr size_t kPage = 4096;
  size_t pages = std::max<size_t>(1, bytes.size() / kPage);
  switch (pick(4)) {
    case 0:
      for (size_t flips = 1 + pick(8); flips > 0; --flips)
        bytes[pick(bytes.size())] ^= static_cast<char>(1 << pick(8));
      break;
    case 1:
      bytes.resize(pick(bytes.size()));
      break;
    case 2:
      std::fill_n(bytes.begin() + pick(pages) * kPage, std::min(kPage, bytes.size()), '\0');
      break;
    default: {
      size_t from = pick(pages) * kPage, to = pick(pages) * kPage;
      std::string page = bytes.substr(from, kPage);
      bytes.replace(to, std::min(page.size(), bytes.size() - to), page);
    }
  }
  return bytes;
}

// Hundreds of damaged generation-6 databases and registry files, seeded so
// that a failure can be replayed. Every case reads the damaged source into
// a model; every 25th runs the whole import. Nothing may crash, the source
// keeps its bytes, no work file stays behind, and a version-3 file that is
// in place opens with the key.
TEST_F(FaultSafetyTest, DamagedSourcesNeverCrashOrLeaveBrokenFiles) {
#if defined(_WIN32)
  GTEST_SKIP() << "each case deletes the data folder while the test profile's log is open in it, "
                  "and Windows removes no folder holding an open file";
#endif
  InstallSource();
  const base::FilePath database = program().Append(L"VTData.db");
  const base::FilePath registry = m_profile.root().Append(L"user.reg");
  const std::string good_database = testing_support::ReadBytes(database);
  const std::string good_registry = testing_support::ReadBytes(registry);
  ASSERT_GT(good_database.size(), 4096u * 4);

  std::mt19937 random(1217);
  constexpr int kDatabaseCases = 160;
  constexpr int kRegistryCases = 40;
  int whole_runs = 0;
  for (int i = 0; i < kDatabaseCases + kRegistryCases; ++i) {
    bool registry_case = i >= kDatabaseCases;
    std::string damaged_database = registry_case ? good_database : Mutate(good_database, &random);
    std::string damaged_registry = registry_case ? Mutate(good_registry, &random) : good_registry;
    testing_support::WriteBytes(database, damaged_database);
    testing_support::WriteBytes(registry, damaged_registry);
    ASSERT_TRUE(base::DeleteFile(m_profile.data_folder(), true));
    std::string where = "case " + std::to_string(i);

    if (i % 25 == 0) {
      ++whole_runs;
      DataImporterMain();
      for (const wchar_t* name : {kMusic, kPlaylists}) {
        if (base::PathExists(Data(name))) {
          VerifiedDatabase verified = VerifyEncryptedDatabase(Data(name));
          EXPECT_TRUE(verified.ok) << where << ": " << verified.error;
        }
      }
    } else {
      ProgressRecord record;
      record.Initialise(TestDataFolder());
      ImportModel model(&record);
      const RunContext run_context = TestRunContext();
      V6DataExporter exporter(run_context, &model);
      (void)exporter.ExportData();  // any outcome; the damage decides
    }
    EXPECT_EQ(damaged_database, testing_support::ReadBytes(database)) << where;
    EXPECT_EQ(damaged_registry, testing_support::ReadBytes(registry)) << where;
    EXPECT_EQ(std::vector<std::string>(), Leftovers()) << where;
    if (HasFailure())
      break;  // one case is enough to see
  }
  EXPECT_EQ(8, whole_runs);

  // A folder in place of the database, and in place of the work copy: the
  // run reports that the source could not be read (state 1).
  testing_support::WriteBytes(registry, good_registry);
  for (const base::FilePath& blocked : {database, Data(L"VT6Data.db")}) {
    ASSERT_TRUE(base::DeleteFile(m_profile.data_folder(), true));
    ASSERT_TRUE(base::DeleteFile(database));
    testing_support::WriteBytes(database, good_database);
    ASSERT_TRUE(base::DeleteFile(blocked));
    ASSERT_TRUE(base::CreateDirectory(blocked.Append(L"inside")));
    DataImporterMain();
    EXPECT_EQ(1u, std::stoul(m_profile.DBCheck(L"ImportState")) & 1) << blocked.AsUTF8Unsafe();
    EXPECT_EQ(std::vector<std::string>(), Leftovers());
    ASSERT_TRUE(base::DeleteFile(blocked, true));
  }
}

}  // namespace

}  // namespace data_importer
