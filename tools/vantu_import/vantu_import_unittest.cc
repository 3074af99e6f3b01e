#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/test_support.h"
#include "tools/vantu_import/host_options.h"
#include "tools/vantu_import/run_outcome.h"

using namespace data_importer;  // the importer under use

namespace {

bool Parse(std::vector<const char*> args, HostOptions* options, std::string* error) {
  args.insert(args.begin(), "vantu-import");
  return ParseHostOptions(static_cast<int>(args.size()), args.data(), options, error);
}

TEST(HostOptionsTest, ValuesInBothFormsAndBadUsage) {
  HostOptions options;
  std::string error;
  ASSERT_TRUE(Parse({"--local-appdata", "/a", "--roaming-appdata=/b", "--registry", "/r.reg",
                     "--i=/old player", "--quiet"},
                    &options, &error));
  EXPECT_EQ("/a", options.local_appdata);
  EXPECT_EQ("/b", options.roaming_appdata);
  EXPECT_EQ("/r.reg", options.registry);
  EXPECT_EQ("/old player", options.source);
  EXPECT_TRUE(options.quiet);
  EXPECT_EQ(0, options.demo);

  HostOptions demo;
  ASSERT_TRUE(Parse({"--demo"}, &demo, &error));
  EXPECT_EQ(7, demo.demo);
  ASSERT_TRUE(Parse({"--demo=6"}, &demo, &error));
  EXPECT_EQ(6, demo.demo);

  HostOptions bad;
  EXPECT_FALSE(Parse({"--profile"}, &bad, &error));
  EXPECT_EQ("option --profile needs a value", error);
  EXPECT_FALSE(Parse({"--local-appdatax=/a"}, &bad, &error));
  EXPECT_EQ("unknown option --local-appdatax=/a", error);
  EXPECT_FALSE(Parse({"--demo=8"}, &bad, &error));
  EXPECT_EQ("option --demo takes 7, 6, v1, v2 or v3, not \"8\"", error);
}

TEST(HostOptionsTest, SourceFolderInBothFormsAndNewSwitches) {
  HostOptions options;
  std::string error;
  ASSERT_TRUE(Parse({"--i", "/old", "--dry-run", "--keep", "--json", "--verbose", "--version"},
                    &options, &error));
  EXPECT_EQ("/old", options.source);
  EXPECT_TRUE(options.source_given && options.dry_run && options.keep && options.json &&
              options.verbose && options.version);
  HostOptions bad;
  EXPECT_FALSE(Parse({"--i="}, &bad, &error));
  EXPECT_EQ("option --i: empty value", error);
  EXPECT_FALSE(Parse({"--registry", ""}, &bad, &error));
  EXPECT_EQ("option --registry: empty value", error);
}

// Every option of the table parses in the form it is documented in, and
// --help names it.
TEST(HostOptionsTest, EveryOptionParsesAndIsDocumented) {
  std::string usage = HostUsage();
  for (const HostOption& option : HostOptionTable()) {
    std::vector<const char*> args = {option.name};
    std::string value;
    if (option.value && option.value[0] != '[') {
      value = std::string(option.value) == "LETTER=DIR" ? "C=/x"
              : std::string(option.value) == "N"        ? "936"
                                                        : "/x";
      args.push_back(value.c_str());
    }
    HostOptions options;
    std::string error;
    EXPECT_TRUE(Parse(args, &options, &error)) << option.name << ": " << error;
    EXPECT_NE(std::string::npos, usage.find("  " + OptionSynopsis(option) + " ")) << option.name;
  }
  HostOptions options;
  std::string error;
  ASSERT_TRUE(Parse({"-h", "--drive=d=/d", "--demo=v3"}, &options, &error)) << error;
  EXPECT_TRUE(options.help);
  EXPECT_EQ(std::vector<std::string>{"D=/d"}, options.drives);
  EXPECT_EQ(8, options.demo);
  EXPECT_EQ(3, options.demo_version);
  // A switch takes no value.
  EXPECT_FALSE(Parse({"--quiet=1"}, &options, &error));
  EXPECT_EQ("unknown option --quiet=1", error);
}

// The bar takes what the terminal's width leaves and never fills the last
// column, where a terminal would wrap it onto a new line.
TEST(ProgressBarTest, FitsTheTerminal) {
  EXPECT_EQ("import [####################                    ]  50%    3.2s",
            ProgressBarLine("import", 50, 3.2, 120));
  for (int columns : {80, 60, 40, 30, 12}) {
    std::string line = ProgressBarLine("upgrade", 100, 12345.6, columns);
    EXPECT_LE(line.size(), static_cast<size_t>(columns - 1)) << columns << ": " << line;
  }
  EXPECT_EQ("start [                  ]   0%    0.0s", ProgressBarLine("start", -5, 0, 40));
}

// The stage follows the figures; the bar keeps its width whichever stage it
// names, and a long stage is cut at the terminal's edge.
TEST(ProgressBarTest, NamesTheStage) {
  std::string reading = ProgressBarLine("import", 49, 1.5, 80, "reading MusicItems");
  std::string long_stage =
      ProgressBarLine("import", 49, 1.5, 80, "reading GeneralList_-3 of a long name beyond");
  EXPECT_EQ("import [###############                 ]  49%    1.5s reading MusicItems", reading);
  EXPECT_EQ(reading.find(']'), long_stage.find(']'));
  EXPECT_EQ(79u, long_stage.size());
  EXPECT_EQ(0u, long_stage.find(reading.substr(0, reading.find(" reading"))));
  std::string narrow = ProgressBarLine("import", 65, 2, 40, "encrypting");
  EXPECT_LE(narrow.size(), 39u) << narrow;
  EXPECT_NE(std::string::npos, narrow.find("]  65%")) << narrow;
}

// The options become the run's context: the single-folder options win over
// the profile's folders, and --i is a Windows path on a --drive folder.
TEST(HostOptionsTest, ContextFromOptions) {
  HostOptions options;
  std::string error;
  ASSERT_TRUE(Parse({"--profile", "/copy/Users/ann", "--roaming-appdata=/elsewhere", "--drive",
                     "e=/mnt/e", "--i", "E:\\Old Player", "--registry", "/r.reg", "--verbose"},
                    &options, &error));
  RunContext context = HostRunContext(options);
  EXPECT_EQ(testing_support::NativePath(L"/copy/Users/ann/AppData/Local"),
            context.m_local_app_data.value());
  EXPECT_EQ(testing_support::NativePath(L"/copy/Users/ann/AppData/Local/VanTu8"),
            context.m_data_folder.value());
  EXPECT_EQ(testing_support::NativePath(L"/copy/Users/ann/AppData/Local/VanTu8/DataImporter.log"),
            context.m_log_file.value());
  EXPECT_EQ(L"/elsewhere", context.m_roaming_app_data.value());
  EXPECT_EQ(L"/copy/Users/ann", context.m_user_profile.value());
  EXPECT_EQ(L"/r.reg", context.m_registry_file.value());
  EXPECT_EQ(base::FilePath(L"/mnt/e").Append(L"Old Player").value(),
            context.m_source_folder.value());
  EXPECT_TRUE(context.m_log_to_stderr);
  // The machine's own variables are not the copied user's.
  EXPECT_TRUE(context.m_variables.empty());
}

base::Value ImportReport(const std::string& end, const std::string& state) {
  return {{"task", {{"name", "importvantu6"}, {"import_kind", 2}}},
          {"dbcheck", {{"ImportEnd", end}, {"ImportState", state}}},
          {"summary",
           {{"songs", 1},
            {"videos", 0},
            {"lists", 2},
            {"list_entries", 1},
            {"downloads", 0},
            {"settings", 0}}},
          {"sources", base::Value::array()},
          {"dropped", base::Value::array()},
          {"target_tables", base::Value::array()},
          {"target_databases", base::Value::array()}};
}

// Each outcome gets its status: a clean import 0; a failed build, a file
// that did not verify or a table that holds other rows than were written
// 1; a source that was unreadable, repaired or partly read 3.
TEST(RunOutcomeTest, ExitStatusAndVerdictOfEachOutcome) {
  EXPECT_EQ("18 (2: lists could not be read; 16: another source table could not be read)",
            DescribeImportState(L"18"));
  base::Value clean = ImportReport("4", "");
  EXPECT_EQ(kExitImported, ExitStatusOf(clean));
  EXPECT_EQ("Imported 1 song and 2 lists with 1 entry.", VerdictLine(clean));

  base::Value failed = ImportReport("5", "8");
  EXPECT_EQ(kExitFailed, ExitStatusOf(failed));
  EXPECT_EQ(
      "Import failed, nothing was replaced: ImportState 8 (8: a later stage of the build "
      "failed).",
      VerdictLine(failed));
  // A failure bit set by a reader while the build went on and put both new
  // files in place: the verdict does not say nothing was replaced.
  base::Value replaced = ImportReport("5", "1");
  replaced["stages"] = {{{"name", "Export"}, {"seconds", 0.1}},
                        {{"name", "ReplaceMusic"}, {"seconds", 0.0}},
                        {{"name", "ReplacePlaylist"}, {"seconds", 0.0}}};
  EXPECT_EQ(0u, VerdictLine(replaced).find("Import failed after the new databases replaced the "
                                           "old ones: ImportState 1 "))
      << VerdictLine(replaced);

  base::Value lost_rows = clean;
  lost_rows["target_tables"] = {
      {{"table", "GeneralList_5"}, {"rows_sent", 3}, {"rows_counted", 2}, {"matches", false}}};
  EXPECT_EQ(kExitFailed, ExitStatusOf(lost_rows));
  EXPECT_NE(std::string::npos,
            VerdictLine(lost_rows).find("; table GeneralList_5 holds 2 rows of 3 written"));

  base::Value unverified = clean;
  unverified["target_databases"] = {
      {{"database", "VTMusicV3.db"}, {"read_back", false}, {"error", "encryption failed"}}};
  EXPECT_EQ(kExitFailed, ExitStatusOf(unverified));

  base::Value partly_read = ImportReport("4", "4");
  partly_read["sources"] = {{{"path", "/p/VTLibrary2.db"}, {"unreadable", true}}};
  EXPECT_EQ(kExitDamaged, ExitStatusOf(partly_read));
  EXPECT_EQ(
      "Imported 1 song and 2 lists with 1 entry; /p/VTLibrary2.db could not be read: its "
      "records are missing; some source tables could not be read (ImportState 4 (4: music "
      "items could not be read)).",
      VerdictLine(partly_read));
  EXPECT_EQ(kExitDamaged, ExitStatusOf(ImportReport("4", "16")));

  base::Value empty = ImportReport("8", "");
  EXPECT_EQ(kExitImported, ExitStatusOf(empty));
  EXPECT_NE(std::string::npos, VerdictLine(empty).find("counts as empty (ImportEnd 8)"));

  // A report of another version, or none at all, never passes for success.
  EXPECT_EQ(kExitFailed, ExitStatusOf(base::Value()));
  EXPECT_EQ("Nothing to import: no earlier installation of the player was found.",
            VerdictLine(base::Value::object()));
  EXPECT_EQ("copy of the version-2 databases to encrypted version 3 (copyv8dbv2)",
            TaskInWords("copyv8dbv2"));
}

}  // namespace

