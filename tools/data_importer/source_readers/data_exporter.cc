#include "tools/data_importer/source_readers/data_exporter.h"

#include <algorithm>

#include <boost/format.hpp>

#include "base/file_util.h"
#include "base/utf_string_conversions.h"
#include "logging/logging.h"
#include "tools/data_importer/environment/data_folder.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/database_helper/db_row_reader.h"
#include "tools/data_importer/run_record/import_report.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/target_store/import_model.h"

DataExporter::DataExporter(const RunContext& context, ImportModel* model)
    : m_context(context), m_model(model), m_db(std::make_unique<DatabaseHelper>()) {}

DataExporter::~DataExporter() = default;

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

bool DataExporter::CopyWithLog(const base::FilePath& from, const base::FilePath& to) {
  if (base::CopyFile(from, to))
    return true;
  VLOG_AT(logging::LOG_FAILURE) << LogTag() << L"Copy file {" << from.value() << L"} to {"
                                << to.value() << L"} FAILED, error code {"
                                << base::GetLastSystemError() << L"}.";
  return false;
}

DataExporter::WorkCopy DataExporter::ObtainWorkCopy(
    const base::FilePath& work_copy, const std::function<base::FilePath()>& find_source,
    const std::wstring& backup_name, const std::string& layout) {
  WorkCopy result = WorkCopy::kReused;
  base::FilePath source = work_copy;
  if (!base::PathExists(work_copy)) {
    source = find_source();
    if (source.empty() || !base::PathExists(source))
      return WorkCopy::kNoSource;
    if (!CopyWithLog(source, work_copy)) {
      Report()->AddSource(source, work_copy, layout, ImportReport::kUnreadable);
      return WorkCopy::kCopyFailed;
    }
    result = WorkCopy::kCopied;
  }
  Report()->AddSource(source, work_copy, layout,
                      result == WorkCopy::kCopied ? ImportReport::kCopied
                                                  : ImportReport::kReusedCopy);
  // Both copies are only for safekeeping and inspection: the export goes on
  // without them, CopyWithLog has logged the failure.
  (void)CopyWithLog(work_copy, GetDatedBackupFolder(m_context).Append(backup_name));
  (void)CopyWithLog(work_copy, m_context.m_data_folder.Append(L"DataImporter.db"));
  return result;
}

bool DataExporter::OpenSourceWithRepair(const base::FilePath& path) {
  ResetDatabase();
  bool opened = m_db->OpenAndCheck(path);
  if (!opened)
    Report()->MarkSource(path, ImportReport::kUnreadable);
  else if (m_db->repaired())
    Report()->MarkSource(path, ImportReport::kRepaired);
  return opened;
}

ImportReport* DataExporter::Report() {
  if (m_model)
    return m_model->report();
  if (!spare_report_)
    spare_report_ = std::make_unique<ImportReport>();
  return spare_report_.get();
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
    : advance_(std::move(advance)), total_rows_(total_rows) {}

ReadProgressTicker::ReadProgressTicker(DataExporter* exporter, int64_t total_rows)
    : ReadProgressTicker([exporter](int delta) { exporter->AdvanceReadProgress(delta); },
                         total_rows) {}

void ReadProgressTicker::Tick() {
  if (total_rows_ <= 0 || rows_ >= total_rows_)
    return;
  ++rows_;
  int reached = static_cast<int>(rows_ * 10 / total_rows_);
  if (reached > tenths_) {
    int delta = reached - tenths_;
    tenths_ = reached;
    if (advance_)
      advance_(delta);
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
  DatabaseHelper helper;
  if (!helper.OpenAndCheck(path)) {
    helper.Close();
    return L"Failed to open database file {" + path.value() + L"}.\n";
  }
  std::wstring summary = L"SUMMARY OF DB FILE {" + path.value() + L"}: \n";
  sql::Connection* connection = helper.connection();
  for (const auto& [table, column] : tables) {
    if (!connection->DoesTableExist(table))
      continue;
    std::string query = (boost::format("SELECT COUNT( %s ) AS CNT FROM %s") % column % table).str();
    DbRowReader reader(*connection, query);
    int count = reader.Step() ? reader.GetInt("CNT") : 0;
    summary += L"\t" + base::UTF8ToWide(table) + L": COUNT(" +
               base::UTF8ToWide(column) + L") is {" +
               std::to_wstring(count) + L"}.\n";
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
