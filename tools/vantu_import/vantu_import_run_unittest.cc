// vantu-import run as a program: bad usage, an unusable data folder, the
// verdict and exit status of each outcome, --json, --dry-run, --demo and
// "--i DIR".

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "base/file_util.h"
#include "base/json_file.h"
#include "base/md5.h"
#include "sql/connection.h"
#include "sql/statement.h"
#include "testing/fixtures/generation6_fixture.h"
#include "testing/fixtures/generation7_fixture.h"
#include "testing/program_runner.h"
#include "testing/test_support.h"
#include "tools/data_importer/run_record/importer_names.h"

using namespace data_importer;  // the importer under use

namespace {

constexpr char kHost[] = VANTU_BINARY_DIR "/vantu-import";

// The system's words for a missing file and a missing folder.
#if defined(_WIN32)
constexpr char kNoSuchFile[] = "File not found";
constexpr char kNoSuchFolder[] = "Path not found";
#else
constexpr char kNoSuchFile[] = "No such file or directory";
constexpr char kNoSuchFolder[] = "No such file or directory";
#endif

// Every file and folder under |root| with the MD5 of its bytes.
std::string Fingerprint(const base::FilePath& root) {
  std::string all;
  std::error_code code;
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(root.AsUTF8Unsafe(), code)) {
    all += entry.path().string();
    if (entry.is_regular_file()) {
      all += ":" + base::MD5String(testing_support::ReadBytes(
                       base::FilePath::FromUTF8Unsafe(entry.path().string())));
    }
    all += "\n";
  }
  return all;
}

// The path that follows |label| in |output|, up to the next " (".
base::FilePath PathAfter(const std::string& output, const std::string& label) {
  size_t start = output.find(label);
  if (start == std::string::npos)
    return base::FilePath();
  start += label.size();
  return base::FilePath::FromUTF8Unsafe(output.substr(start, output.find(" (", start) - start));
}

std::wstring Hash(int n) {
  return testing_support::NumberedHash(n, L'C');
}

class HostRunTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(base::CreateDirectory(local()));
    ASSERT_TRUE(base::CreateDirectory(profile().Append(L"AppData").Append(L"Roaming")));
  }

  base::FilePath root() const { return m_dir.path(); }
  base::FilePath profile() const { return root().Append(L"profile"); }
  base::FilePath local() const { return profile().Append(L"AppData").Append(L"Local"); }
  base::FilePath data_folder() const { return local().Append(L"VanTu8"); }
  base::FilePath program() const { return root().Append(L"Program Files").Append(L"VanTa6"); }
  base::FilePath registry() const { return root().Append(L"user.reg"); }

  // A generation-6 installation with one list entry whose song is gone.
  void WriteInstallation() {
    V6V1Database db;
    for (int id = 1; id <= 3; ++id) {
      V6Music song;
      song.id = id;
      song.title = L"Song " + std::to_wstring(id);
      song.file_name = L"C:\\Music\\" + song.title + L".mp3";
      song.hash = Hash(id);
      db.music.push_back(song);
    }
    db.lists = {{5, 0, L"Road", 0, 1}};
    db.items = {{1, 5, 1, 0, 0}, {2, 5, 2, 1, 0}, {3, 5, 77, 2, 0}};
    ASSERT_TRUE(db.Write(program().Append(L"VTData.db")));
    testing_support::WriteBytes(program().Append(L"VanTa6.exe"), "MZ");
    testing_support::WriteBytes(registry(), V6RegistryText(program()));
  }

  // Runs vantu-import in a clean environment with HOME in the test's
  // folder; answers its exit status and keeps its standard output (and its
  // standard error too when |with_errors|).
  int Run(const std::string& args, bool with_errors = true) {
    testing_support::ProgramEnvironment environment;
    environment.unset = {"VANTU_REGISTRY_FILE", "LOCALAPPDATA", "APPDATA", "USERPROFILE",
                         "VANTU_LOG_STDERR"};
    environment.set["HOME"] = root().AsUTF8Unsafe();
    environment.with_errors = with_errors;
    return testing_support::RunProgram(base::FilePath::FromUTF8Unsafe(kHost), args, environment,
                                       &m_output);
  }

  std::string ProfileArgs() const {
    return "--profile " + testing_support::QuoteArgument(profile()) + " --registry " +
           testing_support::QuoteArgument(registry());
  }

  testing_support::ScopedTempDir m_dir;
  std::string m_output;
};

