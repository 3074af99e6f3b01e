#ifndef SQL_STATEMENT_H_
#define SQL_STATEMENT_H_

#include <cstdint>
#include <memory>
#include <string>

#include "sql/connection.h"

namespace sql {

// A prepared statement from Connection::GetUniqueStatement or
// GetCachedStatement:
//
//   sql::Statement s(db.GetUniqueStatement("SELECT a FROM t"));
//   while (s.Step()) use(s.ColumnInt(0));
//
// An invalid statement (bad SQL, closed connection) answers false to Step
// and neutral values to every getter; nothing throws. Column getters read the
// current row; a NULL reads as 0, 0.0 or empty.
class Statement {
 public:
  Statement();
  explicit Statement(std::shared_ptr<StatementRef> ref);
  ~Statement();
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  void Assign(std::shared_ptr<StatementRef> ref);
  bool is_valid() const { return m_ref && m_ref->is_valid(); }

  // Runs the statement to its next row: true while a row is available.
  // False at the end, on an error, or when invalid.
  [[nodiscard]] bool Step();
  // Whether the last Step ended well: on a row or at the end of the
  // results. False after an error (a damaged page, say) and before any
  // Step; a loop over Step uses it to tell the end from a failure.
  [[nodiscard]] bool Succeeded() const { return m_last_result == kRow || m_last_result == kDone; }
  // Runs a statement that returns no row: true on success.
  [[nodiscard]] bool Run();
  // Back to the start, ready to step again.
  void Reset();

  [[nodiscard]] int ColumnCount() const;
  // Column name as SQLite gives it (UTF-8); empty when out of range.
  std::string GetColumnName(int col) const;

  [[nodiscard]] int ColumnInt(int col) const;
  [[nodiscard]] int64_t ColumnInt64(int col) const;
  [[nodiscard]] double ColumnDouble(int col) const;
  std::string ColumnString(int col) const;     // UTF-8
  std::wstring ColumnString16(int col) const;  // wide text
  // Whether the column holds NULL (false when out of range).
  [[nodiscard]] bool ColumnIsNull(int col) const;

 private:
  [[nodiscard]] bool CheckColumn(int col) const;

  enum LastResult { kNotRun, kRow, kDone, kError };

  std::shared_ptr<StatementRef> m_ref;
  LastResult m_last_result = kNotRun;
};

}  // namespace sql

#endif  // SQL_STATEMENT_H_
