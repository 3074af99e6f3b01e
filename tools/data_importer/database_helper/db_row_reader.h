#ifndef TOOLS_DATA_IMPORTER_DATABASE_HELPER_DB_ROW_READER_H_
#define TOOLS_DATA_IMPORTER_DATABASE_HELPER_DB_ROW_READER_H_

#include <cstdint>
#include <map>
#include <string>

#include "sql/statement.h"

namespace sql {
class Connection;
}

namespace data_importer {

// The operations of a cursor over query results, columns looked up by name.
class RowReaderInterface {
 public:
  virtual ~RowReaderInterface() = default;
  [[nodiscard]] virtual double GetDouble(const std::string& name) = 0;
  [[nodiscard]] virtual int GetInt(const std::string& name) = 0;
  [[nodiscard]] virtual int64_t GetInt64(const std::string& name) = 0;
  virtual std::string GetString(const std::string& name) = 0;
  virtual std::wstring GetString16(const std::string& name) = 0;
  // Whether the column holds NULL (false for a column the row lacks).
  [[nodiscard]] virtual bool IsNull(const std::string& name) = 0;
  [[nodiscard]] virtual bool IsValid() const = 0;
  [[nodiscard]] virtual bool Step() = 0;
};

// Cursor over one statement, prepared at construction with
// Connection::GetUniqueStatement (never cached) and finalised with the
// reader. The connection must outlive the reader.
//
//   DbRowReader reader(connection, "SELECT * FROM PlayLists");
//   if (!reader.IsValid()) { log; give up; }
//   while (reader.Step()) use(reader.GetInt("PlayListID"));
//
// Columns are found by name, case-insensitively (same length, bytes equal
// after toupper of the default locale); of two names that differ only in
// case the lower index wins. Every name asked for is cached, a missing one as
// -1, so a missing column costs one scan of the column names per reader, not
// one per row. A missing column, or any getter on an invalid statement,
// answers the neutral value (0, 0.0, empty) and logs nothing; a NULL value
// reads as the base library converts it (0 or empty). Invalid SQL does not
// throw: IsValid answers false and Step answers false at once.
class DbRowReader : public RowReaderInterface {
 public:
  DbRowReader(sql::Connection& connection, const std::string& sql);
  ~DbRowReader() override;

  [[nodiscard]] double GetDouble(const std::string& name) override;
  [[nodiscard]] int GetInt(const std::string& name) override;
  [[nodiscard]] int64_t GetInt64(const std::string& name) override;
  std::string GetString(const std::string& name) override;  // UTF-8
  std::wstring GetString16(const std::string& name) override;
  [[nodiscard]] bool IsNull(const std::string& name) override;
  [[nodiscard]] bool IsValid() const override;
  [[nodiscard]] bool Step() override;

  // Whether the rows so far came without an error: true after the last row
  // and while rows come, false once Step stopped at an error (a damaged
  // page) instead of the end, and for an invalid statement.
  [[nodiscard]] bool Succeeded() const { return m_statement.Succeeded(); }

  // Index of the column called |name| (case-insensitive), or -1.
  [[nodiscard]] int GetColumnIndex(const std::string& name);

  // Number of times the column names were scanned (for tests of the cache).
  int column_scans() const { return m_column_scans; }

 private:
  sql::Statement m_statement;
  std::map<std::string, int> m_column_index;
  int m_column_scans = 0;
};

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_DATABASE_HELPER_DB_ROW_READER_H_