// Each bad option value is one line naming the option, the path and the
// reason, exit status 2, and nothing is created anywhere.
TEST_F(HostRunTest, BadUsageIsAnErrorThatCreatesNothing) {
  base::FilePath file = root().Append(L"a file");
  testing_support::WriteBytes(file, "x");
  testing_support::WriteBytes(registry(), "Windows Registry Editor Version 5.00\r\n");
  base::FilePath absent = root().Append(L"absent");
  const struct {
    std::string args;
    std::string expected;
  } kCases[] = {
      {"--profile " + testing_support::QuoteArgument(absent),
       "--profile " + absent.AsUTF8Unsafe() + ": " + kNoSuchFile},
      {"--profile " + testing_support::QuoteArgument(file),
       "--profile " + file.AsUTF8Unsafe() + ": Not a directory"},
      {"--profile " + testing_support::QuoteArgument(root()),
       "--profile " + root().Append(L"AppData").Append(L"Local").AsUTF8Unsafe() + ": " +
           kNoSuchFolder},
      {"--local-appdata " + testing_support::QuoteArgument(absent),
       "--local-appdata " + absent.AsUTF8Unsafe() + ": "},
      {"--roaming-appdata=" + testing_support::QuoteArgument(file),
       "--roaming-appdata " + file.AsUTF8Unsafe() + ": Not a directory"},
      {"--i " + testing_support::QuoteArgument(absent),
       "--i " + absent.AsUTF8Unsafe() + ": " + kNoSuchFile},
      {"--i=" + testing_support::QuoteArgument(file),
       "--i " + file.AsUTF8Unsafe() + ": Not a directory"},
      {"--registry " + testing_support::QuoteArgument(absent),
       "--registry " + absent.AsUTF8Unsafe() + ": " + kNoSuchFile},
      {"--registry " + testing_support::QuoteArgument(local()),
       "--registry " + local().AsUTF8Unsafe() + ": Is a directory"},
      {"--local-appdata=", "option --local-appdata: empty value"},
      {"--profile " + testing_support::QuoteArgument(std::string()),
       "option --profile: empty value"},
  };
  std::string before = Fingerprint(root());
  for (const auto& c : kCases) {
    EXPECT_EQ(2, Run(c.args)) << c.args << "\n" << m_output;
    EXPECT_NE(std::string::npos, m_output.find(c.expected)) << c.args << "\n" << m_output;
    EXPECT_EQ(1, std::count(m_output.begin(), m_output.end(), '\n')) << m_output;
    EXPECT_EQ(before, Fingerprint(root())) << c.args;
  }
}

// A data folder the importer cannot use is reported by the host in one
// line, exit status 1, before anything runs.
TEST_F(HostRunTest, UnusableDataFolderIsAFailure) {
  WriteInstallation();
  testing_support::WriteBytes(data_folder(), "not a folder");
  EXPECT_EQ(1, Run(ProfileArgs())) << m_output;
  EXPECT_EQ("vantu-import: data folder " + data_folder().AsUTF8Unsafe() + ": Not a directory\n",
            m_output);
  EXPECT_EQ("not a folder", testing_support::ReadBytes(data_folder()));

  ASSERT_TRUE(base::DeleteFile(data_folder()));
  ASSERT_TRUE(base::CreateDirectory(data_folder().Append(L"vantu.ini")));
  EXPECT_EQ(1, Run(ProfileArgs())) << m_output;
  EXPECT_NE(std::string::npos,
            m_output.find("settings file " + data_folder().Append(L"vantu.ini").AsUTF8Unsafe() +
                          ": Is a directory"))
      << m_output;
  EXPECT_FALSE(base::PathExists(data_folder().Append(L"VTMusicV3.db")));
}

