#include "tools/data_importer/target_store/table_writer.h"

#include <charconv>
#include <cmath>
#include <cstdio>

#include "base/utf_string_conversions.h"
#include "logging/logging.h"
#include "tools/data_importer/database_helper/database_helper.h"

namespace {

sql::Connection* OpenConnection(DatabaseHelper* db) {
  if (!db || !db->connection() || !db->connection()->is_open())
    return nullptr;
  return db->connection();
}

}  // namespace

void RowBuilder::AddColumn(std::string_view column) {
  if (!columns_.empty()) {
    columns_.push_back(',');
    values_.push_back(',');
  }
  columns_.append(column);
}

void RowBuilder::Text(std::string_view column, std::wstring_view value) {
  AddColumn(column);
  AppendSqlTextLiteral(value, &values_);
}

void RowBuilder::Int(std::string_view column, int64_t value) {
  AddColumn(column);
  char buffer[24];
  auto result = std::to_chars(buffer, buffer + sizeof(buffer), value);
  values_.append(buffer, result.ptr);
}

void RowBuilder::Real(std::string_view column, double value) {
  AddColumn(column);
  if (!std::isfinite(value))
    value = 0.0;
  char buffer[32];
  int length = std::snprintf(buffer, sizeof(buffer), "%.17g", value);
  values_.append(buffer, length);
}

std::string RowBuilder::Statement(const std::string& table) const {
  return BuildInsertStatement(table, columns_, values_);
}

void RowBuilder::Clear() {
  columns_.clear();
  values_.clear();
}

void CreateTable(DatabaseHelper* db, const std::string& create_sql) {
  if (sql::Connection* connection = OpenConnection(db))
    // A table that could not be created fails every insert that follows.
    (void)connection->Execute(create_sql.c_str());
}

TableTransaction::TableTransaction(DatabaseHelper* db, const TableDef& definition)
    : db_(db), definition_(definition) {
  CreateTable(db_, definition_.create_sql);
  if (sql::Connection* connection = OpenConnection(db_))
    open_ = connection->BeginTransaction();
}

TableTransaction::~TableTransaction() {
  sql::Connection* connection = OpenConnection(db_);
  if (open_ && connection)
    connection->RollbackTransaction();
}

bool TableTransaction::Commit() {
  if (!open_)
    return true;
  open_ = false;
  sql::Connection* connection = OpenConnection(db_);
  if (connection && connection->CommitTransaction())
    return true;
  VLOG_AT(logging::LOG_FAILURE) << L"Commit of table {" << base::UTF8ToWide(definition_.name)
                                << L"} FAILED; its rows are lost.";
  return false;
}

bool TableTransaction::Execute(const std::string& statement) {
  sql::Connection* connection = OpenConnection(db_);
  return connection && connection->Execute(statement.c_str());
}

bool TableTransaction::InsertRow() {
  bool inserted = Execute(row_.Statement(definition_.name));
  row_.Clear();
  return inserted;
}

std::vector<int> InsertNumberedRows(DatabaseHelper* db, const std::string& table,
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
