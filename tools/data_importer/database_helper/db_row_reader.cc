#include "tools/data_importer/database_helper/db_row_reader.h"

#include "base/string_util.h"
#include "sql/connection.h"

namespace data_importer {

DbRowReader::DbRowReader(sql::Connection& connection, const std::string& sql)
    : m_statement(connection.GetUniqueStatement(sql.c_str())) {}

DbRowReader::~DbRowReader() = default;

bool DbRowReader::IsValid() const {
  return m_statement.is_valid();
}

bool DbRowReader::Step() {
  if (!m_statement.is_valid())
    return false;
  return m_statement.Step();
}

int DbRowReader::GetColumnIndex(const std::string& name) {
  auto cached = m_column_index.find(name);
  if (cached != m_column_index.end())
    return cached->second;

  ++m_column_scans;
  int index = -1;
  int count = m_statement.ColumnCount();
  if (count >= 1) {
    for (int i = 0; i < count && index < 0; ++i) {
      if (base::EqualsCaseInsensitiveASCII(m_statement.GetColumnName(i), name))
        index = i;
    }
  }
  m_column_index.emplace(name, index);
  return index;
}

double DbRowReader::GetDouble(const std::string& name) {
  int index = GetColumnIndex(name);
  return index < 0 ? 0.0 : m_statement.ColumnDouble(index);
}

int DbRowReader::GetInt(const std::string& name) {
  int index = GetColumnIndex(name);
  return index < 0 ? 0 : m_statement.ColumnInt(index);
}

int64_t DbRowReader::GetInt64(const std::string& name) {
  int index = GetColumnIndex(name);
  return index < 0 ? 0 : m_statement.ColumnInt64(index);
}

std::string DbRowReader::GetString(const std::string& name) {
  int index = GetColumnIndex(name);
  return index < 0 ? std::string() : m_statement.ColumnString(index);
}

bool DbRowReader::IsNull(const std::string& name) {
  int index = GetColumnIndex(name);
  return index >= 0 && m_statement.ColumnIsNull(index);
}

std::wstring DbRowReader::GetString16(const std::string& name) {
  int index = GetColumnIndex(name);
  return index < 0 ? std::wstring() : m_statement.ColumnString16(index);
}

}  // namespace data_importer