// The verdict comes from this run's report: counts and skips of an import,
// the task's real name for an upgrade, without the import's keys; a failed
// build is status 1 and a damaged source status 3.
TEST_F(HostRunTest, VerdictAndExitStatusOfEachOutcome) {
  WriteInstallation();
  EXPECT_EQ(0, Run("--quiet " + ProfileArgs())) << m_output;
  EXPECT_EQ(
      "Imported 3 songs and 1 list with 2 entries; skipped 1 list entry whose song is not "
      "in the library.\n",
      m_output);

  EXPECT_EQ(0, Run("--verbose " + ProfileArgs(), false)) << m_output;
  EXPECT_NE(std::string::npos,
            m_output.find("Ran the upgrade of the version-3 databases. Follows "));
  EXPECT_NE(std::string::npos,
            m_output.find("Task:          upgrade of the version-3 databases (updatevantu8)"));
  EXPECT_NE(std::string::npos, m_output.find("  UpdateProgress = 100\n")) << m_output;
  // What the task did, as its report holds it.
  EXPECT_NE(std::string::npos, m_output.find("Done:          no cloud lists to move\n"))
      << m_output;
  EXPECT_EQ(std::string::npos, m_output.find("ImportEnd")) << m_output;

  // An earlier release's playlist database stops the build.
  ASSERT_TRUE(base::DeleteFile(data_folder(), true));
  ASSERT_TRUE(base::CreateDirectory(data_folder()));
  testing_support::WriteBytes(data_folder().Append(L"playlist.db"), "");
  EXPECT_EQ(1, Run("--quiet " + ProfileArgs())) << m_output;
  EXPECT_EQ(0u, m_output.find("Import failed, nothing was replaced: ImportState 1 ")) << m_output;

  // A damaged source: its lost free pages are repaired on opening.
  ASSERT_TRUE(base::DeleteFile(data_folder(), true));
  base::FilePath source = program().Append(L"VTData.db");
  {
    sql::Connection db;
    ASSERT_TRUE(db.Open(source));
    ASSERT_TRUE(db.Execute("CREATE TABLE Filler(t text)"));
    for (int i = 0; i < 40; ++i)
      ASSERT_TRUE(
          db.Execute(("INSERT INTO Filler VALUES ('" + std::string(2000, 'f') + "')").c_str()));
    ASSERT_TRUE(db.Execute("DROP TABLE Filler"));
  }
  std::string bytes = testing_support::ReadBytes(source);
  bytes.replace(32, 8, std::string(8, '\0'));
  testing_support::WriteBytes(source, bytes);
  EXPECT_EQ(3, Run("--quiet " + ProfileArgs())) << m_output;
  EXPECT_NE(std::string::npos,
            m_output.find("; " + source.AsUTF8Unsafe() +
                          " was damaged and repaired: some of its records may be missing"))
      << m_output;
}

// "Backup folder:" names the folder only when this run wrote into it: the
// import backs its source up, the upgrade after it writes no backup. The
// upgrade's progress starts from its own values.
TEST_F(HostRunTest, BackupFolderOnlyWhenThisRunWroteOne) {
  WriteInstallation();
  EXPECT_EQ(0, Run(ProfileArgs())) << m_output;
  EXPECT_NE(std::string::npos, m_output.find("\nBackup folder: " + data_folder().AsUTF8Unsafe()))
      << m_output;
  EXPECT_EQ(0, Run(ProfileArgs())) << m_output;
  EXPECT_NE(std::string::npos, m_output.find("(updatevantu8)")) << m_output;
  EXPECT_EQ(std::string::npos, m_output.find("Backup folder:")) << m_output;
  // The progress shown is this run's: not the import's 100 % left in the
  // section by the run before.
  EXPECT_EQ(std::string::npos, m_output.find("import progress:")) << m_output;
  EXPECT_NE(std::string::npos, m_output.find("upgrade progress: 100%")) << m_output;
}

