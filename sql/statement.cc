#include "sql/statement.h"

#include <sqlite3.h>

#include "base/utf_string_conversions.h"

namespace sql {

Statement::Statement() = default;

Statement::Statement(std::shared_ptr<StatementRef> ref) : ref_(std::move(ref)) {}

Statement::~Statement() {
  // A cached statement is left ready for its next user.
  if (is_valid())
    sqlite3_reset(ref_->stmt());
}

void Statement::Assign(std::shared_ptr<StatementRef> ref) {
  if (is_valid())
    sqlite3_reset(ref_->stmt());
  ref_ = std::move(ref);
  last_result_ = kNotRun;
}

bool Statement::Step() {
  if (!is_valid()) {
    last_result_ = kError;
    return false;
  }
  int rc = sqlite3_step(ref_->stmt());
  last_result_ = rc == SQLITE_ROW ? kRow : rc == SQLITE_DONE ? kDone : kError;
  return rc == SQLITE_ROW;
}

bool Statement::Run() {
  if (!is_valid())
    return false;
  int rc = sqlite3_step(ref_->stmt());
  return rc == SQLITE_DONE || rc == SQLITE_ROW;
}

void Statement::Reset() {
  last_result_ = kNotRun;
  if (is_valid())
    sqlite3_reset(ref_->stmt());
}

int Statement::ColumnCount() const {
  return is_valid() ? sqlite3_column_count(ref_->stmt()) : 0;
}

bool Statement::CheckColumn(int col) const {
  return is_valid() && col >= 0 && col < sqlite3_column_count(ref_->stmt());
}

std::string Statement::GetColumnName(int col) const {
  if (!CheckColumn(col))
    return std::string();
  const char* name = sqlite3_column_name(ref_->stmt(), col);
  return name ? name : std::string();
}

int Statement::ColumnInt(int col) const {
  return CheckColumn(col) ? sqlite3_column_int(ref_->stmt(), col) : 0;
}

int64_t Statement::ColumnInt64(int col) const {
  return CheckColumn(col) ? sqlite3_column_int64(ref_->stmt(), col) : 0;
}

bool Statement::ColumnIsNull(int col) const {
  return CheckColumn(col) && sqlite3_column_type(ref_->stmt(), col) == SQLITE_NULL;
}

double Statement::ColumnDouble(int col) const {
  return CheckColumn(col) ? sqlite3_column_double(ref_->stmt(), col) : 0.0;
}

std::string Statement::ColumnString(int col) const {
  if (!CheckColumn(col))
    return std::string();
  const char* text = reinterpret_cast<const char*>(sqlite3_column_text(ref_->stmt(), col));
  int length = sqlite3_column_bytes(ref_->stmt(), col);
  return text ? std::string(text, length) : std::string();
}

std::wstring Statement::ColumnString16(int col) const {
  return base::UTF8ToWide(ColumnString(col));
}

}  // namespace sql
