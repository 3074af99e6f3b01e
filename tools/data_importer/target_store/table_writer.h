#ifndef TOOLS_DATA_IMPORTER_TARGET_STORE_TABLE_WRITER_H_
#define TOOLS_DATA_IMPORTER_TARGET_STORE_TABLE_WRITER_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "tools/data_importer/run_record/import_report.h"

namespace data_importer {

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
//              }, report());
//
// With a report, every record is accounted for by its origin: a row
// inserted counts as written, a row the database refuses as dropped (the
// reason kRowRefused). A row filler that leaves records out for a reason
// answers a RowFate instead of a bool.

// Builds the column and value lists of one row. The statement text is built
// straight in UTF-8; it is the same text a wide statement converted to
// UTF-8 would be.
class RowBuilder {
 public:
  void Text(std::string_view column, std::wstring_view value);
  void Int(std::string_view column, int64_t value);
  void Null(std::string_view column);
  void Bool(std::string_view column, bool value) { Int(column, value ? 1 : 0); }
  // Written with 17 significant digits ("%.17g"), which SQLite reads back as
  // the same double. (The shortest round-trip text is not enough: SQLite's
  // own decimal parser is not correctly rounded for every such text.) NaN
  // and infinities have no SQL literal and are written as 0, the column
  // default, so the row is not lost over them.
  void Real(std::string_view column, double value);

  // The insert statement of the row built so far.
  std::string Statement(const std::string& table) const;
  // The same, written into |out| (emptied first).
  void Statement(const std::string& table, std::string* out) const;
  void Clear();

 private:
  void AddColumn(std::string_view column);

  std::string m_columns;
  std::string m_values;
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
  // Rolls back whatever was not committed.
  ~TableTransaction();
  TableTransaction(const TableTransaction&) = delete;
  TableTransaction& operator=(const TableTransaction&) = delete;

  // Commits the rows inserted so far; false (logged) when the commit failed
  // and the rows are lost. Without a transaction (it could not be begun)
  // each row was committed on its own and the answer is true.
  [[nodiscard]] bool Commit();

  // Executes |statement|; false when it failed (the row is lost).
  bool Execute(const std::string& statement);
  RowBuilder* row() { return &m_row; }
  // Executes the insert built in row() and clears the builder.
  bool InsertRow();

 private:
  DatabaseHelper* m_db;
  const TableDef& m_definition;
  RowBuilder m_row;
  std::string m_statement;  // the last row's insert, its buffer kept
  bool m_open = false;
};

// What a row filler answers for a record it may leave out.
struct RowFate {
  static RowFate Write() { return {nullptr, true}; }
  // Not meant for this table (not counted: it is written or counted
  // elsewhere).
  static RowFate Skip() { return {nullptr, false}; }
  static RowFate Drop(const DropReason& reason) { return {&reason, false}; }

  const DropReason* drop;
  bool write;
};

// The example a dropped record gives in the report: its old id and a name
// a person recognises. The source table comes from its origin.
template <typename Record>
ImportReport::DropExample DropExampleOf(const Record& r) {
  ImportReport::DropExample example;
  if constexpr (requires { r.TitleName; }) {
    example.old_id = r.SongID;
    example.name = r.TitleName;
  } else if constexpr (requires { r.PlaylistName; }) {
    example.old_id = r.PlaylistID;
    example.name = r.PlaylistName;
  } else if constexpr (requires { r.DestFileName; }) {
    example.old_id = r.file_id;
    example.name = r.FileName;
  } else if constexpr (requires { r.FileName; }) {
    example.old_id = r.old_id;
    example.name = r.FileName;
  }
  return example;
}

template <typename List, typename FillRow>
void WriteTable(DatabaseHelper* db,
                const TableDef& definition,
                const List& records,
                EmptyList empty,
                FillRow fill_row,
                ImportReport* report = nullptr) {
  if (empty == EmptyList::kSkipTable && records.empty())
    return;
  TableTransaction table(db, definition);
  TargetTableTally tally(report, definition.name);
  for (const auto& record : records) {
    RowFate fate = RowFate::Skip();
    if constexpr (std::is_same_v<decltype(fill_row(*record, table.row())), bool>)
      fate = fill_row(*record, table.row()) ? RowFate::Write() : RowFate::Skip();
    else
      fate = fill_row(*record, table.row());
    if (fate.write) {
      if (table.InsertRow())
        tally.Written(record->origin);
      else
        tally.Dropped(record->origin, drop_reason::kRowRefused, DropExampleOf(*record));
      continue;
    }
    table.row()->Clear();
    if (fate.drop)
      tally.Dropped(record->origin, *fate.drop, DropExampleOf(*record));
  }
  // A failed commit is logged by Commit; the rows then missing from the
  // finished file show in the report as a count that does not match.
  (void)table.Commit();
}

// Inserts pre-built statements whose rows receive consecutive ids and
// answers the id of each; |inserted|, when given, receives whether each
// insert succeeded. The first statement runs outside a transaction;
// then the largest key of |key_column| gives the first row's id (1 when
// the query fails), a transaction is opened, and every later row counts
// on from there, whether or not its insert succeeded. The CREATE TABLE
// text must have run already.
std::vector<int> InsertNumberedRows(DatabaseHelper* db,
                                    const std::string& table,
                                    const std::string& key_column,
                                    const std::vector<std::string>& statements,
                                    std::vector<bool>* inserted = nullptr);

// Executes |create_sql| on |db| when it is open; failures are ignored.
void CreateTable(DatabaseHelper* db, const std::string& create_sql);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_TARGET_STORE_TABLE_WRITER_H_
