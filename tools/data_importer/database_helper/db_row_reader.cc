#include "tools/data_importer/database_helper/db_row_reader.h"

#include "base/string_util.h"
#include "sql/connection.h"

DbRowReader::DbRowReader(sql::Connection& connection, const std::string& sql)
    : statement_(connection.GetUniqueStatement(sql.c_str())) {}

DbRowReader::~DbRowReader() = default;

bool DbRowReader::IsValid() const {
  return statement_.is_valid();
}

bool DbRowReader::Step() {
  if (!statement_.is_valid())
    return false;
  return statement_.Step();
}

int DbRowReader::GetColumnIndex(const std::string& name) {
  auto cached = column_index_.find(name);
  if (cached != column_index_.end())
    return cached->second;

  ++column_scans_;
  int index = -1;
  int count = statement_.ColumnCount();
  if (count >= 1) {
    for (int i = 0; i < count && index < 0; ++i) {
      if (base::EqualsCaseInsensitiveASCII(statement_.GetColumnName(i), name))
        index = i;
    }
  }
  column_index_.emplace(name, index);
  return index;
}

double DbRowReader::GetDouble(const std::string& name) {
  int index = GetColumnIndex(name);
  return index < 0 ? 0.0 : statement_.ColumnDouble(index);
}

int DbRowReader::GetInt(const std::string& name) {
  int index = GetColumnIndex(name);
  return index < 0 ? 0 : statement_.ColumnInt(index);
}

int64_t DbRowReader::GetInt64(const std::string& name) {
  int index = GetColumnIndex(name);
  return index < 0 ? 0 : statement_.ColumnInt64(index);
}

std::string DbRowReader::GetString(const std::string& name) {
  int index = GetColumnIndex(name);
  return index < 0 ? std::string() : statement_.ColumnString(index);
}

bool DbRowReader::IsNull(const std::string& name) {
  int index = GetColumnIndex(name);
  return index >= 0 && statement_.ColumnIsNull(index);
}

std::wstring DbRowReader::GetString16(const std::string& name) {
  int index = GetColumnIndex(name);
  return index < 0 ? std::wstring() : statement_.ColumnString16(index);
}
