#include "tools/data_importer/source_readers/data_exporter.h"

#include <gtest/gtest.h>

#include "base/file_util.h"
#include "sql/connection.h"
#include "testing/test_support.h"
#include "tools/data_importer/environment/data_folder.h"
#include "testing/importer_test_util.h"
#include "tools/data_importer/database_helper/db_row_reader.h"
#include "tools/data_importer/run_record/import_report.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/target_store/import_model.h"

namespace data_importer {

namespace {

// Opens the protected mechanisms of the base to the tests.
class ProbeExporter : public DataExporter {
 public:
  explicit ProbeExporter(const RunContext& context, ImportModel* model = nullptr)
      : DataExporter(context, model) {}
  ExportResult ExportData() override { return ExportResult::kExported; }
  std::wstring Dump(const base::FilePath&) override { return std::wstring(); }
  base::FilePath GetDatabasePath() override { return base::FilePath(); }

  using DataExporter::AdvanceReadProgress;
  using DataExporter::ObtainWorkCopy;
  using DataExporter::OpenSourceWithRepair;
  using DataExporter::ReadRows;
  using DataExporter::Report;
  using DataExporter::ReportSalvageLosses;
  using DataExporter::RowQuery;
  using DataExporter::WorkCopy;
  DatabaseHelper* db() { return m_db.get(); }
};

TEST(DataExporterTest, WorkCopyReusedCopiedOrMissing) {
  TestProfile profile;
  const RunContext run_context = TestRunContext();
  ProbeExporter exporter(run_context);
  base::FilePath folder = TestDataFolder();
  base::FilePath work = folder.Append(L"Work.db");
  base::FilePath source = profile.root().Append(L"Source.db");
  base::FilePath backup = GetDatedBackupFolder(TestRunContext()).Append(L"Backup.db");
  base::FilePath intermediate = folder.Append(L"DataImporter.db");
  auto find = [&] { return source; };

  // No earlier copy, no source: nothing is created.
  EXPECT_EQ(ProbeExporter::WorkCopy::kNoSource, exporter.ObtainWorkCopy(work, find, L"Backup.db"));
  EXPECT_FALSE(base::PathExists(work));
  EXPECT_FALSE(base::PathExists(intermediate));

  testing_support::WriteBytes(source, "first");
  EXPECT_EQ(ProbeExporter::WorkCopy::kCopied, exporter.ObtainWorkCopy(work, find, L"Backup.db"));
  EXPECT_EQ("first", testing_support::ReadBytes(work));
  EXPECT_EQ("first", testing_support::ReadBytes(backup));
  EXPECT_EQ("first", testing_support::ReadBytes(intermediate));

  // A second run keeps its work copy while the source is unchanged...
  testing_support::WriteBytes(intermediate, "stale");
  EXPECT_EQ(ProbeExporter::WorkCopy::kReused, exporter.ObtainWorkCopy(work, find, L"Backup.db"));
  EXPECT_EQ("first", testing_support::ReadBytes(intermediate));

  // ...copies it again once the source changed, even to the same size, or
  // when the record of the source is gone, taking its journal along...
  testing_support::WriteBytes(source, "fresh");
  testing_support::WriteBytes(base::FilePath(source.value() + L"-journal"), "journal");
  EXPECT_EQ(ProbeExporter::WorkCopy::kCopied, exporter.ObtainWorkCopy(work, find, L"Backup.db"));
  EXPECT_EQ("fresh", testing_support::ReadBytes(work));
  EXPECT_EQ("journal", testing_support::ReadBytes(base::FilePath(work.value() + L"-journal")));
  EXPECT_EQ(ProbeExporter::WorkCopy::kReused, exporter.ObtainWorkCopy(work, find, L"Backup.db"));
  testing_support::WriteBytes(work, "damaged");
  ASSERT_TRUE(base::DeleteFile(SourceRecordPath(work)));
  ASSERT_TRUE(base::DeleteFile(base::FilePath(source.value() + L"-journal")));
  EXPECT_EQ(ProbeExporter::WorkCopy::kCopied, exporter.ObtainWorkCopy(work, find, L"Backup.db"));
  EXPECT_EQ("fresh", testing_support::ReadBytes(work));
  EXPECT_FALSE(base::PathExists(base::FilePath(work.value() + L"-journal")));  // stale, removed

  // ...and reads it again when the source is gone: it is all that is left.
  ASSERT_TRUE(base::DeleteFile(source));
  EXPECT_EQ(ProbeExporter::WorkCopy::kReused, exporter.ObtainWorkCopy(work, find, L"Backup.db"));
  EXPECT_EQ("fresh", testing_support::ReadBytes(work));
  testing_support::WriteBytes(source, "fresh");

  // A source that cannot be copied (here: a folder in the work copy's way
  // is missing) ends before any other copy.
  base::FilePath unreachable = folder.Append(L"no such folder").Append(L"Work.db");
  EXPECT_TRUE(base::DeleteFile(intermediate));
  EXPECT_EQ(ProbeExporter::WorkCopy::kCopyFailed,
            exporter.ObtainWorkCopy(unreachable, find, L"Backup.db"));
  EXPECT_FALSE(base::PathExists(intermediate));
}

// A source no compaction repairs is read from its salvage copy: the rows
// past the damaged page come through ReadRows, the rows the index names but
// the table lost are counted as read and dropped (by id), and the copy goes
// with the exporter. A query that cannot be prepared fails its reader.
TEST(DataExporterTest, SalvagedSourceIsReadAndItsLossesCounted) {
  testing_support::ScopedTempDir dir;
  base::FilePath work = dir.path().Append(L"work.db");
  {
    sql::Connection db;
    db.set_page_size(4096);
    ASSERT_TRUE(db.Open(work));
    ASSERT_TRUE(
        db.Execute("CREATE TABLE T(ID INTEGER PRIMARY KEY, Pad TEXT);"
                   "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 2000) "
                   "INSERT INTO T SELECT i, hex(randomblob(90)) FROM n;"
                   "CREATE INDEX ByPad ON T(Pad);"));
  }
  std::string bytes = testing_support::ReadBytes(work);
  bytes.replace(40 * 4096, 4096, 4096, '\0');  // a leaf of T
  testing_support::WriteBytes(work, bytes);
  base::FilePath salvage(work.value() + L".salvage");
  base::Value report;
  {
    const RunContext run_context = TestRunContext();
    ProbeExporter exporter(run_context);
    ASSERT_TRUE(exporter.OpenSourceWithRepair(work));
    EXPECT_TRUE(base::PathExists(salvage));
    auto rows =
        exporter.ReadRows({"SELECT * FROM T", "T"}, [](DbRowReader& row, SourceTableTally&) {
          return row.GetInt("ID") % 2 == 0;  // keeps the even ones
        });
    EXPECT_TRUE(rows.ok);
    EXPECT_GT(rows.read, 1950u);
    EXPECT_LT(rows.read, 2000u);
    EXPECT_NEAR(rows.read / 2.0, rows.kept, 20);
    exporter.ReportSalvageLosses({{"t", 16, nullptr, "Target"}});
    EXPECT_FALSE(exporter
                     .ReadRows({"SELECT * FROM Missing", "Missing"},
                               [](DbRowReader&, SourceTableTally&) { return true; })
                     .ok);
    report = exporter.Report()->ToJson();
    const base::Value* salvaged = FindEntry(report["salvage"], "table", "T");
    ASSERT_NE(nullptr, salvaged);
    EXPECT_EQ(static_cast<int64_t>(rows.read), (*salvaged)["rows_salvaged"]);
    EXPECT_EQ(false, (*salvaged)["complete"]);
    EXPECT_EQ(2000 - static_cast<int64_t>(rows.read), (*salvaged)["rows_known_lost"]);
    const base::Value* table = FindEntry(report["source_tables"], "table", "T");
    ASSERT_NE(nullptr, table);
    EXPECT_EQ(2000, (*table)["rows_read"]);  // the lost rows are counted too
    EXPECT_EQ(2000 - static_cast<int64_t>(rows.read),
              exporter.Report()->DropCount(drop_reason::kSourceRowsUnreadable));
  }
  EXPECT_FALSE(base::PathExists(salvage));
  EXPECT_EQ(bytes, testing_support::ReadBytes(work));
}

TEST(DataExporterTest, OpenSourceWithRepairRefusesGarbage) {
  testing_support::ScopedTempDir dir;
  const RunContext run_context = TestRunContext();
  ProbeExporter exporter(run_context);
  base::FilePath good = dir.path().Append(L"good.db");
  {
    sql::Connection db;
    ASSERT_TRUE(db.Open(good));
    ASSERT_TRUE(db.Execute("CREATE TABLE T(x)"));
  }
  base::FilePath garbage = dir.path().Append(L"garbage.db");
  testing_support::WriteBytes(garbage, std::string(4096, 'g'));
  EXPECT_TRUE(exporter.OpenSourceWithRepair(good));
  EXPECT_TRUE(exporter.db()->connection()->DoesTableExist("T"));
  EXPECT_FALSE(exporter.OpenSourceWithRepair(garbage));
  EXPECT_FALSE(exporter.db()->connection()->DoesTableExist("T"));  // the old helper is gone
}

TEST(DataExporterTest, DumpSummaries) {
  testing_support::ScopedTempDir dir;
  base::FilePath missing = dir.path().Append(L"VTData.db");
  EXPECT_EQ(L"{" + missing.value() + L"} do not exists.",
            DumpTableSummary(missing, Generation7DumpTables()));
  EXPECT_FALSE(base::PathExists(missing));  // nothing was created

  base::FilePath none = dir.path().Append(L"none.db");
  {
    sql::Connection db;
    ASSERT_TRUE(db.Open(none));
    EXPECT_TRUE(db.Execute("CREATE TABLE Unrelated(x)"));
  }
  EXPECT_EQ(L"SUMMARY OF DB FILE {" + none.value() + L"}: \n",
            DumpTableSummary(none, Generation7DumpTables()));

  base::FilePath some = dir.path().Append(L"some.db");
  {
    sql::Connection db;
    ASSERT_TRUE(db.Open(some));
    EXPECT_TRUE(db.Execute("CREATE TABLE PlayLists(PlayListID integer)"));
    EXPECT_TRUE(db.Execute("CREATE TABLE AppLists(ID integer)"));
    EXPECT_TRUE(db.Execute("INSERT INTO AppLists VALUES (1), (2), (NULL)"));
  }
  EXPECT_EQ(L"SUMMARY OF DB FILE {" + some.value() +
                L"}: \n"
                L"\tAppLists: COUNT(ID) is {2}.\n"
                L"\tPlayLists: COUNT(PlayListID) is {0}.\n",
            DumpTableSummary(some, Generation7DumpTables()));

  base::FilePath garbage = dir.path().Append(L"garbage.db");
  testing_support::WriteBytes(garbage, std::string(4096, 'g'));
  EXPECT_EQ(L"Failed to open database file {" + garbage.value() + L"}.\n",
            DumpTableSummary(garbage, Generation7DumpTables()));
}

TEST(DataExporterTest, ReadProgressStopsShortOfTheBuild) {
  TestProfile profile;
  ProgressRecord record;
  record.Initialise(TestDataFolder());
  record.SetProgress(10);
  ImportModel model(&record);
  const RunContext run_context = TestRunContext();
  ProbeExporter exporter(run_context, &model);

  exporter.AdvanceReadProgress(5);
  EXPECT_EQ(L"15", profile.DBCheck(L"ImportProgress"));
  record.SetProgress(46);
  exporter.AdvanceReadProgress(5);  // crosses 49: stops at it
  EXPECT_EQ(L"49", profile.DBCheck(L"ImportProgress"));
  exporter.AdvanceReadProgress(1);
  EXPECT_EQ(49, record.progress());
  exporter.AdvanceReadProgress(-3);  // never goes back
  EXPECT_EQ(49, record.progress());
  // Progress the build already moved past 49 is left alone, not pulled down.
  record.SetProgress(60);
  exporter.AdvanceReadProgress(1);
  EXPECT_EQ(60, record.progress());
  EXPECT_EQ(L"60", profile.DBCheck(L"ImportProgress"));

  // Without a progress record the advance is a no-op.
  ImportModel bare;
  ProbeExporter detached(run_context, &bare);
  detached.AdvanceReadProgress(5);

  // A ticker made on the exporter advances the record itself.
  record.SetProgress(10);
  ReadProgressTicker ticker(&exporter, 4);
  for (int i = 0; i < 4; ++i)
    ticker.Tick();
  EXPECT_EQ(L"20", profile.DBCheck(L"ImportProgress"));
}

TEST(DataExporterTest, TickerAdvancesOncePerTenthOfTheRows) {
  std::vector<int> rows_that_advanced;
  int total_delta = 0;
  int row = 0;
  ReadProgressTicker ticker(
      [&](int delta) {
        rows_that_advanced.push_back(row);
        total_delta += delta;
      },
      25);
  for (row = 1; row <= 30; ++row)  // five rows more than announced
    ticker.Tick();
  EXPECT_EQ((std::vector<int>{3, 5, 8, 10, 13, 15, 18, 20, 23, 25}), rows_that_advanced);
  EXPECT_EQ(10, total_delta);
  EXPECT_EQ(10, ticker.tenths());

  // Fewer rows than tenths: each row advances by the tenths it covers.
  std::vector<int> deltas;
  ReadProgressTicker small([&](int delta) { deltas.push_back(delta); }, 3);
  for (int i = 0; i < 3; ++i)
    small.Tick();
  EXPECT_EQ((std::vector<int>{3, 3, 4}), deltas);

  int calls = 0;
  ReadProgressTicker empty([&](int) { ++calls; }, 0);
  empty.Tick();
  EXPECT_EQ(0, calls);
}

}  // namespace

}  // namespace data_importer
