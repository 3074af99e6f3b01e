#ifndef TOOLS_DATA_IMPORTER_TARGET_STORE_RECORD_COLUMNS_H_
#define TOOLS_DATA_IMPORTER_TARGET_STORE_RECORD_COLUMNS_H_

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "tools/data_importer/database_helper/db_row_reader.h"
#include "tools/data_importer/target_store/table_writer.h"

namespace data_importer {

// The columns one record fills in its table, in the order they are written,
// each bound to the record field it is written from. The same list reads a
// row of that table back into a record, so a table's column names exist in
// one place for both directions.
//
// Writing follows the row-writing rule of RowBuilder: texts as quoted
// literals, integers, times and booleans in decimal, reals with 17 digits.
// Reading goes through a RowReaderInterface: a column the row lacks, or a
// NULL, reads as 0, 0.0, false or empty, except in a NullableText field,
// which keeps a NULL and is written as NULL again.
template <typename Record>
struct RecordColumn {
  using Field = std::variant<std::wstring Record::*,
                             SharedText Record::*,
                             NullableText Record::*,
                             int Record::*,
                             int64_t Record::*,
                             bool Record::*,
                             double Record::*>;
  const char* name;
  Field field;
};

template <typename Record>
using ColumnList = std::vector<RecordColumn<Record>>;

namespace record_columns_internal {

inline void Append(RowBuilder* row, const char* name, const std::wstring& value) {
  row->Text(name, value);
}
inline void Append(RowBuilder* row, const char* name, const SharedText& value) {
  row->Text(name, value.view());
}
inline void Append(RowBuilder* row, const char* name, const NullableText& value) {
  if (value.is_null)
    row->Null(name);
  else
    row->Text(name, value.text.view());
}
inline void Append(RowBuilder* row, const char* name, int value) {
  row->Int(name, value);
}
inline void Append(RowBuilder* row, const char* name, int64_t value) {
  row->Int(name, value);
}
inline void Append(RowBuilder* row, const char* name, bool value) {
  row->Bool(name, value);
}
inline void Append(RowBuilder* row, const char* name, double value) {
  row->Real(name, value);
}

inline void Read(RowReaderInterface* row, const std::string& name, std::wstring* value) {
  *value = row->GetString16(name);
}
inline void Read(RowReaderInterface* row, const std::string& name, SharedText* value) {
  *value = row->GetString16(name);
}
inline void Read(RowReaderInterface* row, const std::string& name, NullableText* value) {
  value->is_null = row->IsNull(name);
  value->text = row->GetString16(name);
}
inline void Read(RowReaderInterface* row, const std::string& name, int* value) {
  *value = row->GetInt(name);
}
inline void Read(RowReaderInterface* row, const std::string& name, int64_t* value) {
  *value = row->GetInt64(name);
}
inline void Read(RowReaderInterface* row, const std::string& name, bool* value) {
  *value = row->GetInt(name) != 0;
}
inline void Read(RowReaderInterface* row, const std::string& name, double* value) {
  *value = row->GetDouble(name);
}

}  // namespace record_columns_internal

// Appends every column of |columns| with its value taken from |record|.
template <typename Record>
void AppendColumns(const Record& record, const ColumnList<Record>& columns, RowBuilder* row) {
  for (const RecordColumn<Record>& column : columns) {
    std::visit(
        [&](auto field) { record_columns_internal::Append(row, column.name, record.*field); },
        column.field);
  }
}

// The same, except that each column bound to a field of |replaced| takes
// the value paired with it: columns whose written value the writer derives
// rather than copies.
template <typename Record, typename Value>
void AppendColumnsReplacing(const Record& record,
                            const ColumnList<Record>& columns,
                            std::initializer_list<std::pair<Value Record::*, Value>> replaced,
                            RowBuilder* row) {
  for (const RecordColumn<Record>& column : columns) {
    const Value* replacement = nullptr;
    if (auto* bound = std::get_if<Value Record::*>(&column.field)) {
      for (const auto& [field, value] : replaced) {
        if (field == *bound)
          replacement = &value;
      }
    }
    if (replacement) {
      record_columns_internal::Append(row, column.name, *replacement);
      continue;
    }
    std::visit(
        [&](auto field) { record_columns_internal::Append(row, column.name, record.*field); },
        column.field);
  }
}

// Reads every column of |columns| from the current row into |record|.
template <typename Record>
void ReadColumns(RowReaderInterface* row, const ColumnList<Record>& columns, Record* record) {
  for (const RecordColumn<Record>& column : columns) {
    std::visit(
        [&](auto field) { record_columns_internal::Read(row, column.name, &(record->*field)); },
        column.field);
  }
}

// The parts one after the other: the list of a table whose columns hold a
// run shared with another table between columns of its own.
template <typename Record>
ColumnList<Record> JoinColumns(std::initializer_list<ColumnList<Record>> parts) {
  ColumnList<Record> joined;
  for (const ColumnList<Record>& part : parts)
    joined.insert(joined.end(), part.begin(), part.end());
  return joined;
}

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_TARGET_STORE_RECORD_COLUMNS_H_
