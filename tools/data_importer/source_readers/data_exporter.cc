#include "tools/data_importer/source_readers/data_exporter.h"

#include <algorithm>
#include <cctype>
#include <string_view>
#include <cstdio>
#include <memory>
#include <optional>
#include <sstream>

#include <boost/format.hpp>

#include "base/file_util.h"
#include "base/md5.h"
#include "base/utf_string_conversions.h"
#include "logging/logging.h"
#include "tools/data_importer/database_helper/db_row_reader.h"
#include "tools/data_importer/database_helper/salvage_copy.h"
#include "tools/data_importer/environment/data_folder.h"
#include "tools/data_importer/run_record/import_report.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/target_store/import_model.h"

namespace data_importer {

DataExporter::DataExporter(const RunContext& context, ImportModel* model)
    : m_context(context), m_model(model), m_db(std::make_unique<DatabaseHelper>()) {}

DataExporter::~DataExporter() {
  ResetDatabase();
  DiscardSalvageCopy();
}

void DataExporter::ReportState(uint32_t bits) {
  if (m_model)
    m_model->ReportState(bits);
}

void DataExporter::ResetDatabase() {
  m_db.reset();
  m_db = std::make_unique<DatabaseHelper>();
}

const wchar_t* DataExporter::LogTag() const {
  return L"";
}

bool DataExporter::CopyDatabaseWithLog(const base::FilePath& from, const base::FilePath& to) {
  if (!CopyWithLog(from, to))
    return false;
  // The old player may have left a rollback journal (a transaction it did
  // not finish) or a write-ahead log (transactions not yet in the file)
  // beside its database. Either goes with the copy, so that the copy opens
  // as what the player last wrote; a stale one beside an earlier copy goes.
  for (const wchar_t* suffix : {L"-journal", L"-wal"}) {
    base::FilePath companion(from.value() + suffix);
    base::FilePath copy(to.value() + suffix);
    if (base::PathExists(companion)) {
      if (!CopyWithLog(companion, copy))
        return false;
    } else if (base::PathExists(copy) && !base::DeleteFile(copy)) {
      VLOG_AT(logging::LOG_FAILURE)
          << LogTag() << L"Stale file {" << copy.value() << L"} cannot be removed.";
      return false;
    }
  }
  return true;
}

bool DataExporter::CopyWithLog(const base::FilePath& from, const base::FilePath& to) {
  if (base::CopyFile(from, to))
    return true;
  VLOG_AT(logging::LOG_FAILURE) << LogTag() << L"Copy file {" << from.value() << L"} to {"
                                << to.value() << L"} FAILED, error code {"
                                << base::GetLastSystemError() << L"}.";
  return false;
}

DataExporter::WorkCopy DataExporter::ObtainWorkCopy(
    const base::FilePath& work_copy,
    const std::function<base::FilePath()>& find_source,
    const std::wstring& backup_name,
    const std::string& layout,
    bool intermediate) {
  // A work copy of an earlier run is read again only while it still
  // reflects its source: the user may have put a good backup in place of a
  // damaged file since, or the old player may have written more. So the
  // copy is compared with its source (size, time, first and last page, as
  // recorded beside it when it was made); a copy whose source is gone is all
  // that is left and is read again.
  const base::FilePath source = find_source();
  const bool have_source = !source.empty() && base::PathExists(source);
  const base::FilePath record = SourceRecordPath(work_copy);
  std::string why;
  bool reuse = false;
  if (base::PathExists(work_copy)) {
    if (!have_source) {
      reuse = true;
      why = "reused: its source no longer exists";
    } else {
      std::string recorded;
      std::optional<std::string> now = SourceFingerprint(source);
      if (!base::ReadFileToString(record, &recorded))
        why = "copied again: no record of the source it was made from";
      else if (!now || *now != recorded)
        why = "copied again: the source changed since the copy";
      else
        reuse = true;
      if (reuse)
        why = "reused: the source is unchanged since the copy";
    }
  } else {
    if (!have_source)
      return WorkCopy::kNoSource;
    why = "copied";
  }

  WorkCopy result = WorkCopy::kReused;
  if (!reuse) {
    VLOG_AT(logging::LOG_PROGRESS) << LogTag() << L"Work copy {" << work_copy.value() << L"} "
                                   << base::UTF8ToWide(why) << L".";
    // The record goes first: a copy without one is never trusted again.
    if (base::PathExists(record) && !base::DeleteFile(record)) {
      VLOG_AT(logging::LOG_FAILURE)
          << LogTag() << L"Record {" << record.value() << L"} cannot be removed.";
    }
    std::optional<std::string> fingerprint = SourceFingerprint(source);
    if (!CopyDatabaseWithLog(source, work_copy)) {
      Report()->AddSource(source, work_copy, layout, ImportReport::kUnreadable);
      Report()->NoteWorkCopy(work_copy, "the source could not be copied");
      return WorkCopy::kCopyFailed;
    }
    // Without a record the next run copies the source again: slower, no
    // harm.
    if (!fingerprint || !base::WriteFile(record, *fingerprint)) {
      VLOG_AT(logging::LOG_FAILURE)
          << LogTag() << L"Record {" << record.value() << L"} not written.";
    }
    result = WorkCopy::kCopied;
  }
  Report()->AddSource(
      have_source ? source : work_copy, work_copy, layout,
      result == WorkCopy::kCopied ? ImportReport::kCopied : ImportReport::kReusedCopy);
  Report()->NoteWorkCopy(work_copy, why);
  // Both copies are only for safekeeping and inspection: the export goes on
  // without them, CopyWithLog has logged the failure.
  (void)CopyWithLog(work_copy, GetDatedBackupFolder(m_context).Append(backup_name));
  if (intermediate)
    (void)CopyWithLog(work_copy, m_context.m_data_folder.Append(L"DataImporter.db"));
  return result;
}

bool DataExporter::OpenSourceWithRepair(const base::FilePath& path) {
  ResetDatabase();
  DiscardSalvageCopy();
  m_source_path = path;
  if (m_db->OpenAndCheck(path)) {
    if (m_db->repaired())
      Report()->MarkSource(path, ImportReport::kRepaired);
    return true;
  }
  // Beyond the one compaction the file would be given up whole, with every
  // readable row in it: users come to us because the old player broke, so
  // what can still be read is copied out row by row and read from there.
  if (base::PathExists(path)) {
    base::FilePath salvage(path.value() + L".salvage");
    SalvageResult result = SalvageCopy(path, salvage);
    ResetDatabase();
    if (result.ok && !result.tables.empty() && m_db->OpenAndCheck(salvage)) {
      m_salvage_copy = salvage;
      m_salvaged = std::move(result.tables);
      for (const SalvagedTable& table : m_salvaged) {
        Report()->AddSalvagedTable(path, table.name, table.rows_copied,
                                   static_cast<int64_t>(table.lost_rowids.size()), table.complete);
        VLOG_AT(logging::LOG_FAILURE) << LogTag() << L"Salvaged {" << base::UTF8ToWide(table.name)
                                      << L"} of {" << path.value() << L"}: {" << table.rows_copied
                                      << L"} rows" << (table.complete ? L"" : L", damaged")
                                      << L", {" << table.lost_rowids.size() << L"} known lost.";
      }
      return true;
    }
    ResetDatabase();
    if (!base::DeleteFile(salvage))
      VLOG_AT(logging::LOG_FAILURE) << LogTag() << L"{" << salvage.value() << L"} not removed.";
  }
  Report()->MarkSource(path, ImportReport::kUnreadable);
  return false;
}

void DataExporter::DiscardSalvageCopy() {
  m_salvaged.clear();
  if (m_salvage_copy.empty())
    return;
  if (!base::DeleteFile(m_salvage_copy))
    VLOG_AT(logging::LOG_FAILURE) << LogTag() << L"{" << m_salvage_copy.value()
                                  << L"} not removed.";
  m_salvage_copy = base::FilePath();
}

void DataExporter::ReportSalvageLosses(const std::vector<SalvageRule>& rules) {
  for (const SalvagedTable& table : m_salvaged) {
    if (!table.lost_rows())
      continue;
    const SalvageRule* rule = nullptr;
    for (const SalvageRule& candidate : rules) {
      std::string_view pattern = candidate.table;
      bool prefix = !pattern.empty() && pattern.back() == '*';
      if (prefix)
        pattern.remove_suffix(1);
      std::string name = table.name;
      if (prefix && name.size() > pattern.size())
        name.resize(pattern.size());
      if (name.size() == pattern.size() &&
          std::equal(name.begin(), name.end(), pattern.begin(), [](char a, char b) {
            return std::tolower(static_cast<unsigned char>(a)) ==
                   std::tolower(static_cast<unsigned char>(b));
          })) {
        rule = &candidate;
        break;
      }
    }
    if (!rule)
      continue;  // no reader of this generation reads the table
    ReportState(rule->failure_bit);
    SourceTableTally tally(Report(), m_source_path,
                           rule->counted_as ? rule->counted_as : table.name);
    for (int64_t id : table.lost_rowids) {
      tally.Read();
      tally.Dropped(rule->target ? rule->target : table.name, drop_reason::kSourceRowsUnreadable,
                    id, std::wstring());
    }
  }
}

bool DataExporter::NothingSalvaged() const {
  if (m_salvage_copy.empty())
    return false;
  for (const SalvagedTable& table : m_salvaged) {
    if (table.rows_copied > 0)
      return false;
  }
  return true;
}

DataExporter::RowsRead DataExporter::ReadRows(const RowQuery& query, const RowHandler& handle_row) {
  RowsRead result;
  sql::Connection& db = *m_db->connection();
  DbRowReader row(db, query.sql);
  if (!row.IsValid()) {
    VLOG_AT(logging::LOG_FAILURE) << LogTag() << L"Table {" << base::UTF8ToWide(query.table)
                                  << L"} cannot be read.";
    return result;
  }
  const base::FilePath& source = m_source_path.empty() ? db.path() : m_source_path;
  SourceTableTally tally(Report(), source, query.table);
  while (row.Step()) {
    tally.Read();
    ++result.read;
    if (handle_row(row, tally))
      ++result.kept;
    if (query.ticker)
      query.ticker->Tick();
  }
  result.ok = row.Succeeded();
  if (!result.ok) {
    VLOG_AT(logging::LOG_FAILURE) << LogTag() << L"Reading {" << base::UTF8ToWide(query.table)
                                  << L"} stopped at an error after {" << result.read << L"} rows.";
  }
  if (!query.size_name.empty()) {
    VLOG_AT(logging::LOG_PROGRESS)
        << LogTag() << L"Size of " << query.size_name << L" is {" << result.kept << L"}.";
  }
  return result;
}

std::wstring UncopiedSourceWords(const base::FilePath& source) {
  return L"{" + source.value() +
         L"} could not be copied, so nothing was imported; if the old player is still "
         L"running, close the old player and start again.";
}

std::wstring UnreadableSourceWords(const base::FilePath& source) {
  return L"Not one record of {" + source.value() +
         L"} could be read, so nothing was imported; put a good copy of the file (a backup) "
         L"in its place and start again.";
}

base::FilePath SourceRecordPath(const base::FilePath& work_copy) {
  return base::FilePath(work_copy.value() + L".source");
}

std::optional<std::string> SourceFingerprint(const base::FilePath& source) {
  base::FileInfo info;
  if (!base::GetFileInfo(source, &info) || info.is_directory)
    return std::nullopt;
  // Opened by its wide path: a user's folder may be named in any script.
  std::unique_ptr<FILE, int (*)(FILE*)> file(base::OpenFile(base::ResolvePathCase(source), "rb"),
                                             &fclose);
  if (!file)
    return std::nullopt;
  constexpr int64_t kPage = 4096;
  auto page_digest = [&file](int64_t offset, int64_t length) -> std::optional<std::string> {
    std::string bytes(static_cast<size_t>(length), '\0');
#if defined(_WIN32)
    const int seek = _fseeki64(file.get(), offset, SEEK_SET);
#else
    const int seek = fseeko(file.get(), static_cast<off_t>(offset), SEEK_SET);
#endif
    if (seek != 0 || fread(bytes.data(), 1, bytes.size(), file.get()) != bytes.size())
      return std::nullopt;
    return base::MD5String(bytes);
  };
  std::optional<std::string> first = page_digest(0, std::min(kPage, info.size));
  std::optional<std::string> last =
      page_digest(std::max<int64_t>(0, info.size - kPage), std::min(kPage, info.size));
  if (!first || !last)
    return std::nullopt;
  std::ostringstream text;
  text.precision(17);
  text << "size " << info.size << "\nmodified " << info.last_modified << "\nfirst page " << *first
       << "\nlast page " << *last << "\n";
  // A journal or write-ahead log beside the source is part of what it holds.
  for (const wchar_t* suffix : {L"-journal", L"-wal"}) {
    base::FileInfo companion;
    if (base::GetFileInfo(base::FilePath(source.value() + suffix), &companion)) {
      text << base::WideToUTF8(suffix) << " " << companion.size << " " << companion.last_modified
           << "\n";
    }
  }
  return text.str();
}

ImportReport* DataExporter::Report() {
  if (m_model)
    return m_model->report();
  if (!m_spare_report)
    m_spare_report = std::make_unique<ImportReport>();
  return m_spare_report.get();
}

void DataExporter::AdvanceReadProgress(int delta) {
  if (!m_model || !m_model->m_progress || delta <= 0)
    return;
  ProgressRecord* record = m_model->m_progress;
  int allowed = std::min(delta, kReadProgressCeiling - record->progress());
  if (allowed > 0)
    record->Advance(allowed, 0);
}

void DataExporter::TableRead() {
  AdvanceReadProgress(kTableReadStep);
}

ReadProgressTicker::ReadProgressTicker(AdvanceCallback advance, int64_t total_rows)
    : m_advance(std::move(advance)), m_total_rows(total_rows) {}

ReadProgressTicker::ReadProgressTicker(DataExporter* exporter, int64_t total_rows)
    : ReadProgressTicker([exporter](int delta) { exporter->AdvanceReadProgress(delta); },
                         total_rows) {}

void ReadProgressTicker::Tick() {
  if (m_total_rows <= 0 || m_rows >= m_total_rows)
    return;
  ++m_rows;
  int reached = static_cast<int>(m_rows * 10 / m_total_rows);
  if (reached > m_tenths) {
    int delta = reached - m_tenths;
    m_tenths = reached;
    if (m_advance)
      m_advance(delta);
  }
}

int64_t CountRows(sql::Connection& db, const char* table) {
  if (!db.is_open())
    return 0;
  DbRowReader row(db, (boost::format("SELECT COUNT(*) AS RowTotal FROM %s") % table).str());
  return row.Step() ? row.GetInt64("RowTotal") : 0;
}

std::wstring DumpTableSummary(const base::FilePath& path, const DumpTableList& tables) {
  if (!base::PathExists(path))
    return L"{" + path.value() + L"} do not exists.";
  // The summary is taken of the user's original file, so it is read as it
  // lies: opened read-only and immutable, its attributes left alone, never
  // repaired. A compaction of a damaged file can drop rows for good; every
  // repair happens on our own work copy instead.
  DatabaseHelper helper;
  if (!helper.OpenReadOnly(path))
    return L"Failed to open database file {" + path.value() + L"}.\n";
  // A file that fails the check is not counted: the engine's walk of a
  // damaged page is left to the salvage of our own copy.
  if (!helper.CheckIntegrity()) {
    return L"SUMMARY OF DB FILE {" + path.value() +
           L"}: \n\tThe file fails the integrity check; it is left as it is.\n";
  }
  std::wstring summary = L"SUMMARY OF DB FILE {" + path.value() + L"}: \n";
  sql::Connection* connection = helper.connection();
  for (const auto& [table, column] : tables) {
    if (!connection->DoesTableExist(table))
      continue;
    std::string query = (boost::format("SELECT COUNT( %s ) AS CNT FROM %s") % column % table).str();
    DbRowReader reader(*connection, query);
    int count = reader.Step() ? reader.GetInt("CNT") : 0;
    summary += L"\t" + base::UTF8ToWide(table) + L": COUNT(" + base::UTF8ToWide(column) +
               L") is {" + std::to_wstring(count) + L"}.\n";
  }
  return summary;
}

const DumpTableList& Generation7DumpTables() {
  static const DumpTableList tables = {
      {"AppLists", "ID"},
      {"BillData", "ID"},
      {"DeleteFile", "ID"},
      {"DownHistory", "ID"},
      {"Downing", "ID"},
      {"FavorListManage", "LMID"},
      {"FileItems", "FileItemID"},
      {"FolderItems", "ItemID"},
      {"ForceDown", "ID"},
      {"HttpStatistics", "ID"},
      {"VtDbVer", "ver"},
      {"Listen", "ID"},
      {"PlayListItems", "ItemID"},
      {"PlayLists", "PlayListID"},
      {"RadioList", "ID"},
      {"RadioListDislikeSongs", "ID"},
      {"RadioListNJPlayedItems", "ID"},
      {"RadioListSongs", "ID"},
      {"RenamedItems", "ID"},
      {"ShareFolders", "ShareFolderID"},
      {"sqlite_sequence", "name"},
      {"UserFeedback", "UserID"},
  };
  return tables;
}

}  // namespace data_importer
