#ifndef TOOLS_DATA_IMPORTER_DATABASE_HELPER_DATABASE_HELPER_H_
#define TOOLS_DATA_IMPORTER_DATABASE_HELPER_DATABASE_HELPER_H_

#include <memory>
#include <string>
#include <string_view>

#include "base/file_path.h"
#include "sql/connection.h"

namespace data_importer {

// The one way the importer opens a database file, source or target.
//
// A DatabaseHelper owns one sql::Connection (created with it, closed and
// destroyed with it) and at most one attached database. No operation throws
// or logs: each answers false or a neutral value and the caller logs with its
// own tag.
class DatabaseHelper {
 public:
  DatabaseHelper();
  ~DatabaseHelper();
  DatabaseHelper(const DatabaseHelper&) = delete;
  DatabaseHelper& operator=(const DatabaseHelper&) = delete;

  // Opens the plain database at |path| and makes sure it is sound:
  //  1. clears the file's read-only attribute (a missing file is no error:
  //     it will be created);
  //  2. page size 4096, cache size 64 pages, Connection::Open — false if the
  //     open fails;
  //  3. CheckIntegrity — true if it passes;
  //  4. otherwise exactly one "VACUUM" (its result ignored) and a second
  //     CheckIntegrity — true if it passes now;
  //  5. otherwise the connection is closed and the answer is false: the
  //     file is corrupt and must not be read.
  [[nodiscard]] bool OpenAndCheck(const base::FilePath& path);
  // Whether the last OpenAndCheck passed only after the "VACUUM" (the file
  // was damaged: rows of a damaged page may be gone).
  bool repaired() const { return m_repaired; }

  // Opens the plain database at |path| for reading only, as an immutable
  // file (sql::Connection::OpenReadOnly): no attribute is changed, nothing
  // is repaired, no journal or "-shm" file is made. For the user's own files,
  // which the importer never writes. No integrity check: follow with
  // CheckIntegrity.
  [[nodiscard]] bool OpenReadOnly(const base::FilePath& path);

  // Opens the encrypted database at |path| with |key|, after the same
  // attribute clearing and page and cache sizes as OpenAndCheck. A file that
  // does not exist is refused, never created: a keyed open is only ever
  // meant for a database some earlier run wrote. False when the file is
  // missing, the key is wrong or the file is plain; the connection is then
  // closed. No integrity check: follow with CheckOrRepair.
  [[nodiscard]] bool OpenWithKey(const base::FilePath& path, const std::wstring& key);

  // Steps 3 to 5 of OpenAndCheck on the database already open: true when it
  // passes the integrity check, at once or after one "VACUUM"; otherwise the
  // connection is closed and the answer is false.
  [[nodiscard]] bool CheckOrRepair();

  // Runs the cached "PRAGMA Integrity_Check" and passes only when its first
  // row reads "ok" (any letter case). False for an invalid statement, no row,
  // or a list of problems, and, without running the check, for a database
  // whose header claims more pages than its file holds.
  [[nodiscard]] bool CheckIntegrity();

  // Attaches the database at |path| under |alias|. Refused (false) when an
  // alias is already stored — even if that earlier attach failed — or when
  // |alias| is empty. The alias is stored before attaching and stays stored
  // when the attach fails.
  [[nodiscard]] bool Attach(const base::FilePath& path, const std::string& alias);

  // Copies table |table| of the attached database into the main one:
  // "CREATE TABLE <t> AS SELECT * FROM <alias>.<t>" when the main database
  // lacks the table (columns only: no keys, indexes or constraints come
  // along), else "INSERT INTO <t> SELECT * FROM <alias>.<t>"; " where " +
  // |where| appended when |where| is not empty. False when nothing is
  // attached or the statement fails.
  [[nodiscard]] bool CopyTable(const std::string& where, const std::string& table);

  void Close();

  // Replaces the connection by a new, unopened one; the old connection is
  // destroyed, which closes its database. Nothing stays attached.
  void ResetConnection();

  sql::Connection* connection() { return m_connection.get(); }
  const std::string& attached_alias() const { return m_attached_alias; }

 private:
  // Clears the file's attributes and sets the page and cache sizes.
  void PrepareOpen(const base::FilePath& path);
  // True when the open database's header claims more pages than its file
  // holds.
  bool ClaimsPagesBeyondFile();

  std::unique_ptr<sql::Connection> m_connection;
  std::string m_attached_alias;
  bool m_repaired = false;
};

// "Insert Into " + table + "(" + columns + ") values (" + values + ")": the
// lists come joined and quoted by the caller.
std::string BuildInsertStatement(const std::string& table,
                                 const std::string& columns,
                                 const std::string& values);
// The same text, written into |out| (emptied first): a caller inserting row
// after row keeps one buffer instead of a new string per row.
void BuildInsertStatement(std::string_view table,
                          std::string_view columns,
                          std::string_view values,
                          std::string* out);

// |name| as it can stand in a statement: unchanged when it is a plain
// identifier (letters, digits, "_"), else in double quotes. A list's table
// for a negative id, "GeneralList_-3", would otherwise read as a subtraction.
std::string SqlTableName(const std::string& name);

// SQL literal of a wide text: "'" + text with every "'" doubled + "'".
// No other character is escaped.
std::wstring EscapeSqlText(const std::wstring& text);

// The same literal appended to |out| in UTF-8, the form statements are
// executed in. A NUL character would end the statement text early, so it is
// left out; code units that are not valid Unicode become U+FFFD.
void AppendSqlTextLiteral(std::wstring_view text, std::string* out);

// The largest value of |key_column| in |table|, by "Select IfNull(Max(%s),
// %d) As MaxKeyID From %s" with the default 1. Answers 1 when the database is
// not open, the statement is invalid (a missing table) or yields no row; an
// empty table therefore also gives 1.
[[nodiscard]] int GetMaxKeyId(DatabaseHelper* helper,
                              const std::string& key_column,
                              const std::string& table);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_DATABASE_HELPER_DATABASE_HELPER_H_
