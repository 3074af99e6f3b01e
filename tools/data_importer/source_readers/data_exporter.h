#ifndef TOOLS_DATA_IMPORTER_SOURCE_READERS_DATA_EXPORTER_H_
#define TOOLS_DATA_IMPORTER_SOURCE_READERS_DATA_EXPORTER_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/file_path.h"
#include "tools/data_importer/database_helper/database_helper.h"
#include "tools/data_importer/environment/run_context.h"

class ImportModel;
class ImportReport;

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

  // Makes |work_copy| the file the exporter reads. When it exists already
  // (an earlier run left it) it is used as it is and |find_source| is not
  // called, so the old installation is not even looked at. Otherwise the
  // source |find_source| names is copied to it; an empty or missing source
  // ends with kNoSource, a failed copy with kCopyFailed (nothing more is
  // copied then). In the two good cases the work copy is then copied into
  // the dated backup folder as |backup_name| and to the intermediate copy
  // "DataImporter.db" of the data folder; failures of these two copies are
  // logged and do not change the answer. The import report records the
  // source under |layout|: reused, copied, or unreadable when the copy
  // failed.
  [[nodiscard]] WorkCopy ObtainWorkCopy(const base::FilePath& work_copy,
                                        const std::function<base::FilePath()>& find_source,
                                        const std::wstring& backup_name,
                                        const std::string& layout = std::string());

  // Opens |path| into a fresh m_db with the integrity check and one repair
  // (DatabaseHelper::OpenAndCheck). False when the file stays unsound; m_db
  // is closed then. The import report marks the file repaired or
  // unreadable.
  [[nodiscard]] bool OpenSourceWithRepair(const base::FilePath& path);

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

  // The run's import report (the model's), where readers count what they
  // read, made and dropped with SourceTableTally. Never null.
  ImportReport* Report();

  friend class ReadProgressTicker;

  const RunContext& m_context;
  ImportModel* m_model;                  // not owned; outlives the exporter
  std::unique_ptr<DatabaseHelper> m_db;  // the open source copy

 private:
  std::unique_ptr<ImportReport> spare_report_;  // without a model
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
  int tenths() const { return tenths_; }

 private:
  AdvanceCallback advance_;
  int64_t total_rows_;
  int64_t rows_ = 0;
  int tenths_ = 0;
};

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

#endif  // TOOLS_DATA_IMPORTER_SOURCE_READERS_DATA_EXPORTER_H_
