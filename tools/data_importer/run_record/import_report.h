#ifndef TOOLS_DATA_IMPORTER_RUN_RECORD_IMPORT_REPORT_H_
#define TOOLS_DATA_IMPORTER_RUN_RECORD_IMPORT_REPORT_H_

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/file_path.h"
#include "base/json_file.h"

namespace data_importer {

// Why a record of an older generation did not become a row of the new
// databases. |key| names the reason in the report; |one| and |many| describe
// one record and several of them for a person.
struct DropReason {
  const char* key;
  const char* one;
  const char* many;
};

namespace drop_reason {
inline constexpr DropReason kListEntrySongMissing = {
    "list_entry_song_missing", "list entry whose song is not in the library",
    "list entries whose song is not in the library"};
inline constexpr DropReason kListTypeNotImported = {"list_type_not_imported",
                                                    "list of a type that is not imported",
                                                    "lists of a type that is not imported"};
inline constexpr DropReason kEntryOfListNotImported = {"list_entry_of_list_not_imported",
                                                       "entry of a list that is not imported",
                                                       "entries of lists that are not imported"};
inline constexpr DropReason kListEntryWithoutList = {
    "list_entry_without_list", "list entry whose list is not in the source",
    "list entries whose list is not in the source"};
inline constexpr DropReason kRadioSongWithoutChannel = {
    "radio_song_without_channel", "radio song of no channel", "radio songs of no channel"};
inline constexpr DropReason kListWithoutEntries = {"list_without_entries",
                                                   "list without entries that can be imported",
                                                   "lists without entries that can be imported"};
inline constexpr DropReason kDownloadUnresolved = {"download_unresolved",
                                                   "download whose file is not in the library",
                                                   "downloads whose file is not in the library"};
inline constexpr DropReason kFolderFileMissing = {
    "folder_file_missing", "watched-folder file that is not in the library",
    "watched-folder files that are not in the library"};
inline constexpr DropReason kUnlinkedFile = {
    "unlinked_file", "file without a path (its link taken away by the user)",
    "files without a path (their link taken away by the user)"};
inline constexpr DropReason kCopyNotEncrypted = {
    "copy_not_encrypted", "row of a version-2 database whose encrypted copy is not in place",
    "rows of a version-2 database whose encrypted copy is not in place"};
inline constexpr DropReason kCloudListsMissing = {
    "cloud_lists_missing", "cloud-list row without a cloud list to belong to",
    "cloud-list rows without a cloud list to belong to"};
inline constexpr DropReason kCloudListLeftBehind = {
    "cloud_list_left_behind",
    "row of a cloud-list table that the cloud-list move leaves behind (an older layout's, or "
    "the songs of a list the server does not know)",
    "rows of cloud-list tables that the cloud-list move leaves behind (an older layout's, or "
    "the songs of lists the server does not know)"};
inline constexpr DropReason kSourceRowsUnreadable = {
    "source_rows_unreadable", "row of a damaged source that could not be read",
    "rows of a damaged source that could not be read"};
inline constexpr DropReason kRowRefused = {"row_refused", "row refused by the new database",
                                           "rows refused by the new database"};
}  // namespace drop_reason

// The account of one run, written at its end as "ImportReport.json" in the
// data folder: the task, every source found and what became of it, per
// source table the rows read and the records made, per source-to-target pair
// the rows read, written and dropped (by reason, with the first examples),
// per target table the rows the writers sent and the rows counted in the
// finished files, the settings keys carried, the "DBCheck" values written
// and the time of each stage. It changes nothing the run does or writes
// elsewhere.
//
// Readers reach the report through the import model (ImportModel::report())
// and count with SourceTableTally; writers count with TargetTableTally (the
// row-writing rule of table_writer.h does it for them). A record carries the
// source table it was read from as its |origin|, an id this report hands
// out; origin 0 stands for "not recorded", so records of a reader that does
// not count still add up on the target side.
//
// Used on the run's one thread. Nothing here fails the run: a report that
// cannot be written is logged and the run goes on.
class ImportReport {
 public:
  static constexpr int kVersion = 1;
  // Examples kept per drop reason.
  static constexpr size_t kMaxExamples = 5;

  // Flags of a source file.
  enum SourceFlags : unsigned {
    kCopied = 1,      // copied into the data folder by this run
    kReusedCopy = 2,  // a copy an earlier run left in the data folder was read
    kRepaired = 4,    // damaged; readable after the compaction ("VACUUM")
    kUnreadable = 8,  // exists but could not be copied or opened soundly
    kSalvaged = 16,   // damaged beyond the compaction; read row by row
  };

