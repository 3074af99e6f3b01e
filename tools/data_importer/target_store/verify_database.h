#ifndef TOOLS_DATA_IMPORTER_TARGET_STORE_VERIFY_DATABASE_H_
#define TOOLS_DATA_IMPORTER_TARGET_STORE_VERIFY_DATABASE_H_

#include <cstdint>
#include <map>
#include <string>

#include "base/file_path.h"

namespace sql {
class Connection;
}

namespace data_importer {

// What reading a finished database back gave: |ok| when it opened and every
// table could be counted; otherwise |error| says why (in English, for the
// log) and |row_counts| holds what was counted before the failure.
struct VerifiedDatabase {
  bool ok = false;
  std::string error;
  // Rows per table, by table name as stored in the schema.
  std::map<std::string, int64_t> row_counts;
};

// Opens the encrypted version-3 database at |path| with the version-3 key
// (never creating it), reads its schema and counts the rows of each of its
// tables. Never modifies the file. A missing file, a plain or foreign file,
// a wrong key or a table that cannot be read answers ok = false.
VerifiedDatabase VerifyEncryptedDatabase(const base::FilePath& path);

// The same schema read and counts over an open connection (plain or
// encrypted).
VerifiedDatabase CountTableRows(sql::Connection* connection);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_TARGET_STORE_VERIFY_DATABASE_H_