// Every run's report joins the history in "reports"; "ImportReport.json"
// stays the import's through the upgrade and a run that finds nothing, and
// their verdicts name the import the data folder holds.
TEST_F(HostRunTest, LaterRunsKeepTheImportsReportAndNameIt) {
  WriteInstallation();
  EXPECT_EQ(0, Run("--quiet " + ProfileArgs())) << m_output;
  base::Value imported;
  ASSERT_TRUE(base::ReadJsonFile(data_folder().Append(importer_names::kReportFileName), &imported));
  const std::string date = imported["time"].get<std::string>().substr(0, 10);
  ASSERT_EQ(10u, date.size());
  const std::string follows = " Follows the import from generation 6 (importvantu6), imported on " +
                              date + ": 3 songs and 1 list with 2 entries.\n";

  EXPECT_EQ(0, Run("--quiet " + ProfileArgs())) << m_output;
  EXPECT_EQ("Ran the upgrade of the version-3 databases." + follows, m_output);
  // Without the databases and the registry nothing is found; the report
  // of the import is still there.
  ASSERT_TRUE(base::DeleteFile(data_folder().Append(importer_names::kMusicDatabaseV3)));
  ASSERT_TRUE(base::DeleteFile(data_folder().Append(importer_names::kPlaylistDatabaseV3)));
  EXPECT_EQ(0, Run("--profile " + testing_support::QuoteArgument(profile()))) << m_output;
  EXPECT_EQ(0u,
            m_output.find("Nothing to import: no earlier installation of the player was found." +
                          follows))
      << m_output;
  EXPECT_NE(std::string::npos,
            m_output.find("\nReport:        " + data_folder().Append(L"reports").AsUTF8Unsafe()))
      << m_output;
  EXPECT_NE(std::string::npos, m_output.find("-nothing-")) << m_output;

  base::Value kept;
  ASSERT_TRUE(base::ReadJsonFile(data_folder().Append(importer_names::kReportFileName), &kept));
  EXPECT_EQ(imported, kept);
  std::vector<std::string> tasks;
  std::error_code code;
  for (const auto& entry :
       std::filesystem::directory_iterator(data_folder().Append(L"reports").AsUTF8Unsafe(), code)) {
    std::string name = entry.path().filename().string();
    tasks.push_back(name.substr(17, name.rfind('-') - 17));
  }
  std::sort(tasks.begin(), tasks.end());
  EXPECT_EQ((std::vector<std::string>{"importvantu6", "nothing", "updatevantu8"}), tasks);
}

// --verbose names the dropped records grouped by reason: a list that is not
// imported with its entries, an entry whose song is gone.
TEST_F(HostRunTest, VerboseNamesTheDroppedRecords) {
  base::FilePath roaming = profile().Append(L"AppData").Append(L"Roaming");
  ASSERT_TRUE(WriteSampleV7Installation(roaming, V7SampleSize()));
  EXPECT_EQ(0, Run("--verbose --profile " + testing_support::QuoteArgument(profile()), false))
      << m_output;
  size_t heading = m_output.find("\nDropped records, by reason:\n");
  ASSERT_NE(std::string::npos, heading) << m_output;
  size_t cloud = m_output.find("\n  skipped list 'Cloud list' (", heading);
  ASSERT_NE(std::string::npos, cloud) << m_output;
  std::string line = m_output.substr(cloud + 1, m_output.find('\n', cloud + 1) - cloud - 1);
  EXPECT_NE(std::string::npos, line.find(" entries): list of a type that is not imported")) << line;
  EXPECT_EQ(std::string::npos, line.find("(0 entries)")) << line;
  EXPECT_NE(std::string::npos, m_output.find(": entries of lists that are not imported\n", heading))
      << m_output;
  EXPECT_NE(std::string::npos,
            m_output.find(": list entry whose song is not in the library\n", heading))
      << m_output;
}

// Settings are counted as read from the source: an empty settings file
// carries defaults only, which --verbose counts beside them.
TEST_F(HostRunTest, SettingsCountedAsReadFromTheSource) {
  base::FilePath roaming = profile().Append(L"AppData").Append(L"Roaming");
  base::FilePath settings = Generation7Folder(roaming).Append(L"vantu.ini");
  V7SampleSize size;
  size.songs = 4;
  size.lists = 1;
  size.list_entries = 2;
  ASSERT_TRUE(WriteSampleV7Installation(roaming, size));
  testing_support::WriteBytes(settings, "");
  EXPECT_EQ(0, Run("--quiet --profile " + testing_support::QuoteArgument(profile()))) << m_output;
  EXPECT_EQ(0u, m_output.find("Imported 4 songs")) << m_output;
  EXPECT_EQ(std::string::npos, m_output.find("setting")) << m_output;

  ASSERT_TRUE(base::DeleteFile(data_folder(), true));
  testing_support::WriteBytes(settings,
                              "[Player]\r\nVolume=35\r\n[NetConfig]\r\nDownloadPort=9100\r\n");
  EXPECT_EQ(0, Run("--verbose --profile " + testing_support::QuoteArgument(profile()), false))
      << m_output;
  EXPECT_NE(std::string::npos, m_output.find(" and 2 settings")) << m_output;
  EXPECT_NE(std::string::npos, m_output.find("Settings: 2 read from the source; ")) << m_output;
}

