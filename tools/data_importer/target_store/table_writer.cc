#include "tools/data_importer/target_store/table_writer.h"

#include <charconv>
#include <cmath>
#include <cstdio>

#include "base/utf_string_conversions.h"
#include "logging/logging.h"
#include "tools/data_importer/database_helper/database_helper.h"

namespace data_importer {

namespace {

sql::Connection* OpenConnection(DatabaseHelper* db) {
  if (!db || !db->connection() || !db->connection()->is_open())
    return nullptr;
  return db->connection();
}

}  // namespace

void RowBuilder::AddColumn(std::string_view column) {
  if (!m_columns.empty()) {
    m_columns.push_back(',');
    m_values.push_back(',');
  }
  m_columns.append(column);
}

void RowBuilder::Text(std::string_view column, std::wstring_view value) {
  AddColumn(column);
  AppendSqlTextLiteral(value, &m_values);
}

void RowBuilder::Int(std::string_view column, int64_t value) {
  AddColumn(column);
  char buffer[24];
  auto result = std::to_chars(buffer, buffer + sizeof(buffer), value);
  m_values.append(buffer, result.ptr);
}

void RowBuilder::Null(std::string_view column) {
  AddColumn(column);
  m_values += "NULL";
}

void RowBuilder::Real(std::string_view column, double value) {
  AddColumn(column);
  if (!std::isfinite(value))
    value = 0.0;
  char buffer[32];
  int length = std::snprintf(buffer, sizeof(buffer), "%.17g", value);
  m_values.append(buffer, length);
}

std::string RowBuilder::Statement(const std::string& table) const {
  return BuildInsertStatement(table, m_columns, m_values);
}

void RowBuilder::Statement(const std::string& table, std::string* out) const {
  BuildInsertStatement(table, m_columns, m_values, out);
}

void RowBuilder::Clear() {
  m_columns.clear();
  m_values.clear();
}

void CreateTable(DatabaseHelper* db, const std::string& create_sql) {
  if (sql::Connection* connection = OpenConnection(db))
    // A table that could not be created fails every insert that follows.
    (void)connection->Execute(create_sql.c_str());
}

TableTransaction::TableTransaction(DatabaseHelper* db, const TableDef& definition)
    : m_db(db), m_definition(definition) {
  CreateTable(m_db, m_definition.create_sql);
  if (sql::Connection* connection = OpenConnection(m_db))
    m_open = connection->BeginTransaction();
}

TableTransaction::~TableTransaction() {
  sql::Connection* connection = OpenConnection(m_db);
  if (m_open && connection)
    connection->RollbackTransaction();
}

bool TableTransaction::Commit() {
  if (!m_open)
    return true;
  m_open = false;
  sql::Connection* connection = OpenConnection(m_db);
  if (connection && connection->CommitTransaction())
    return true;
  VLOG_AT(logging::LOG_FAILURE) << L"Commit of table {" << base::UTF8ToWide(m_definition.name)
                                << L"} FAILED; its rows are lost.";
  return false;
}

bool TableTransaction::Execute(const std::string& statement) {
  sql::Connection* connection = OpenConnection(m_db);
  return connection && connection->Execute(statement.c_str());
}

bool TableTransaction::InsertRow() {
  m_row.Statement(m_definition.name, &m_statement);
  bool inserted = Execute(m_statement);
  m_row.Clear();
  return inserted;
}

std::vector<int> InsertNumberedRows(DatabaseHelper* db,
                                    const std::string& table,
                                    const std::string& key_column,
                                    const std::vector<std::string>& statements,
                                    std::vector<bool>* inserted) {
  std::vector<int> ids;
  ids.reserve(statements.size());
  if (inserted)
    inserted->assign(statements.size(), false);
  sql::Connection* connection = OpenConnection(db);
  bool in_transaction = false;
  int id = -1;
  for (size_t i = 0; i < statements.size(); ++i) {
    // Ids count on whether or not the insert succeeded (see the header).
    bool ok = connection && connection->Execute(statements[i].c_str());
    if (inserted)
      (*inserted)[i] = ok;
    if (i == 0) {
      id = GetMaxKeyId(db, key_column, table);
      if (connection)
        in_transaction = connection->BeginTransaction();
    } else {
      ++id;
    }
    ids.push_back(id);
  }
  if (in_transaction)
    // The ids are answered either way; each insert was run on its own.
    (void)connection->CommitTransaction();
  return ids;
}

}  // namespace data_importer
