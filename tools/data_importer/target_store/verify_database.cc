#include "tools/data_importer/target_store/verify_database.h"

#include <vector>

#include "base/file_util.h"
#include "sql/connection.h"
#include "sql/statement.h"
#include "tools/data_importer/database_helper/database_helper.h"
#include "tools/data_importer/target_store/build_sequence.h"

namespace data_importer {

VerifiedDatabase CountTableRows(sql::Connection* connection) {
  VerifiedDatabase result;
  if (!connection->is_open()) {
    result.error = "database is not open";
    return result;
  }
  std::vector<std::string> tables;
  {
    sql::Statement schema(connection->GetUniqueStatement(
        "SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name"));
    if (!schema.is_valid()) {
      result.error = std::string("schema unreadable: ") + connection->GetErrorMessage();
      return result;
    }
    while (schema.Step())
      tables.push_back(schema.ColumnString(0));
  }
  for (const std::string& table : tables) {
    sql::Statement count(
        connection->GetUniqueStatement(("SELECT count(*) FROM " + SqlTableName(table)).c_str()));
    if (!count.Step()) {
      result.error = "table " + table + " unreadable: " + connection->GetErrorMessage();
      return result;
    }
    result.row_counts[table] = count.ColumnInt64(0);
  }
  result.ok = true;
  return result;
}

VerifiedDatabase VerifyEncryptedDatabase(const base::FilePath& path) {
  VerifiedDatabase result;
  if (!base::PathExists(path)) {
    result.error = "file is missing";
    return result;
  }
  sql::Connection connection;
  if (!connection.OpenWithKey(path, kVersion3DatabaseKey, /*create_if_missing=*/false)) {
    result.error = "does not open with the key (file is encrypted otherwise or is not a database)";
    return result;
  }
  result = CountTableRows(&connection);
  connection.Close();
  return result;
}

}  // namespace data_importer