// A user named in Chinese: every path of the run holds characters that no
// Western code page has, and names beyond the basic plane come through
// into the encrypted library and back.
TEST_F(HostRunTest, ProfileUnderAChineseUserName) {
  const base::FilePath user = root().Append(L"Users").Append(L"\u5f20\u4f1f");
  ASSERT_TRUE(base::CreateDirectory(user.Append(L"AppData").Append(L"Local")));
  V7SampleSize size;
  size.songs = 40;
  ASSERT_TRUE(WriteSampleV7Installation(user.Append(L"AppData").Append(L"Roaming"), size));
  EXPECT_EQ(0, Run("--quiet --profile " + testing_support::QuoteArgument(user))) << m_output;

  const base::FilePath data = user.Append(L"AppData").Append(L"Local").Append(L"VanTu8");
  sql::Connection music;
  ASSERT_TRUE(music.OpenWithKey(data.Append(importer_names::kMusicDatabaseV3),
                                L"3C5A0F1E9D2B47A6B8E1C4D7F0A29B63"))
      << m_output;
  sql::Statement artist(
      music.GetUniqueStatement("SELECT Artist FROM LocalFiles WHERE Artist LIKE '%Ensemble'"));
  ASSERT_TRUE(artist.Step());
  EXPECT_EQ(L"\U0001D11E Ensemble", artist.ColumnString16(0));
  EXPECT_EQ(
      0u,
      testing_support::ReadBytes(data.Append(importer_names::kSettingsFileName)).find("\xFF\xFE"));
}

// Ctrl-C stops the run at once with exit status 130, says in which state it
// left the data folder, and removes the demo's temporary profile.
TEST_F(HostRunTest, InterruptSaysWhatStateItLeft) {
#if defined(_WIN32)
  GTEST_SKIP() << "the interrupt is sent by a POSIX shell (kill -INT); a Windows console's "
                  "Ctrl-C reaches only processes that share the console";
#endif
  // The interrupt goes as soon as the run has begun writing its data folder
  // (the demo is made under a temporary folder of this attempt's own); a run
  // quick enough to finish first is tried again, up to five times.
  std::string command =
      "cd " + testing_support::QuoteArgument(root()) +
      " && for attempt in 1 2 3 4 5; do mkdir -p tmp.$attempt; "
      "TMPDIR=$PWD/tmp.$attempt " VANTU_BINARY_DIR
      "/vantu-import --demo >out.$attempt 2>&1 & pid=$!; "
      "until ls tmp.$attempt/vantu-demo-*/AppData/Local/VanTu8/Vantu.ini >/dev/null 2>&1 || "
      "! kill -0 $pid 2>/dev/null; do sleep 0.002; done; kill -INT $pid 2>/dev/null; "
      "wait $pid; status=$?; cat out.$attempt; echo \"exit $status\"; "
      "[ $status = 130 ] && break; done; true";
  ASSERT_EQ(0, testing_support::RunCommand(command, "", &m_output));
  EXPECT_NE(std::string::npos, m_output.find("\nexit 130\n")) << m_output;
  EXPECT_NE(std::string::npos, m_output.find("\nStopped ")) << m_output;
  base::FilePath demo = PathAfter(m_output, "Demo profile: ");
  if (!demo.empty())
    EXPECT_FALSE(base::PathExists(demo)) << m_output;
}

// --i=DIR with no program folder in the registry: the folder's settings
// file and lyrics come along with its databases.
TEST_F(HostRunTest, SourceFolderCarriesSettingsAndLyrics) {
  base::FilePath old = root().Append(L"Old Player");
  ASSERT_TRUE(WriteSampleV6Installation(old, 5));
  EXPECT_EQ(0, Run("--quiet --profile " + testing_support::QuoteArgument(profile()) + " --i " +
                   testing_support::QuoteArgument(old)))
      << m_output;
  EXPECT_EQ(0u, m_output.find("Imported 5 songs")) << m_output;
  EXPECT_NE(std::string::npos, m_output.find(" settings")) << m_output;
  int lyrics = 0;
  std::error_code code;
  for (const auto& entry :
       std::filesystem::directory_iterator(data_folder().Append(L"Lyric").AsUTF8Unsafe(), code)) {
    lyrics += entry.path().extension() == ".krc";
  }
  EXPECT_EQ(2, lyrics);
}

