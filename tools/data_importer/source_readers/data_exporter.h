#ifndef TOOLS_DATA_IMPORTER_SOURCE_READERS_DATA_EXPORTER_H_
#define TOOLS_DATA_IMPORTER_SOURCE_READERS_DATA_EXPORTER_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/file_path.h"
#include "tools/data_importer/database_helper/database_helper.h"
#include "tools/data_importer/database_helper/salvage_copy.h"
#include "tools/data_importer/environment/run_context.h"

namespace data_importer {

class DbRowReader;
class ImportModel;
class ImportReport;
class ReadProgressTicker;
class SourceTableTally;

// What ExportData answers, as the 32-bit numbers the driver compares with.
enum class ExportResult : int32_t {
  // Data was read into the model (some sources may have failed, with their
  // state bits): the new databases are built.
  kExported = 0,
  // The source was not found or could not be copied, and nothing was
  // imported: nothing is built.
  kNothingExported = 1,
};

// The interface of every source reader (one per earlier generation). The
// driver creates the exporter on the run's import model and calls, in this
// order: GetDatabasePath, Dump with that path, ExportData; it builds the new
// databases only when ExportData answers 0, then destroys the exporter.
// Nothing here throws: source failures become state bits via ReportState.
class DataExporter {
 public:
  // |context| (the machine's folders, registry and drives) and |model|
  // outlive the exporter.
  DataExporter(const RunContext& context, ImportModel* model);
  virtual ~DataExporter();
  DataExporter(const DataExporter&) = delete;
  DataExporter& operator=(const DataExporter&) = delete;

  // Reads every source of the generation into the model.
  [[nodiscard]] virtual ExportResult ExportData() = 0;

  // Diagnostic summary of the source database at |path|.
  virtual std::wstring Dump(const base::FilePath& path) = 0;

  // Where the generation's main source database is expected.
  virtual base::FilePath GetDatabasePath() = 0;

  // ORs |bits| into the run's import state and writes it to section
  // "DBCheck" at once. Does nothing without a model.
  void ReportState(uint32_t bits);

 protected:
  // How ObtainWorkCopy ended.
  enum class WorkCopy {
    kReused,      // a copy left by an earlier run was used as it is
    kCopied,      // the source was copied afresh
    kNoSource,    // no earlier copy and no source file
    kCopyFailed,  // the source exists but could not be copied
  };

  // The tag that starts this exporter's log lines, e.g. L"[V6数据导入] ".
  virtual const wchar_t* LogTag() const;

  // Replaces m_db with a fresh helper (the previous one closes first).
  void ResetDatabase();

  // Copies |from| to |to|. A failure is logged at level 3 as
  // "Copy file {from} to {to} FAILED, error code {n}." and answered false.
  [[nodiscard]] bool CopyWithLog(const base::FilePath& from, const base::FilePath& to);
  // CopyWithLog of a database file together with its rollback journal or
  // write-ahead log when it has one ("-journal", "-wal"); a journal left
  // beside |to| by an earlier copy is removed. False when any of it fails.
  [[nodiscard]] bool CopyDatabaseWithLog(const base::FilePath& from, const base::FilePath& to);

  // Makes |work_copy| the file the exporter reads. A work copy an earlier
  // run left is used again when the source |find_source| names no longer
  // exists, or is unchanged since the copy was made (SourceFingerprint,
  // recorded beside the copy); otherwise (no record, a changed source) the
  // source is copied again, with its journal. An empty or missing source
  // and no copy ends with kNoSource, a failed copy with kCopyFailed
  // (nothing more is copied then). In the two good cases the work copy is
  // then copied into the dated backup folder as |backup_name| and, with
  // |intermediate|, to the intermediate copy "DataImporter.db" of the data
  // folder; failures of these two copies are logged and do not change the
  // answer. The import
  // report records the source under |layout| (reused, copied, or unreadable
  // when the copy failed) and why the copy was reused or made.
  [[nodiscard]] WorkCopy ObtainWorkCopy(const base::FilePath& work_copy,
                                        const std::function<base::FilePath()>& find_source,
                                        const std::wstring& backup_name,
                                        const std::string& layout = std::string(),
                                        bool intermediate = true);

  // Opens |path| into a fresh m_db with the integrity check and one repair
  // (DatabaseHelper::OpenAndCheck). A file that stays unsound is not given
  // up: its readable rows are copied into "<path>.salvage" (SalvageCopy),
  // which m_db then reads, and the report lists per table the rows
  // salvaged and known lost. False only when not even a salvage copy can be
  // made; m_db is closed then and the report marks the file unreadable.
  // The salvage copy is removed when the next source opens and with the
  // exporter.
  [[nodiscard]] bool OpenSourceWithRepair(const base::FilePath& path);

  // How the losses of a salvaged table are reported: the failure bit of
  // the reader of |table| (a trailing "*" matches every table the prefix
  // starts), the source table the report counts the lost rows under
  // (|counted_as|, else the table's own name) and the target they were
  // meant for (|target|, else the table's own name).
  struct SalvageRule {
    const char* table;
    uint32_t failure_bit;
    const char* counted_as = nullptr;
    const char* target = nullptr;
  };
  // After the readers of a salvaged source: every table that lost rows
  // reports its reader's failure bit, and its rows known lost are counted
  // as read and dropped ("source_rows_unreadable", with their row ids).
  // Tables that no rule names are read by no reader and report nothing.
  void ReportSalvageLosses(const std::vector<SalvageRule>& rules);
  // Whether the open source is a salvage copy that holds no row at all.
  [[nodiscard]] bool NothingSalvaged() const;
  // Whether the open source is a salvage copy.
  bool salvaged() const { return !m_salvage_copy.empty(); }

