#include "tools/data_importer/data_exporter.h"

#include <boost/format.hpp>

#include "base/file_util.h"
#include "base/utf_string_conversions.h"
#include "logging/logging.h"
#include "tools/data_importer/data_folder.h"
#include "tools/data_importer/progress_record.h"
#include "tools/data_importer/database_helper/db_row_reader.h"
#include "tools/data_importer/target_store/import_model.h"

DataExporter::DataExporter(ImportModel* model)
    : m_model(model), m_db(std::make_unique<DatabaseHelper>()) {}

DataExporter::~DataExporter() = default;

void DataExporter::ReportState(uint32_t bits) {
  if (m_model)
    m_model->ReportState(bits);
}

void DataExporter::ResetDatabase() {
  m_db.reset();
  m_db = std::make_unique<DatabaseHelper>();
}

void DataExporter::AdvanceReadProgress(int delta) {
  constexpr int kReadProgressCeiling = 49;
  if (!m_model || !m_model->m_progress || delta <= 0)
    return;
  ProgressRecord* progress = m_model->m_progress;
  int room = kReadProgressCeiling - progress->progress();
  if (room <= 0)
    return;
  progress->Advance(delta < room ? delta : room, 0);
}

ReadProgressTicker::ReadProgressTicker(std::function<void(int)> advance, int64_t total)
    : advance_(std::move(advance)), total_(total) {}

void ReadProgressTicker::Tick() {
  if (total_ <= 0 || rows_ >= total_)
    return;
  ++rows_;
  int64_t tenths = rows_ * 10 / total_;
  if (tenths > tenths_) {
    advance_(static_cast<int>(tenths - tenths_));
    tenths_ = tenths;
  }
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
    const std::wstring& backup_name) {
  WorkCopy result = WorkCopy::kReused;
  if (!base::PathExists(work_copy)) {
    base::FilePath source = find_source();
    if (source.empty() || !base::PathExists(source))
      return WorkCopy::kNoSource;
    if (!CopyWithLog(source, work_copy))
      return WorkCopy::kCopyFailed;
    result = WorkCopy::kCopied;
  }
  // Both copies are only for safekeeping and inspection: the export goes on
  // without them, CopyWithLog has logged the failure.
  (void)CopyWithLog(work_copy, GetDatedBackupFolder().Append(backup_name));
  (void)CopyWithLog(work_copy, GetDataFolder().Append(L"DataImporter.db"));
  return result;
}

bool DataExporter::OpenSourceWithRepair(const base::FilePath& path) {
  ResetDatabase();
  return m_db->OpenAndCheck(path);
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