  struct DropExample {
    std::string table;  // source table, or target table for a refused row
    int64_t old_id = 0;
    std::wstring name;
    // The entries of a dropped list (dropped with it); -1 for other records.
    int64_t entries = -1;
  };

  ImportReport();

  // Told the stage the run enters, in words ("reading MusicItems",
  // "writing songs", "encrypting", "verifying", "replacing"), on the run's
  // thread: lets whoever runs the importer show what the progress is
  // waiting for. Empty by default.
  using StageObserver = std::function<void(const std::string& stage)>;
  void set_stage_observer(StageObserver observer) { m_stage_observer = std::move(observer); }
  void EnterStage(const std::string& stage) const {
    if (m_stage_observer)
      m_stage_observer(stage);
  }

  void SetTask(const std::wstring& task, int import_kind);
  const std::wstring& task() const { return m_task; }
  // When the run ended, in UTC ("2026-11-24T23:43:13Z"); written as "time".
  void SetEndTime(const std::string& utc) { m_end_time = utc; }

  // Records the source file |original| read through its copy |read_path|
  // (the same path when the run read the file where it lies) with |flags|.
  // A later call for the same |read_path| adds its flags.
  void AddSource(const base::FilePath& original,
                 const base::FilePath& read_path,
                 const std::string& layout,
                 unsigned flags);
  // Adds |flags| to the source read through |read_path| (recorded as its own
  // source when unknown).
  void MarkSource(const base::FilePath& read_path, unsigned flags);

  // Why the work copy |read_path| was read again or made afresh ("source
  // unchanged since the copy", "source changed since the copy", ...).
  void NoteWorkCopy(const base::FilePath& read_path, const std::string& why);
  // What the salvage of the damaged source |read_path| got of |table|: the
  // rows it could read, and the rows it knows were there but could not read
  // (found in an index of the table). |complete| false: rows past a damaged
  // page may be lost without a trace.
  void AddSalvagedTable(const base::FilePath& read_path,
                        const std::string& table,
                        int64_t rows_salvaged,
                        int64_t rows_known_lost,
                        bool complete);
  // Why the run imported nothing, in words for the user ("close the old
  // player and start again"). The last one wins.
  void SetFailure(const std::wstring& words) { m_failure = words; }
  const std::wstring& failure() const { return m_failure; }

  // The origin id of table |table| of the source file |read_path|; the same
  // pair always answers the same id.
  int SourceTable(const base::FilePath& read_path, const std::string& table);
  void AddRead(int origin, int64_t rows, int64_t made);
  // |rows| records made from |origin| turned out to repeat a record made
  // from another table (a history row of a download that the download table
  // holds as well): they are kept once, as that record, and count as merged
  // instead of made.
  void AddMerged(int origin, int64_t rows);

  // A record of |origin| that was meant for |target| and is not there.
  void AddDrop(int origin,
               const std::string& target,
               const DropReason& reason,
               const DropExample& example);
  void AddDrops(int origin,
                const std::string& target,
                const DropReason& reason,
                int64_t count,
                const std::vector<DropExample>& examples);
  // Rows of |origin| inserted into |target|.
  void AddWritten(int origin, const std::string& target, int64_t rows);

  // Per-table row counts read back from a finished database file |database|
  // (its final name) before it replaced the old one; |ok| false with
  // |error| when the file failed that check and did not replace it.
  void SetCountedRows(const std::string& database,
                      const std::map<std::string, int64_t>& counts,
                      bool ok,
                      const std::string& error);

  // MV (video) files among the rows written to "ShareFileItems".
  void AddLibraryVideos(int64_t videos) { m_library_videos += videos; }

  // Records kept as they were where a link could not be made, by what was
  // not found (e.g. "local_file_folder_not_in_library"); written under
  // "kept_unlinked".
  void AddKeptUnlinked(const std::string& what, int64_t count) { m_kept_unlinked[what] += count; }

  // What a version-2 task ended with, as the words of "UpgradeResult.json"
  // (an object); a null value for every other task.
  void SetUpgradeOutcome(base::Value outcome) { m_upgrade = std::move(outcome); }

  // What the run looked at to find earlier installations (an object: the
  // lines in words, the installations found and passed over, those named
  // but not reachable); null when the task decision did not run.
  void SetLookup(base::Value lookup) { m_lookup = std::move(lookup); }

  void AddSettingsKey(const std::string& key);
  // Values of the source's settings files the carried settings were read
  // from (the keys carried beyond them hold defaults).
  void AddSettingsRead(int64_t values) { m_settings_read += values; }
  // A "DBCheck" value written by this run (the last one of a key wins).
  void NoteDBCheck(const std::wstring& key, const std::wstring& value);
  void AddStage(const std::string& name, double seconds);