// --json prints the report the run wrote, and nothing else, on standard
// output.
TEST_F(HostRunTest, JsonIsTheReport) {
  WriteInstallation();
  EXPECT_EQ(0, Run("--json " + ProfileArgs(), false));
  base::Value printed = base::Value::parse(m_output, nullptr, false);
  ASSERT_TRUE(printed.is_object()) << m_output;
  base::Value written;
  ASSERT_TRUE(base::ReadJsonFile(data_folder().Append(importer_names::kReportFileName), &written));
  EXPECT_EQ(written, printed);
  EXPECT_EQ("importvantu6", printed["task"]["name"]);
  EXPECT_EQ(3, printed["summary"]["songs"]);
}

// A dry run imports into a copy: the data folder and the installation stay
// byte for byte as they were, and the copy is gone afterwards.
TEST_F(HostRunTest, DryRunChangesNothing) {
  WriteInstallation();
  ASSERT_TRUE(base::CreateDirectory(data_folder()));
  testing_support::WriteBytes(data_folder().Append(L"Vantu.ini"), "[Player]\r\nVolume=80\r\n");
  std::string data_before = Fingerprint(data_folder());
  std::string program_before = Fingerprint(program());

  EXPECT_EQ(0, Run("--dry-run " + ProfileArgs())) << m_output;
  EXPECT_NE(std::string::npos, m_output.find("Imported 3 songs and 1 list with 2 entries"))
      << m_output;
  base::FilePath copy = PathAfter(m_output, "the import ran on a copy of the data folder in ");
  EXPECT_FALSE(copy.empty()) << m_output;
  EXPECT_FALSE(base::PathExists(copy));
  EXPECT_NE(std::string::npos, m_output.find("MusicItems -> ShareFileItems: 3 -> 3 + 0"))
      << m_output;
  EXPECT_EQ(data_before, Fingerprint(data_folder()));
  EXPECT_EQ(program_before, Fingerprint(program()));
}

// "--i DIR" reaches the importer as "--i=DIR"; the demo removes its profile
// unless --keep is given; the re-import demo runs.
TEST_F(HostRunTest, SourceFolderOptionAndDemoCleanUp) {
  base::FilePath source = root().Append(L"Old Player");
  V6V2Library library;
  library.lists = {{1, 3, L"", 0, 0}};
  library.items = {{1, 1, L"E:\\", L"a.mp3", L"A", Hash(1)}};
  library.downloads = {{0, Hash(1), L"E:\\a.mp3", true}};
  ASSERT_TRUE(library.Write(source.Append(L"VTLibrary.db")));
  testing_support::WriteBytes(registry(), "Windows Registry Editor Version 5.00\r\n");
  EXPECT_EQ(0, Run("--quiet " + ProfileArgs() + " --i " + testing_support::QuoteArgument(source)))
      << m_output;
  EXPECT_EQ("Imported 1 song, 1 list with 1 entry and 1 download.\n", m_output);

  EXPECT_EQ(0, Run("--demo=6")) << m_output;
  base::FilePath removed = PathAfter(m_output, "Demo profile: ");
  ASSERT_FALSE(removed.empty()) << m_output;
  EXPECT_FALSE(base::PathExists(removed));
  EXPECT_EQ(0, Run("--demo=6 --keep")) << m_output;
  base::FilePath kept = PathAfter(m_output, "Demo profile: ");
  ASSERT_FALSE(kept.empty()) << m_output;
  EXPECT_TRUE(base::PathExists(kept.Append(L"AppData/Local/VanTu8/VTMusicV3.db")));
  std::filesystem::remove_all(kept.AsUTF8Unsafe());
  // The first releases' plain databases, imported again whole.
  EXPECT_EQ(0, Run("--quiet --demo=v1")) << m_output;
  EXPECT_EQ(0u, m_output.find("Imported 30 songs, 1 video, 2 lists with 15 entries and 4 "
                              "downloads;"))
      << m_output;
  EXPECT_EQ(0, Run("--version"));
  EXPECT_EQ(0u, m_output.find("vantu-import 1.0.0"));
}

}  // namespace
