#include "sql/statement.h"

#include <sqlite3.h>

#include "base/utf_string_conversions.h"

namespace sql {

Statement::Statement() = default;

Statement::Statement(std::shared_ptr<StatementRef> ref) : m_ref(std::move(ref)) {}

Statement::~Statement() {
  // A cached statement is left ready for its next user.
  if (is_valid())
    sqlite3_reset(m_ref->stmt());
}

void Statement::Assign(std::shared_ptr<StatementRef> ref) {
  if (is_valid())
    sqlite3_reset(m_ref->stmt());
  m_ref = std::move(ref);
  m_last_result = kNotRun;
}

bool Statement::Step() {
  if (!is_valid()) {
    m_last_result = kError;
    return false;
  }
  int rc = sqlite3_step(m_ref->stmt());
  m_last_result = rc == SQLITE_ROW ? kRow : rc == SQLITE_DONE ? kDone : kError;
  return rc == SQLITE_ROW;
}

bool Statement::Run() {
  if (!is_valid())
    return false;
  int rc = sqlite3_step(m_ref->stmt());
  return rc == SQLITE_DONE || rc == SQLITE_ROW;
}

void Statement::Reset() {
  m_last_result = kNotRun;
  if (is_valid())
    sqlite3_reset(m_ref->stmt());
}

int Statement::ColumnCount() const {
  return is_valid() ? sqlite3_column_count(m_ref->stmt()) : 0;
}

bool Statement::CheckColumn(int col) const {
  return is_valid() && col >= 0 && col < sqlite3_column_count(m_ref->stmt());
}

std::string Statement::GetColumnName(int col) const {
  if (!CheckColumn(col))
    return std::string();
  const char* name = sqlite3_column_name(m_ref->stmt(), col);
  return name ? name : std::string();
}

int Statement::ColumnInt(int col) const {
  return CheckColumn(col) ? sqlite3_column_int(m_ref->stmt(), col) : 0;
}

int64_t Statement::ColumnInt64(int col) const {
  return CheckColumn(col) ? sqlite3_column_int64(m_ref->stmt(), col) : 0;
}

bool Statement::ColumnIsNull(int col) const {
  return CheckColumn(col) && sqlite3_column_type(m_ref->stmt(), col) == SQLITE_NULL;
}

double Statement::ColumnDouble(int col) const {
  return CheckColumn(col) ? sqlite3_column_double(m_ref->stmt(), col) : 0.0;
}

std::string Statement::ColumnString(int col) const {
  if (!CheckColumn(col))
    return std::string();
  const char* text = reinterpret_cast<const char*>(sqlite3_column_text(m_ref->stmt(), col));
  int length = sqlite3_column_bytes(m_ref->stmt(), col);
  return text ? std::string(text, length) : std::string();
}

std::wstring Statement::ColumnString16(int col) const {
  return base::UTF8ToWide(ColumnString(col));
}

}  // namespace sql
