#include "tools/data_importer/database_helper/database_helper.h"

#include <cctype>
#include <locale>

#include <boost/format.hpp>

#include "base/file_util.h"
#include "base/utf_string_conversions.h"
#include "sql/statement.h"
#include "tools/data_importer/database_helper/db_row_reader.h"

namespace data_importer {

DatabaseHelper::DatabaseHelper() : m_connection(std::make_unique<sql::Connection>()) {}

DatabaseHelper::~DatabaseHelper() {
  m_attached_alias.clear();
  m_connection.reset();
}

void DatabaseHelper::PrepareOpen(const base::FilePath& path) {
  m_repaired = false;
  // Clears a read-only flag left by earlier releases. Deliberately unchecked:
  // a missing file is no error here, and an open that still cannot write
  // fails on its own.
  (void)base::SetFileAttributesNormal(path);
  m_connection->set_page_size(4096);
  m_connection->set_cache_size(64);
}

bool DatabaseHelper::OpenAndCheck(const base::FilePath& path) {
  PrepareOpen(path);
  if (!m_connection->Open(path))
    return false;
  return CheckOrRepair();
}

bool DatabaseHelper::OpenReadOnly(const base::FilePath& path) {
  m_repaired = false;
  return m_connection->OpenReadOnly(path);
}

bool DatabaseHelper::OpenWithKey(const base::FilePath& path, const std::wstring& key) {
  PrepareOpen(path);
  return m_connection->OpenWithKey(path, key, /*create_if_missing=*/false);
}

bool DatabaseHelper::CheckOrRepair() {
  if (CheckIntegrity())
    return true;
  // The second integrity check decides, whatever the VACUUM answered.
  (void)m_connection->Execute("VACUUM");
  if (CheckIntegrity()) {
    m_repaired = true;
    return true;
  }
  m_connection->Close();
  return false;
}

bool DatabaseHelper::ClaimsPagesBeyondFile() {
  // The pragmas first: their read rolls back a hot journal, which may
  // change the file's size.
  sql::Statement count(m_connection->GetUniqueStatement("PRAGMA page_count"));
  sql::Statement size(m_connection->GetUniqueStatement("PRAGMA page_size"));
  if (!count.is_valid() || !size.is_valid() || !count.Step() || !size.Step())
    return false;  // the check itself will fail on such a file
  base::FileInfo info;
  if (!base::GetFileInfo(m_connection->path(), &info))
    return false;  // nothing to compare with; the check itself decides
  const int64_t claimed = count.ColumnInt64(0);
  const int64_t page_size = size.ColumnInt64(0);
  return page_size > 0 && claimed > (info.size + page_size - 1) / page_size;
}

bool DatabaseHelper::CheckIntegrity() {
  // A database whose header claims more pages than its file holds (a
  // truncated or damaged file) can never pass: the pages past the end are
  // used by no table. The engine would still map every claimed page before
  // it walks them, up to 2^32 of them: seconds and hundreds of megabytes for
  // a damaged file of a few kilobytes. Answered from the file's size instead.
  if (ClaimsPagesBeyondFile())
    return false;
  sql::Statement check(m_connection->GetCachedStatement(sql::StatementID("database_helper", 358),
                                                        "PRAGMA Integrity_Check"));
  if (!check.is_valid() || !check.Step())
    return false;
  std::wstring result = check.ColumnString16(0);
  check.Reset();
  static const wchar_t kOk[] = L"ok";
  if (result.size() != 2)
    return false;
  std::locale locale;
  const auto& ctype = std::use_facet<std::ctype<wchar_t>>(locale);
  for (size_t i = 0; i < 2; ++i) {
    if (ctype.toupper(result[i]) != ctype.toupper(kOk[i]))
      return false;
  }
  return true;
}

bool DatabaseHelper::Attach(const base::FilePath& path, const std::string& alias) {
  if (!m_connection || !m_attached_alias.empty())
    return false;
  if (alias.empty())
    return false;
  m_attached_alias = alias;
  return m_connection->AttachDatabase(path, alias.c_str());
}

bool DatabaseHelper::CopyTable(const std::string& where, const std::string& table) {
  if (!m_connection || m_attached_alias.empty())
    return false;
  std::string sql;
  if (!m_connection->is_open() || !m_connection->DoesTableExist(table.c_str()))
    sql = "CREATE TABLE " + table + " AS SELECT * FROM " + m_attached_alias + "." + table;
  else
    sql = "INSERT INTO " + table + " SELECT * FROM " + m_attached_alias + "." + table;
  if (!where.empty())
    sql += " where " + where;
  return m_connection->Execute(sql.c_str());
}

void DatabaseHelper::Close() {
  m_connection->Close();
}

void DatabaseHelper::ResetConnection() {
  m_attached_alias.clear();
  m_connection = std::make_unique<sql::Connection>();
}

std::string BuildInsertStatement(const std::string& table,
                                 const std::string& columns,
                                 const std::string& values) {
  std::string sql;
  BuildInsertStatement(table, columns, values, &sql);
  return sql;
}

void BuildInsertStatement(std::string_view table,
                          std::string_view columns,
                          std::string_view values,
                          std::string* out) {
  out->clear();
  out->reserve(table.size() + columns.size() + values.size() + 24);
  *out += "Insert Into ";
  *out += table;
  *out += "(";
  *out += columns;
  *out += ") values (";
  *out += values;
  *out += ")";
}

std::string SqlTableName(const std::string& name) {
  bool plain = !name.empty();
  for (char c : name) {
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_')
      plain = false;
  }
  if (plain)
    return name;
  std::string quoted = "\"";
  for (char c : name) {
    quoted.push_back(c);
    if (c == '"')
      quoted.push_back('"');
  }
  return quoted + "\"";
}

std::wstring EscapeSqlText(const std::wstring& text) {
  std::wstring literal;
  literal.reserve(text.size() + 2);
  literal.push_back(L'\'');
  for (wchar_t c : text) {
    literal.push_back(c);
    if (c == L'\'')
      literal.push_back(L'\'');
  }
  literal.push_back(L'\'');
  return literal;
}

void AppendSqlTextLiteral(std::wstring_view text, std::string* out) {
  out->push_back('\'');
  size_t start = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    wchar_t c = text[i];
    if (c != L'\'' && c != L'\0')
      continue;
    base::AppendWideAsUTF8(text.substr(start, i - start), out);
    if (c == L'\'')
      out->append("''");
    start = i + 1;
  }
  base::AppendWideAsUTF8(text.substr(start), out);
  out->push_back('\'');
}

int GetMaxKeyId(DatabaseHelper* helper, const std::string& key_column, const std::string& table) {
  sql::Connection* connection = helper ? helper->connection() : nullptr;
  if (!connection || !connection->is_open())
    return 1;
  std::string query =
      (boost::format("Select IfNull(Max(%s), %d) As MaxKeyID From %s") % key_column % 1 % table)
          .str();
  DbRowReader reader(*connection, query);
  if (!reader.IsValid() || !reader.Step())
    return 1;
  return reader.GetInt("MaxKeyID");
}

}  // namespace data_importer
