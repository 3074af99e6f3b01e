#ifndef TOOLS_DATA_IMPORTER_TARGET_STORE_TABLE_WRITER_H_
#define TOOLS_DATA_IMPORTER_TARGET_STORE_TABLE_WRITER_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class DatabaseHelper;

// The row-writing rule every table of the new databases is written by:
// each row is its own "Insert Into <table>(<columns>) values (<values>)"
// text, texts as quoted SQL literals, integers, times and booleans (0/1) in
// decimal; one transaction per table; a failing insert loses only its row
// and is not reported. A table writer is therefore a declaration of its
// table (name and CREATE TABLE text) and of the columns one record fills:
//
//   WriteTable(db, {"AppTools", kCreateAppTools}, m_app_tools,
//              EmptyList::kSkipTable,
//              [](const AppToolRecord& r, RowBuilder* row) {
//                row->Int("ID", r.ID);
//                ...
//                return true;  // false skips the record
//              });

// Builds the column and value lists of one row. The statement text is built
// straight in UTF-8; it is the same text a wide statement converted to
// UTF-8 would be.
class RowBuilder {
 public:
  void Text(std::string_view column, std::wstring_view value);
  void Int(std::string_view column, int64_t value);
  void Bool(std::string_view column, bool value) { Int(column, value ? 1 : 0); }
  // Written with 17 significant digits ("%.17g"), which SQLite reads back as
  // the same double. (The shortest round-trip text is not enough: SQLite's
  // own decimal parser is not correctly rounded for every such text.) NaN
  // and infinities have no SQL literal and are written as 0, the column
  // default, so the row is not lost over them.
  void Real(std::string_view column, double value);

  // The insert statement of the row built so far.
  std::string Statement(const std::string& table) const;
  void Clear();

 private:
  void AddColumn(std::string_view column);

  std::string columns_;
  std::string values_;
};

struct TableDef {
  std::string name;
  std::string create_sql;
};

enum class EmptyList {
  kSkipTable,    // no records: the table is not created
  kCreateTable,  // the table is created even for no records
};

// Executes the CREATE TABLE text and keeps one transaction open on |db| for
// the table's rows; commits when destroyed. With a null or closed database
// every operation does nothing.
class TableTransaction {
 public:
  TableTransaction(DatabaseHelper* db, const TableDef& definition);
  ~TableTransaction();
  TableTransaction(const TableTransaction&) = delete;
  TableTransaction& operator=(const TableTransaction&) = delete;

  // Executes |statement|; false when it failed (the row is lost).
  bool Execute(const std::string& statement);
  RowBuilder* row() { return &row_; }
  // Executes the insert built in row() and clears the builder.
  bool InsertRow();

 private:
  DatabaseHelper* db_;
  const TableDef& definition_;
  RowBuilder row_;
  bool open_ = false;
};

template <typename List, typename FillRow>
void WriteTable(DatabaseHelper* db, const TableDef& definition, const List& records, EmptyList empty,
                FillRow fill_row) {
  if (empty == EmptyList::kSkipTable && records.empty())
    return;
  TableTransaction table(db, definition);
  for (const auto& record : records) {
    if (fill_row(*record, table.row()))
      table.InsertRow();
    else
      table.row()->Clear();
  }
}

// Inserts pre-built statements whose rows receive consecutive ids and
// answers the id of each. The first statement runs outside a transaction;
// then the largest key of |key_column| gives the first row's id (1 when
// the query fails), a transaction is opened, and every later row counts
// on from there, whether or not its insert succeeded. The CREATE TABLE
// text must have run already.
std::vector<int> InsertNumberedRows(DatabaseHelper* db, const std::string& table,
                                    const std::string& key_column,
                                    const std::vector<std::string>& statements);

// Executes |create_sql| on |db| when it is open; failures are ignored.
void CreateTable(DatabaseHelper* db, const std::string& create_sql);

#endif  // TOOLS_DATA_IMPORTER_TARGET_STORE_TABLE_WRITER_H_
