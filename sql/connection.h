#ifndef SQL_CONNECTION_H_
#define SQL_CONNECTION_H_

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/file_path.h"
#include "sql/statement_id.h"

struct sqlite3;
struct sqlite3_stmt;

namespace sql {

// Appended to a database's path to name the sibling file that DbEncrypt
// exports into before renaming it over the database.
inline constexpr wchar_t kEncryptedSiblingSuffix[] = L".enc";
// Appended to a database's path to name its rollback journal.
inline constexpr wchar_t kJournalSuffix[] = L"-journal";

class StatementRef;

// One connection to an SQLite database file, over SQLCipher (page
// encryption). Nothing here throws: operations answer false, an invalid
// statement or a neutral value. A Connection is used by one thread at a time.
//
// Usage: set the page and cache size, then Open (plain file) or OpenWithKey
// (encrypted file); prepare statements with GetUniqueStatement or
// GetCachedStatement and run them through sql::Statement; Close, or let the
// destructor close.
class Connection {
 public:
  Connection();
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // Settings applied by the next Open/OpenWithKey (0 keeps SQLite's default).
  // The page size only matters for a new database file (or a VACUUM).
  void set_page_size(int page_size) { m_page_size = page_size; }
  void set_cache_size(int cache_size) { m_cache_size = cache_size; }

  // Opens (creating when missing) the plain database file at |path|. The
  // file is found case-insensitively when it exists. False when the file
  // cannot be opened or is not a database; the connection is then closed.
  [[nodiscard]] bool Open(const base::FilePath& path);

  // Opens an encrypted database with |key| as the SQLCipher passphrase,
  // exactly as "PRAGMA key = '<key>'" gives it, in the version-3 file format
  // (the cipher parameters of the SQLCipher 3.x line, set explicitly, so
  // that a later library reads the same files). The key is checked by
  // reading the schema: a wrong key, or a plain file, answers false and
  // leaves the connection closed.
  // |create_if_missing| false refuses a file that does not exist.
  [[nodiscard]] bool OpenWithKey(const base::FilePath& path,
                                 const std::wstring& key,
                                 bool create_if_missing = false);

  // Opens the plain database file at |path| for reading only, as an
  // immutable file: the engine writes nothing, takes no lock, creates no
  // journal or "-shm" file and leaves a journal it finds alone (so a hot
  // journal is not rolled back: the file is read as it lies). Page and cache
  // size are not applied, since they would write nothing anyway. False when
  // the file is missing or is not a database.
  [[nodiscard]] bool OpenReadOnly(const base::FilePath& path);

  // Finalises every statement and closes the database. Safe to call twice.
  void Close();
  bool is_open() const { return m_db != nullptr; }
  const base::FilePath& path() const { return m_path; }

  // Runs one or more statements that return no rows. False on any error.
  [[nodiscard]] bool Execute(const char* sql);

  [[nodiscard]] bool DoesTableExist(const char* table_name) const;
  [[nodiscard]] bool DoesColumnExist(const char* table_name, const char* column_name) const;

  // ATTACH DATABASE '<path>' AS <alias>. The attached file is read with the
  // key the main database was opened with: plain beside a plain database,
  // encrypted with the same key beside an encrypted one.
  [[nodiscard]] bool AttachDatabase(const base::FilePath& path, const char* alias);
  [[nodiscard]] bool DetachDatabase(const char* alias);

  // Transactions nest: only the outermost Begin and Commit reach SQLite.
  // A rollback at any depth rolls back the whole transaction.
  [[nodiscard]] bool BeginTransaction();
  [[nodiscard]] bool CommitTransaction();
  void RollbackTransaction();
  int transaction_nesting() const { return m_transaction_nesting; }

  // Turns the open plain database into one encrypted with |key| in place and
  // leaves the connection open on it: the content is exported into a sibling
  // file "<path>.enc" (inside one transaction), the connection closed, the
  // sibling renamed over the file and reopened with the key. The result is
  // written in the version-3 file format whatever the library's defaults,
  // and opens with a 3.x sqlcipher tool and "PRAGMA key = '<key>'" alone.
  // False when the database is not open, the export or the rename fails; the
  // original file is then unchanged (and stays open when it can be reopened).
  // A process killed at any point leaves the file either plain and untouched
  // or finished and encrypted.
  [[nodiscard]] bool DbEncrypt(const std::wstring& key);

  // A new prepared statement, finalised when its last Statement goes.
  std::shared_ptr<StatementRef> GetUniqueStatement(const char* sql);
  // A statement kept for reuse under |id| and reset before it is handed out
  // again. Its text must be the same at every use of |id|.
  std::shared_ptr<StatementRef> GetCachedStatement(const StatementID& id, const char* sql);

  // SQLite's result code and message of the last failed call.
  [[nodiscard]] int GetErrorCode() const;
  const char* GetErrorMessage() const;

  sqlite3* db() const { return m_db; }

 private:
  [[nodiscard]] bool OpenInternal(const base::FilePath& path,
                                  const std::string* key,
                                  bool create_if_missing);
  [[nodiscard]] bool ApplySettings();
  // Sets the cipher parameters of the version-3 format on database |schema|
  // ("main" or an attached alias), before its first page is read.
  [[nodiscard]] bool PinCipherFormat(const char* schema);

  sqlite3* m_db = nullptr;
  base::FilePath m_path;
  std::string m_key;  // the key of an encrypted database, UTF-8
  int m_page_size = 0;
  int m_cache_size = 0;
  int m_transaction_nesting = 0;
  bool m_needs_rollback = false;
  std::map<StatementID, std::shared_ptr<StatementRef>> m_statement_cache;
  // Every statement handed out, so that Close can finalise them first.
  std::vector<std::weak_ptr<StatementRef>> m_open_statements;
};

// A prepared statement shared by Statement objects; invalid when preparing
// failed or its connection closed.
class StatementRef {
 public:
  StatementRef(Connection* connection, sqlite3_stmt* stmt);
  ~StatementRef();
  StatementRef(const StatementRef&) = delete;
  StatementRef& operator=(const StatementRef&) = delete;

  bool is_valid() const { return m_stmt != nullptr; }
  sqlite3_stmt* stmt() const { return m_stmt; }
  Connection* connection() const { return m_connection; }
  // Finalises the statement (the connection is closing).
  void Close();

 private:
  Connection* m_connection;
  sqlite3_stmt* m_stmt;
};

}  // namespace sql

#endif  // SQL_CONNECTION_H_
