#include "tools/data_importer/run_record/import_report.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/file_util.h"
#include "base/json_file.h"
#include "sql/connection.h"
#include "sql/statement.h"
#include "testing/fixtures/generation6_fixture.h"
#include "testing/test_support.h"
#include "tools/data_importer/environment/data_folder.h"
#include "tools/data_importer/data_importer_main.h"
#include "tools/data_importer/driver/import_run.h"
#include "testing/importer_test_util.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/run_record/report_history.h"
#include "tools/data_importer/target_store/build_sequence.h"
#include "tools/data_importer/driver/task_decision.h"

namespace data_importer {

namespace {

std::wstring Hash(int n) {
  return testing_support::NumberedHash(n, L'B');
}

V6Music Music(int id, const std::wstring& title) {
  return NumberedV6Music(id, title, L'B');
}

class ImportReportTest : public testing::Test {
 protected:
  base::FilePath program() const {
    return m_profile.root().Append(L"Program Files").Append(L"VanTa6");
  }

  base::Value ReadReport() { return ReadImportReport(m_profile.data_folder()); }

  TestProfile m_profile;
};

// A generation-6 "V1" installation with records of every kind that is left
// out: the report finds each source row again as a written row or a drop
// with its reason. The next run's report holds only what that run wrote and
// joins the history, while "ImportReport.json" stays the import's.
TEST_F(ImportReportTest, V1ImportAddsUpAndTheNextRunKeepsIt) {
  V6V1Database db;
  db.videos = {{7, L"D:\\MV\\clip.mkv", L"", Hash(700)}};
  db.music = {Music(1, L"One"), Music(2, L"Two"), Music(3, L"Three"), Music(4, L"Four")};
  db.lists = {{10, 3, L"", 0, 0},        // default list, no entries: kept
              {11, 0, L"Road", 0, 1},    // one entry of three has no song
              {13, 10, L"Gone", 0, 2},   // only entries without songs
              {14, 1, L"Cloud", 0, 3}};  // a type that is not imported
  db.items = {{1, 11, 1, 0, 0}, {2, 11, 2, 1, 0}, {3, 11, 99, 2, 0}, {6, 13, 98, 0, 0},
              {7, 14, 1, 0, 0}, {8, 14, 2, 1, 0},                // entries of the list not imported
              {9, 77, 3, 0, 0}};                                 // an entry of no list
  db.downloads = {{3, Hash(3), L"D:\\Down\\Three.mp3", false},   // found by id
                  {50, Hash(50), L"D:\\Down\\Lost.mp3", false},  // not in the library
                  {0, Hash(2), L"D:\\Down\\Two.mp3", true},      // found by hash
                  {0, L"", L"D:\\Down\\NoHash.mp3", true}};      // no hash
  ASSERT_TRUE(db.Write(program().Append(L"VTData.db")));
  ASSERT_TRUE(base::WriteFile(m_profile.root().Append(L"user.reg"), V6RegistryText(program())));
  TestProfile::Touch(program().Append(L"VanTa6.exe"));

  DataImporterMain();
  base::Value report = ReadReport();
  ASSERT_TRUE(report.is_object());
  EXPECT_EQ(1, report["report_version"]);
  EXPECT_EQ("importvantu6", report["task"]["name"]);
  EXPECT_EQ(2, report["task"]["import_kind"]);
  ASSERT_EQ(1u, report["sources"].size());
  const auto& source = report["sources"][0];
  EXPECT_EQ(program().Append(L"VTData.db").AsUTF8Unsafe(), source["path"]);
  EXPECT_EQ(m_profile.data_folder().Append(L"VT6Data.db").AsUTF8Unsafe(), source["read_from"]);
  EXPECT_EQ("V1", source["layout"]);
  EXPECT_TRUE(source["copied"]);
  EXPECT_FALSE(source["repaired"]);
  EXPECT_FALSE(source["unreadable"]);

  // The rows the reader saw, table by table.
  const std::map<std::string, int> rows_read = {
      {"MVItems", 1},   {"MusicItems", 4},
      {"PlayLists", 4}, {"PlayListItems", 7},  // every entry, kept or not
      {"Downing", 2},   {"DownHistory", 2}};
  ASSERT_EQ(rows_read.size(), report["source_tables"].size()) << report["source_tables"].dump();
  for (const auto& [table, rows] : rows_read) {
    const base::Value* entry = FindEntry(report["source_tables"], "table", table);
    ASSERT_TRUE(entry) << table;
    EXPECT_EQ(rows, (*entry)["rows_read"]) << table;
  }
  ExpectReportReconciles(report, m_profile.data_folder());

  const base::Value* lists =
      FindEntry(report["flows"], "from", "PlayLists", "to", "GeneralListTable");
  ASSERT_TRUE(lists);
  EXPECT_EQ(2, (*lists)["written"]);
  EXPECT_EQ(1, (*lists)["dropped_by_reason"]["list_type_not_imported"]);
  EXPECT_EQ(1, (*lists)["dropped_by_reason"]["list_without_entries"]);
  const base::Value* entries =
      FindEntry(report["flows"], "from", "PlayListItems", "to", "GeneralList_11");
  ASSERT_TRUE(entries);
  EXPECT_EQ(3, (*entries)["read"]);
  EXPECT_EQ(2, (*entries)["written"]);
  const base::Value* downloads =
      FindEntry(report["flows"], "from", "Downing", "to", "DownloadItem");
  ASSERT_TRUE(downloads);
  EXPECT_EQ(1, (*downloads)["written"]);
  EXPECT_EQ(1, (*downloads)["dropped_by_reason"]["download_unresolved"]);

  // The entry of "Gone" is dropped with its list, as one whose song is
  // missing; those of "Cloud" as entries of a list that is not imported.
  const base::Value* missing = FindEntry(report["dropped"], "reason", "list_entry_song_missing");
  ASSERT_TRUE(missing);
  EXPECT_EQ(2, (*missing)["count"]);
  EXPECT_EQ("list entries whose song is not in the library", (*missing)["text"]);
  ASSERT_EQ(2u, (*missing)["examples"].size());
  EXPECT_EQ("PlayListItems", (*missing)["examples"][0]["table"]);
  const base::Value* cloud = FindEntry(report["dropped"], "reason", "list_type_not_imported");
  ASSERT_TRUE(cloud);
  EXPECT_EQ("Cloud", (*cloud)["examples"][0]["name"]);
  EXPECT_EQ(2, (*cloud)["examples"][0]["entries"]);
  const base::Value* cloud_entries =
      FindEntry(report["dropped"], "reason", "list_entry_of_list_not_imported");
  ASSERT_TRUE(cloud_entries);
  EXPECT_EQ(2, (*cloud_entries)["count"]);
  const base::Value* orphan = FindEntry(report["dropped"], "reason", "list_entry_without_list");
  ASSERT_TRUE(orphan);
  EXPECT_EQ(1, (*orphan)["count"]);
  EXPECT_EQ(9, (*orphan)["examples"][0]["old_id"]);
  const base::Value* unresolved = FindEntry(report["dropped"], "reason", "download_unresolved");
  ASSERT_TRUE(unresolved);
  EXPECT_EQ(2, (*unresolved)["count"]);
  EXPECT_EQ("downloads whose file is not in the library", (*unresolved)["text"]);
  EXPECT_EQ("Lost", (*unresolved)["examples"][0]["name"]);
  EXPECT_EQ("Downing", (*unresolved)["examples"][0]["table"]);

  EXPECT_EQ("4", report["dbcheck"]["ImportEnd"]);
  EXPECT_EQ("100", report["dbcheck"]["ImportProgress"]);
  EXPECT_EQ("10:0,11:2", report["dbcheck"]["ImportPlayLists"]);
  std::string stages;
  for (const auto& stage : report["stages"])
    stages += stage["name"].get<std::string>() + ",";
  EXPECT_EQ(0u, stages.find("TaskDecision,Export,Prepare,ShareFileItems,")) << stages;
  EXPECT_NE(std::string::npos, stages.find(",Encrypt,Verify,")) << stages;
  EXPECT_EQ(stages.size() - 9, stages.find(",Replace,")) << stages;

  // The version-3 files now exist: the next run upgrades them and writes
  // neither the import's keys nor its figures.
  DataImporterMain();
  report = ReadReport();
  EXPECT_EQ("updatevantu8", report["task"]["name"]);
  EXPECT_EQ(0, report["task"]["import_kind"]);
  EXPECT_EQ("100", report["dbcheck"]["UpdateProgress"]);
  EXPECT_FALSE(report["dbcheck"].contains("ImportEnd"));
  EXPECT_TRUE(report["flows"].empty());
  EXPECT_TRUE(report["sources"].empty());
  EXPECT_FALSE(
      base::PathExists(m_profile.data_folder().Append(importer_names::kReportTempFileName)));

  base::Value kept;
  ASSERT_TRUE(
      base::ReadJsonFile(m_profile.data_folder().Append(importer_names::kReportFileName), &kept));
  EXPECT_EQ("importvantu6", kept["task"]["name"]);
  EXPECT_EQ("4", kept["dbcheck"]["ImportEnd"]);
  EXPECT_EQ(20u, kept["time"].get<std::string>().size()) << kept["time"];
  std::vector<std::string> history;
  base::FileEnumerator files(m_profile.data_folder().Append(L"reports"), L"*");
  for (base::FilePath path = files.Next(); !path.empty(); path = files.Next())
    history.push_back(path.BaseName().AsUTF8Unsafe());
  std::sort(history.begin(), history.end());
  ASSERT_EQ(2u, history.size());
  EXPECT_NE(std::string::npos, history[0].find("-importvantu6-")) << history[0];
  EXPECT_NE(std::string::npos, history[1].find("-updatevantu8-")) << history[1];
}

// Frees pages of the database at |path| and then forgets them in the file
// header: the integrity check fails until a "VACUUM" rebuilds the file.
void LoseFreePages(const base::FilePath& path) {
  {
    sql::Connection db;
    ASSERT_TRUE(db.Open(path));
    ASSERT_TRUE(db.Execute("CREATE TABLE Filler(t text)"));
    for (int i = 0; i < 40; ++i)
      ASSERT_TRUE(
          db.Execute(("INSERT INTO Filler VALUES ('" + std::string(2000, 'f') + "')").c_str()));
    ASSERT_TRUE(db.Execute("DROP TABLE Filler"));
  }
  std::string bytes = testing_support::ReadBytes(path);
  bytes.replace(32, 8, std::string(8, '\0'));
  testing_support::WriteBytes(path, bytes);
}

// "V2" library files of which one is damaged but repairable and one is no
// database at all: the report names both, and what was read still adds up.
TEST_F(ImportReportTest, V2RepairedAndUnreadableLibrariesAreNamed) {
  base::FilePath source = m_profile.root().Append(L"Old Player");
  V6V2Library first;
  first.lists = {{1, 3, L"", 0, 0}, {2, 0, L"Road", 0, 1}};
  first.items = {{1, 1, L"E:\\", L"a.mp3", L"A", Hash(1)},
                 {2, 2, L"E:\\", L"b.mp3", L"B", Hash(2)}};
  first.downloads = {{0, Hash(1), L"E:\\a.mp3", true}};
  ASSERT_TRUE(first.Write(source.Append(L"VTLibrary.db")));
  V6V2Library damaged;
  damaged.lists = {{5, 10, L"Kept", 0, 0}};
  damaged.items = {{1, 5, L"F:\\", L"c.mp3", L"C", Hash(3)},
                   {2, 5, L"F:\\", L"d.mp3", L"D", Hash(4)}};
  ASSERT_TRUE(damaged.Write(source.Append(L"VTLibrary1.db")));
  LoseFreePages(source.Append(L"VTLibrary1.db"));
  ASSERT_TRUE(base::WriteFile(source.Append(L"VTLibrary2.db"), std::string(8192, 'x')));

  ImportReport report;
  ProgressRecord record;
  record.set_report(&report);
  record.Initialise(TestDataFolder());
  std::wstring task = DecideTask(TestRunContext(source));
  ASSERT_EQ(L"importvantu6", task);
  record.set_import_kind(ImportKindOfTask(task));
  RunImport(TestRunContext(), &record);

  base::Value json = report.ToJson();
  ASSERT_EQ(3u, json["sources"].size()) << json["sources"].dump();
  std::map<std::string, const base::Value*> by_name;
  for (const auto& s : json["sources"]) {
    EXPECT_EQ("V2", s["layout"]);
    // The task decision copied the files from the source folder; the
    // exporter reads those copies.
    EXPECT_TRUE(s["reused_copy"]);
    by_name[base::FilePath::FromUTF8Unsafe(s["read_from"]).BaseName().AsUTF8Unsafe()] = &s;
  }
  ASSERT_EQ(3u, by_name.size());
  EXPECT_FALSE((*by_name["VTLibrary.db"])["repaired"]);
  EXPECT_FALSE((*by_name["VTLibrary.db"])["unreadable"]);
  EXPECT_TRUE((*by_name["VTLibrary1.db"])["repaired"]);
  EXPECT_FALSE((*by_name["VTLibrary1.db"])["unreadable"]);
  EXPECT_TRUE((*by_name["VTLibrary2.db"])["unreadable"]);

  // Both songs of the repaired file are there, with its list.
  const base::Value* kept = FindEntry(json["flows"], "to", "GeneralList_5");
  ASSERT_TRUE(kept);
  EXPECT_EQ(2, (*kept)["written"]);
  ExpectReportReconciles(json, m_profile.data_folder());
  EXPECT_EQ(4, report.WrittenRows("ShareFileItems"));
  // The unreadable file's music items and lists.
  EXPECT_EQ(L"6", m_profile.DBCheck(L"ImportState"));
}

// Rows a table loses after its writer sent them are caught by the count of
// the finished file, and reported rather than hidden.
TEST_F(ImportReportTest, CountOfTheFinishedFileCatchesLostRows) {
  V6V1Database db;
  db.music = {Music(1, L"One"), Music(2, L"Two")};
  db.lists = {{10, 3, L"", 0, 0}};
  ASSERT_TRUE(db.Write(program().Append(L"VTData.db")));
  ASSERT_TRUE(base::WriteFile(m_profile.root().Append(L"user.reg"), V6RegistryText(program())));
  TestProfile::Touch(program().Append(L"VanTa6.exe"));

  ImportReport report;
  ProgressRecord record;
  record.set_report(&report);
  record.Initialise(TestDataFolder());
  record.set_import_kind(ImportKindOfTask(L"importvantu6"));
  RunImport(TestRunContext(), &record, [&](const char* stage) {
    if (std::string(stage) != "ListCountReport")
      return;
    sql::Connection raw;
    ASSERT_TRUE(raw.Open(m_profile.data_folder().Append(L"VTMusicV2.db.tmp")));
    ASSERT_TRUE(
        raw.Execute("DELETE FROM ShareFileItems WHERE id = (SELECT max(id) FROM "
                    "ShareFileItems)"));
  });
  base::Value json = report.ToJson();
  const base::Value* files = FindEntry(json["target_tables"], "table", "ShareFileItems");
  ASSERT_TRUE(files) << json["target_tables"].dump();
  EXPECT_EQ(2, (*files)["rows_sent"]);
  EXPECT_EQ(1, (*files)["rows_counted"]);
  EXPECT_EQ(false, (*files)["matches"]);
  EXPECT_EQ("VTMusicV3.db", (*files)["database"]);
  const base::Value* lists = FindEntry(json["target_tables"], "table", "GeneralListTable");
  ASSERT_TRUE(lists);
  EXPECT_EQ(true, (*lists)["matches"]);
}

// Records of a reader that does not count, and drops without examples
// beyond the first few, still show in the totals.
TEST(ImportReportUnitTest, UnrecordedOriginsAndExampleLimit) {
  ImportReport report;
  {
    TargetTableTally tally(&report, "\"GeneralList_-3\"");
    tally.Written(0);
    tally.Written(0);
    for (int i = 0; i < 7; ++i)
      tally.Dropped(0, drop_reason::kListEntrySongMissing, {"", i, L"entry"});
  }
  base::Value json = report.ToJson();
  ASSERT_EQ(1u, json["flows"].size());
  EXPECT_EQ("GeneralList_-3", json["flows"][0]["to"]);
  EXPECT_EQ("(not recorded)", json["flows"][0]["from"]);
  EXPECT_EQ(9, json["flows"][0]["read"]);
  EXPECT_EQ(2, report.WrittenRows("GeneralList_-3"));
  ASSERT_EQ(1u, json["dropped"].size());
  EXPECT_EQ(7, json["dropped"][0]["count"]);
  EXPECT_EQ(ImportReport::kMaxExamples, json["dropped"][0]["examples"].size());
  EXPECT_EQ(7, report.DropCount(drop_reason::kListEntrySongMissing));
}

}  // namespace

// The history keeps the newest reports, ordered by time and then by their
// number within the second (not by their names: a "nothing" run sorts after
// an "importvantu6" run of the same second), and leaves other files alone.
TEST(ReportHistoryTest, NamesAreUniqueWithinASecondAndTheOldestGo) {
  testing_support::ScopedTempDir temp;
  const base::FilePath folder = temp.path();
  const double second = 1795563793.25;  // 2026-11-24T23:43:13Z
  EXPECT_EQ("20261124T234313Z", UtcTimeStamp(second));

  base::FilePath first = KeepRunReport(folder, L"importvantu6", second, "{\"n\":1}\n");
  base::FilePath second_run = KeepRunReport(folder, L"", second + 0.5, "{\"n\":2}\n");
  EXPECT_EQ(L"20261124T234313Z-importvantu6-1.json", first.BaseName().value());
  EXPECT_EQ(L"20261124T234313Z-nothing-2.json", second_run.BaseName().value());
  EXPECT_EQ(second_run, LatestRunReport(folder));

  const base::FilePath foreign = folder.Append(L"reports").Append(L"notes.json");
  ASSERT_TRUE(base::WriteFile(foreign, "{}"));
  base::FilePath last;
  for (int i = 0; i < 25; ++i)
    last = KeepRunReport(folder, L"updatevantu8", second + 60 * (i + 1), "{}\n");
  EXPECT_EQ(last, LatestRunReport(folder));
  EXPECT_FALSE(base::PathExists(first));
  EXPECT_FALSE(base::PathExists(second_run));
  EXPECT_TRUE(base::PathExists(foreign));
  int kept = 0;
  base::FileEnumerator files(folder.Append(L"reports"), L"*-updatevantu8-1.json");
  for (base::FilePath path = files.Next(); !path.empty(); path = files.Next())
    ++kept;
  EXPECT_EQ(20, kept);
}

}  // namespace data_importer