  // The highest progress a reader may report: the build sequence starts at
  // 50, so reading stops one short of it.
  static constexpr int kReadProgressCeiling = 49;

  // Advances the run's import progress by |delta| (floor 0), but never past
  // kReadProgressCeiling; a delta that would cross it advances only up to
  // it. Does nothing without a model or a progress record, or for a delta
  // of 0 or less.
  void AdvanceReadProgress(int delta);

  // How far the read progress moves after each table reader.
  static constexpr int kTableReadStep = 5;

  // One table reader has finished: advances the read progress by
  // kTableReadStep (within the ceiling above).
  void TableRead();

  // One query over the open source, walked row by row.
  struct RowQuery {
    std::string sql{};    // the whole statement text
    std::string table{};  // the source table the report counts the rows under
    // When not empty, "Size of <size_name> is {<kept>}." is logged after
    // the rows.
    std::wstring size_name{};
    // Ticks once per row when set (the read progress by tenths).
    ReadProgressTicker* ticker = nullptr;
  };
  // What ReadRows got.
  struct RowsRead {
    bool ok = false;  // prepared and walked to the end without an error
    size_t read = 0;  // rows handed to the row handler
    size_t kept = 0;  // rows the handler made a record of
  };
  // Makes the record of one row (tally->Made) or drops the row with its
  // reason (tally->Dropped); answers whether it kept one. The row is already
  // counted as read.
  using RowHandler = std::function<bool(DbRowReader& row, SourceTableTally& tally)>;

  // The loop of every table reader: prepares |query| on the open source,
  // hands each row to |handle_row|, counts it in the import report under the
  // query's table and logs the size. Not ok when the statement cannot be
  // prepared (a missing table) or the rows stop at an error, a damaged page
  // of a file that passed the integrity check: the rows before the error are
  // kept, and the failure is logged with the table's name.
  [[nodiscard]] RowsRead ReadRows(const RowQuery& query, const RowHandler& handle_row);

  // The run's import report (the model's), where readers count what they
  // read, made and dropped with SourceTableTally. Never null.
  ImportReport* Report();

  friend class ReadProgressTicker;

  const RunContext& m_context;
  ImportModel* m_model;                  // not owned; outlives the exporter
  std::unique_ptr<DatabaseHelper> m_db;  // the open source copy
  // The file the report counts the rows of m_db under: our work copy of
  // the source, also while a salvage copy of it is what m_db reads.
  base::FilePath m_source_path;

 private:
  void DiscardSalvageCopy();

  base::FilePath m_salvage_copy;                 // the salvage copy m_db reads, if any
  std::vector<SalvagedTable> m_salvaged;         // what it got, table by table
  std::unique_ptr<ImportReport> m_spare_report;  // without a model
};

// Moves the read progress along while one long reader walks its rows: Tick()
// once per row advances by 1 each time another tenth of |total_rows| has
// been read, so a reader that reaches its total has advanced by exactly 10.
// Rows beyond the total advance nothing more; a total of 0 or less never
// advances. The advance itself goes through the callback (normally an
// exporter's AdvanceReadProgress, which keeps it below the build's share).
class ReadProgressTicker {
 public:
  using AdvanceCallback = std::function<void(int delta)>;

  ReadProgressTicker(AdvanceCallback advance, int64_t total_rows);
  // Ticks advance |exporter|'s read progress.
  ReadProgressTicker(DataExporter* exporter, int64_t total_rows);

  void Tick();

  // Tenths advanced so far (0 to 10).
  int tenths() const { return m_tenths; }

 private:
  AdvanceCallback m_advance;
  int64_t m_total_rows;
  int64_t m_rows = 0;
  int m_tenths = 0;
};

// What the import report tells the user when a source was found but could
// not be copied (the old player may still hold it open) or not one row of
// it could be read.
std::wstring UncopiedSourceWords(const base::FilePath& source);
std::wstring UnreadableSourceWords(const base::FilePath& source);

// The file beside |work_copy| that records what its source was when the
// copy was made: "<work copy>.source".
base::FilePath SourceRecordPath(const base::FilePath& work_copy);

// What tells a source file apart from a later state of it: its size,
// modification time and the digests of its first and last 4096 bytes, and
// the size and time of a journal or write-ahead log beside it. None when
// the file cannot be read.
std::optional<std::string> SourceFingerprint(const base::FilePath& source);

// The number of rows of |table| in |db|, the total of a ReadProgressTicker
// over it; 0 when the table cannot be counted.
int64_t CountRows(sql::Connection& db, const char* table);

// Pairs of (table, counted column) for DumpTableSummary.
using DumpTableList = std::vector<std::pair<const char*, const char*>>;

// The table summary of a source database: "{path} do not exists." when the
// file is missing; "Failed to open database file {path}.\n" when it cannot
// be opened soundly; otherwise "SUMMARY OF DB FILE {path}: \n" followed by
// "\t<table>: COUNT(<column>) is {<n>}.\n" for each listed table that exists.
std::wstring DumpTableSummary(const base::FilePath& path, const DumpTableList& tables);

// The generation-7 tables, in summary order.
const DumpTableList& Generation7DumpTables();

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_SOURCE_READERS_DATA_EXPORTER_H_