  // Rows a writer sent to |target| (0 when none).
  int64_t WrittenRows(const std::string& target) const;
  // Drops of |reason| over all pairs.
  int64_t DropCount(const DropReason& reason) const;

  base::Value ToJson() const;
  // The report as the text of its file; empty when it cannot be made.
  std::string ToText() const;
  // Writes the report as |data_folder|/"ImportReport.json", replacing an
  // earlier one in one rename. False when it cannot be written.
  [[nodiscard]] bool Write(const base::FilePath& data_folder) const;

 private:
  struct Source {
    std::wstring original;
    std::wstring read_path;
    std::string layout;
    unsigned flags = 0;
    std::string work_copy;  // why the copy was reused or made
  };
  struct SalvagedTable {
    std::wstring source;
    std::string table;
    int64_t rows_salvaged = 0;
    int64_t rows_known_lost = 0;
    bool complete = true;
  };
  struct SourceTableCount {
    std::wstring source;
    std::string table;
    int64_t rows_read = 0;
    int64_t records_made = 0;
    int64_t rows_merged = 0;
  };
  struct Flow {
    int64_t written = 0;
    std::map<std::string, int64_t> dropped;  // by reason key
  };
  struct Drops {
    DropReason reason;
    int64_t count = 0;
    std::vector<DropExample> examples;
  };

  Source* FindSource(const std::wstring& read_path);
  base::Value Summary(const std::map<std::string, int64_t>& sent) const;

  std::wstring m_task;
  int m_import_kind = 0;
  std::string m_end_time;
  StageObserver m_stage_observer;
  std::vector<Source> m_sources;
  std::vector<SalvagedTable> m_salvaged;
  std::wstring m_failure;
  std::vector<SourceTableCount> m_source_tables;  // index = origin; 0 unrecorded
  std::map<std::pair<int, std::string>, Flow> m_flows;
  std::map<std::string, Drops> m_drops;  // by reason key
  // Target table -> (database, rows counted in the finished file).
  std::map<std::string, std::pair<std::string, int64_t>> m_counted;
  // Database -> (read back soundly, why not).
  std::map<std::string, std::pair<bool, std::string>> m_verified;
  int64_t m_library_videos = 0;
  std::map<std::string, int64_t> m_kept_unlinked;
  base::Value m_upgrade;
  base::Value m_lookup;
  std::vector<std::string> m_settings_keys;
  int64_t m_settings_read = 0;
  std::vector<std::pair<std::wstring, std::wstring>> m_dbcheck;
  std::vector<std::pair<std::string, double>> m_stages;
};

// Counts one source table as a reader walks it and hands the sums to the
// report when it goes. A null report counts nothing.
//
//   SourceTableTally tally(m_model->report(), path, "MusicItems");
//   while (row.Step()) {
//     tally.Read();
//     ...
//     tally.Made(record.get());  // stamps the record's origin
//   }
class SourceTableTally {
 public:
  SourceTableTally(ImportReport* report, const base::FilePath& read_path, const std::string& table);
  ~SourceTableTally();
  SourceTableTally(const SourceTableTally&) = delete;
  SourceTableTally& operator=(const SourceTableTally&) = delete;

  void Read() { ++m_read; }
  template <typename Record>
  void Made(Record* record) {
    record->origin = m_origin;
    ++m_made;
  }
  // A row read and not turned into a record for |target|.
  // |entries|: for a list, how many entries went with it.
  void Dropped(const std::string& target,
               const DropReason& reason,
               int64_t old_id,
               const std::wstring& name,
               int64_t entries = -1);
  int origin() const { return m_origin; }

 private:
  ImportReport* m_report;
  std::string m_table;
  int m_origin = 0;
  int64_t m_read = 0;
  int64_t m_made = 0;
};

// Counts the rows one writer sends to |target| by their records' origins and
// hands the sums to the report when it goes. A null report counts nothing.
class TargetTableTally {
 public:
  TargetTableTally(ImportReport* report, std::string target);
  ~TargetTableTally();
  TargetTableTally(const TargetTableTally&) = delete;
  TargetTableTally& operator=(const TargetTableTally&) = delete;

  void Written(int origin);
  void Dropped(int origin, const DropReason& reason, const ImportReport::DropExample& example);

 private:
  struct Counts {
    int64_t written = 0;
    // By reason (the reasons are constants of drop_reason, or alike).
    std::map<const DropReason*, std::pair<int64_t, std::vector<ImportReport::DropExample>>> dropped;
  };
  Counts& For(int origin);

  ImportReport* m_report;
  std::string m_target;
  std::map<int, Counts> m_counts;
  int m_last_origin = -1;
  Counts* m_last = nullptr;
};

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_RUN_RECORD_IMPORT_REPORT_H_
