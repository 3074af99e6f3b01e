#include "testing/importer_test_util.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#if !defined(_WIN32)
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <cstdio>
#include <map>
#include <utility>

#include "base/code_page.h"
#include "base/file_util.h"
#include "base/md5.h"
#include "base/profile_string.h"
#include "base/string_number_conversions.h"
#include "base/utf_string_conversions.h"
#include "sql/connection.h"
#include "sql/statement.h"
#include "tools/data_importer/run_record/importer_names.h"
#include "tools/data_importer/run_record/report_history.h"
#include "tools/data_importer/data_importer_main.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/target_store/build_sequence.h"

namespace data_importer {

TestProfile::TestProfile() {
  EXPECT_TRUE(base::CreateDirectory(local()));
  EXPECT_TRUE(base::CreateDirectory(roaming()));
  m_env.Set("LOCALAPPDATA", local().AsUTF8Unsafe());
  m_env.Set("APPDATA", roaming().AsUTF8Unsafe());
  m_env.Set("VANTU_REGISTRY_FILE", root().Append(L"user.reg").AsUTF8Unsafe());
  m_env.Set("VANTU_LOG_STDERR", std::nullopt);
}

RunContext TestRunContext(const base::FilePath& source_folder) {
  RunContext context = RunContextFromEnvironment();
  context.m_source_folder = source_folder;
  if (!context.m_data_folder.empty() && !base::DirectoryExists(context.m_data_folder))
    EXPECT_TRUE(base::CreateDirectory(context.m_data_folder));
  return context;
}

base::FilePath TestDataFolder() {
  return TestRunContext().m_data_folder;
}

void TestProfile::SetRegistryValue(const std::wstring& key,
                                   const std::wstring& name,
                                   const std::wstring& value) {
  std::wstring escaped;
  for (wchar_t c : value) {
    if (c == L'\\' || c == L'"')
      escaped.push_back(L'\\');
    escaped.push_back(c);
  }
  m_registry +=
      L"[HKEY_CURRENT_USER\\" + key + L"]\r\n\"" + name + L"\"=\"" + escaped + L"\"\r\n\r\n";
  EXPECT_TRUE(base::WriteFile(
      root().Append(L"user.reg"),
      "Windows Registry Editor Version 5.00\r\n\r\n" + base::WideToUTF8(m_registry)));
}

std::wstring TestProfile::DBCheck(const std::wstring& key) const {
  return base::GetPrivateProfileStringW(L"DBCheck", key, L"#missing#", ini().value(),
                                        base::kCodePageSimplifiedChinese);
}

std::wstring TestProfile::Setting(const std::wstring& key) const {
  return base::GetPrivateProfileStringW(L"Settings", key, L"#missing#", ini().value(),
                                        base::kCodePageSimplifiedChinese);
}

ProgressTrace::ProgressTrace(ProgressRecord* record, const TestProfile& profile)
    : m_record(record) {
  m_record->set_key_observer([this, &profile](const wchar_t* key, const std::wstring&) {
    if (std::wstring(key) != L"ImportProgress")
      return;
    int value = -1;
    if (!base::StringToInt(profile.DBCheck(key), &value))
      value = -1;
    m_seen.push_back(value);
  });
}

ProgressTrace::~ProgressTrace() {
  m_record->set_key_observer(nullptr);
}

std::vector<int> ExpectedReadProgress(int start, const std::vector<int>& deltas) {
  std::vector<int> values;
  int progress = start;
  for (int delta : deltas) {
    int next = std::min(progress + delta, 49);
    if (next <= progress)
      continue;
    progress = next;
    values.push_back(progress);
  }
  return values;
}

std::vector<int> Tenths() {
  return std::vector<int>(10, 1);
}

void TestProfile::Touch(const base::FilePath& path) {
  EXPECT_TRUE(base::CreateDirectory(path.DirName()));
  EXPECT_TRUE(base::WriteFile(path, std::string()));
}

std::vector<std::string> QueryRows(sql::Connection* db, const std::string& query) {
  std::vector<std::string> rows;
  sql::Statement statement(db->GetUniqueStatement(query.c_str()));
  while (statement.Step()) {
    std::string row;
    for (int i = 0; i < statement.ColumnCount(); ++i)
      row += (i ? "|" : "") + statement.ColumnString(i);
    rows.push_back(row);
  }
  return rows;
}

std::string StoredSchema(sql::Connection* db, const std::string& table) {
  std::vector<std::string> rows =
      QueryRows(db, "SELECT sql FROM sqlite_master WHERE type='table' AND name='" + table + "'");
  return rows.empty() ? std::string() : rows[0];
}

std::string FolderFingerprint(const base::FilePath& folder) {
  std::string all;
  base::FileEnumerator files(folder, L"*");
  for (base::FilePath file = files.Next(); !file.empty(); file = files.Next()) {
    std::string bytes;
    if (!base::ReadFileToString(file, &bytes))
      bytes = "#unreadable";
    all += file.BaseName().AsUTF8Unsafe() + ":" + base::MD5String(bytes) + ";";
  }
  return all;
}

std::string SourceFilesState(const std::vector<base::FilePath>& files) {
  std::string all;
  for (const base::FilePath& file : files) {
    for (const wchar_t* suffix : {L"", L"-journal", L"-wal", L"-shm"}) {
      base::FilePath path(file.value() + suffix);
      all += path.AsUTF8Unsafe();
      struct stat info {};
      if (stat(path.AsUTF8Unsafe().c_str(), &info) != 0) {
        all += " absent;\n";
        continue;
      }
      all += " mode " + std::to_string(info.st_mode & 07777) + " md5 " +
             base::MD5String(testing_support::ReadBytes(path)) + ";\n";
    }
  }
  return all;
}

void MakeReadOnly(const std::vector<base::FilePath>& files) {
  for (const base::FilePath& file : files)
    EXPECT_EQ(0, chmod(file.AsUTF8Unsafe().c_str(), 0444)) << file.AsUTF8Unsafe();
}

std::vector<std::string> TableNames(sql::Connection* db) {
  return QueryRows(db, "SELECT name FROM sqlite_master WHERE type='table' ORDER BY name");
}

std::vector<std::string> TypedRows(sql::Connection* db, const std::string& table) {
  std::vector<std::string> rows;
  sqlite3_stmt* stmt = nullptr;
  std::string query = "SELECT * FROM \"" + table + "\" ORDER BY rowid";
  if (sqlite3_prepare_v2(db->db(), query.c_str(), -1, &stmt, nullptr) != SQLITE_OK) {
    rows.push_back("#invalid: " + query);
    return rows;
  }
  while (sqlite3_step(stmt) == SQLITE_ROW) {
    std::string row;
    for (int i = 0; i < sqlite3_column_count(stmt); ++i) {
      if (i)
        row += '|';
      switch (sqlite3_column_type(stmt, i)) {
        case SQLITE_NULL:
          row += "NULL";
          break;
        case SQLITE_INTEGER:
          row += "i:" + std::to_string(sqlite3_column_int64(stmt, i));
          break;
        case SQLITE_FLOAT: {
          char buffer[64];
          std::snprintf(buffer, sizeof(buffer), "r:%a", sqlite3_column_double(stmt, i));
          row += buffer;
          break;
        }
        case SQLITE_TEXT:
          row += "t:'" +
                 std::string(reinterpret_cast<const char*>(sqlite3_column_text(stmt, i)),
                             sqlite3_column_bytes(stmt, i)) +
                 "'";
          break;
        default:
          row += "b:" + std::to_string(sqlite3_column_bytes(stmt, i));
      }
    }
    rows.push_back(row);
  }
  sqlite3_finalize(stmt);
  return rows;
}

bool ExportPlainDatabase(const base::FilePath& encrypted,
                         const std::wstring& key,
                         const base::FilePath& plain) {
  sql::Connection db;
  if (!db.OpenWithKey(encrypted, key))
    return false;
  // An empty file is an empty database; the connection, opened without the
  // right to create files, could not attach a missing one.
  if (!base::WriteFile(plain, std::string()))
    return false;
  std::string attach = "ATTACH DATABASE '" + plain.AsUTF8Unsafe() + "' AS plain KEY ''";
  return db.Execute(attach.c_str()) && db.Execute("SELECT sqlcipher_export('plain')") &&
         db.Execute("DETACH DATABASE plain");
}

std::string SqlcipherOutput(const base::FilePath& path,
                            const std::wstring& key,
                            const std::string& query) {
  std::string input = key.empty() ? "" : "PRAGMA key = '" + base::WideToUTF8(key) + "';\n";
  std::string output;
  testing_support::RunCommand("sqlcipher '" + path.AsUTF8Unsafe() + "'", input + query + "\n",
                              &output);
  return output;
}

namespace {

// "GeneralList_11" and "GeneralList_-3" belong to the family "GeneralList".
std::string Family(const std::string& table) {
  size_t underscore = table.rfind('_');
  if (underscore == std::string::npos || underscore + 1 == table.size())
    return table;
  std::string id = table.substr(underscore + 1);
  if (id.find_first_not_of("-0123456789") != std::string::npos)
    return table;
  return table.substr(0, underscore);
}

}  // namespace

base::Value ReadImportReport(const base::FilePath& data_folder) {
  base::Value report;
  base::FilePath latest = LatestRunReport(data_folder);
  EXPECT_FALSE(latest.empty()) << "no report in " << data_folder.AsUTF8Unsafe();
  EXPECT_TRUE(base::ReadJsonFile(latest, &report));
  return report;
}

const base::Value* FindEntry(const base::Value& list,
                             const std::string& key,
                             const std::string& value,
                             const std::string& key2,
                             const std::string& value2) {
  for (const auto& entry : list) {
    if (entry[key] == value && (key2.empty() || entry[key2] == value2))
      return &entry;
  }
  return nullptr;
}

int64_t TableRowCount(sql::Connection* db, const std::string& table) {
  sql::Statement count(db->GetUniqueStatement(("SELECT count(*) FROM \"" + table + "\"").c_str()));
  return count.Step() ? count.ColumnInt64(0) : -1;
}

void ExpectReportReconciles(const base::Value& report, const base::FilePath& data_folder) {
  int64_t pair_drops = 0;
  std::map<std::pair<std::string, std::string>, std::map<std::string, int64_t>> family_reads;
  for (const auto& flow : report["flows"]) {
    int64_t by_reason = 0;
    for (const auto& [reason, count] : flow["dropped_by_reason"].items())
      by_reason += count.get<int64_t>();
    EXPECT_EQ(flow["dropped"], by_reason) << flow.dump();
    EXPECT_EQ(flow["read"].get<int64_t>(), flow["written"].get<int64_t>() + by_reason)
        << flow.dump();
    EXPECT_NE("(not recorded)", flow["from"]) << flow.dump();
    pair_drops += by_reason;
    family_reads[{flow["source"], flow["from"]}][Family(flow["to"])] += flow["read"].get<int64_t>();
  }
  // A source feeding DownloadItem feeds the history with its finished
  // downloads only; a source of history rows alone feeds it all of them.
  for (auto& [source, families] : family_reads) {
    if (families.count("DownloadItem"))
      families.erase("DownloadHistoryItem");
  }
  for (const auto& table : report["source_tables"]) {
    int64_t kept = table["rows_read"].get<int64_t>() - table["rows_merged"].get<int64_t>();
    EXPECT_LE(table["records_made"].get<int64_t>(), kept) << table.dump();
    auto reads = family_reads.find({table["source"], table["table"]});
    if (kept == 0 && reads == family_reads.end())
      continue;
    ASSERT_NE(family_reads.end(), reads) << table.dump();
    for (const auto& [family, read] : reads->second)
      EXPECT_EQ(kept, read) << table.dump() << " to " << family;
  }
  int64_t reason_drops = 0;
  for (const auto& drop : report["dropped"])
    reason_drops += drop["count"].get<int64_t>();
  EXPECT_EQ(pair_drops, reason_drops);

  sql::Connection music, playlists;
  ASSERT_TRUE(music.OpenWithKey(data_folder.Append(L"VTMusicV3.db"), kVersion3DatabaseKey));
  ASSERT_TRUE(playlists.OpenWithKey(data_folder.Append(L"playlistV3.db"), kVersion3DatabaseKey));
  for (const auto& target : report["target_tables"]) {
    std::string table = target["table"];
    // The cloud lists of a re-import are in the playlist file; a table that
    // no rows were sent to may be in neither.
    sql::Connection* db = Family(table) == "GeneralList" || table == "GeneralListTable" ||
                                  playlists.DoesTableExist(table.c_str())
                              ? &playlists
                              : &music;
    // A table rows were only dropped on their way to (that of a list that
    // is not imported) need not exist.
    int64_t rows = TableRowCount(db, table);
    if (rows == -1 && target["rows_sent"] == 0 &&
        (target["rows_counted"].is_null() || !db->DoesTableExist(table.c_str())))
      rows = 0;
    EXPECT_EQ(target["rows_sent"], rows) << table;
    if (!target["rows_counted"].is_null()) {
      EXPECT_EQ(target["rows_sent"], target["rows_counted"]) << table;
    }
  }
}

#if !defined(_WIN32)
long ProcessorMicrosOfWholeRun() {
  pid_t child = fork();
  if (child == 0) {
    DataImporterMain();
    _exit(0);
  }
  int status = 0;
  rusage usage{};
  if (child == -1 || wait4(child, &status, 0, &usage) != child || !WIFEXITED(status)) {
    ADD_FAILURE() << "the whole run in a child process did not end normally";
    return -1;
  }
  return usage.ru_utime.tv_sec * 1000000L + usage.ru_utime.tv_usec +
         usage.ru_stime.tv_sec * 1000000L + usage.ru_stime.tv_usec;
}
#endif  // !defined(_WIN32)

V6Music NumberedV6Music(int id, const std::wstring& title, wchar_t hash_fill, int mv_id) {
  V6Music m;
  m.id = id;
  m.title = title;
  m.file_name = L"D:\\Music\\" + title + L".mp3";
  m.hash = testing_support::NumberedHash(id, hash_fill);
  m.mv_id = mv_id;
  return m;
}

V7Music NumberedV7Music(int id, const std::wstring& title, wchar_t hash_fill) {
  V7Music m;
  m.id = id;
  m.title = title;
  m.file_name = L"D:\\Music\\" + title + L".mp3";
  m.hash = testing_support::NumberedHash(id, hash_fill);
  return m;
}

}  // namespace data_importer