namespace {

TEST(RunOutcomeTest, UpgradeResultInWords) {
  EXPECT_EQ(
      "VTMusicV3.db copied but left plain: the copy failed its integrity check; "
      "playlistV3.db not made: there is no version-2 file to copy",
      DescribeUpgradeResult(
          "{\"music\":\"left_plain\",\"playlist\":\"no_source\",\"task\":\"copyv8dbv2\"}"));
  EXPECT_EQ("cloud lists moved to playlistV3.db (1 list)",
            DescribeUpgradeResult("{\"cloud_lists\":\"moved\",\"cloud_lists_moved\":1,"
                                  "\"music\":\"opened\",\"task\":\"updatevantu8\"}"));
  // The music database's state wins over the cloud lists' word.
  EXPECT_EQ("VTMusicV3.db does not open with the key: left as it was",
            DescribeUpgradeResult("{\"cloud_lists\":\"not_run\",\"music\":\"key_refused\","
                                  "\"task\":\"updatevantu8\"}"));
  EXPECT_EQ("cloud lists already in playlistV3.db: nothing moved",
            DescribeUpgradeResult("{\"cloud_lists\":\"already_moved\",\"music\":\"opened\","
                                  "\"task\":\"updatevantu8\"}"));
  EXPECT_EQ("not recorded", DescribeUpgradeResult("[1,2]"));
  EXPECT_EQ("not recorded", DescribeUpgradeResult("{\"task\":"));
}

TEST(HostOptionsTest, CurrentGenerationDemos) {
  HostOptions options;
  std::string error;
  ASSERT_TRUE(Parse({"--demo=v1"}, &options, &error));
  EXPECT_EQ(8, options.demo);
  EXPECT_EQ(1, options.demo_version);
  ASSERT_TRUE(Parse({"--demo=v2"}, &options, &error));
  EXPECT_EQ(2, options.demo_version);
  ASSERT_TRUE(Parse({"--demo=v3"}, &options, &error));
  EXPECT_EQ(3, options.demo_version);
  EXPECT_FALSE(Parse({"--demo=v4"}, &options, &error));
  EXPECT_EQ("option --demo takes 7, 6, v1, v2 or v3, not \"v4\"", error);
}

}  // namespace

// --code-page names the copied installation's code page: it wins over what
// the volume says, and anything but a positive number is bad usage.
TEST(HostOptionsTest, CodePageOptionSetsTheRunsCodePage) {
  HostOptions options;
  std::string error;
  for (const char* bad : {"0", "abc", "-1", "1252x", "123456"}) {
    EXPECT_FALSE(Parse({"--code-page", bad}, &options, &error)) << bad;
    EXPECT_NE(std::string::npos, error.find("--code-page")) << error;
  }
  ASSERT_TRUE(Parse({"--code-page=1252"}, &options, &error)) << error;
  EXPECT_EQ(1252u, options.code_page);
  EXPECT_EQ(1252u, HostRunContext(options).m_ansi_code_page);
  // Without the option, a copied volume with no system hive falls back to
  // the player's own code page.
  HostOptions copied;
  ASSERT_TRUE(Parse({"--drive", "C=/nonexistent-volume"}, &copied, &error)) << error;
  EXPECT_EQ(936u, HostRunContext(copied).m_ansi_code_page);
}
