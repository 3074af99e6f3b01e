#include "sql/connection.h"

#include <sqlite3.h>

#include <string>

#include "base/file_util.h"
#include "base/utf_string_conversions.h"
#include "sql/statement.h"

namespace sql {

namespace {

// A single-quoted SQL literal of |text| ("'" doubled).
std::string Quote(const std::string& text) {
  std::string out = "'";
  for (char c : text) {
    out.push_back(c);
    if (c == '\'')
      out.push_back('\'');
  }
  out.push_back('\'');
  return out;
}

// The first text column of the first row of |sql|, empty when none.
std::string QueryText(sqlite3* db, const char* sql) {
  std::string text;
  sqlite3_stmt* stmt = nullptr;
  if (sqlite3_prepare_v2(db, sql, -1, &stmt, nullptr) == SQLITE_OK &&
      sqlite3_step(stmt) == SQLITE_ROW) {
    if (const unsigned char* value = sqlite3_column_text(stmt, 0))
      text = reinterpret_cast<const char*>(value);
  }
  sqlite3_finalize(stmt);
  return text;
}

}  // namespace

StatementRef::StatementRef(Connection* connection, sqlite3_stmt* stmt)
    : m_connection(connection), m_stmt(stmt) {}

StatementRef::~StatementRef() {
  Close();
}

void StatementRef::Close() {
  if (m_stmt) {
    sqlite3_finalize(m_stmt);
    m_stmt = nullptr;
  }
  m_connection = nullptr;
}

Connection::Connection() = default;

Connection::~Connection() {
  Close();
}

bool Connection::Open(const base::FilePath& path) {
  return OpenInternal(path, nullptr, true);
}

bool Connection::OpenWithKey(const base::FilePath& path,
                             const std::wstring& key,
                             bool create_if_missing) {
  std::string utf8_key = base::WideToUTF8(key);
  return OpenInternal(path, &utf8_key, create_if_missing);
}

bool Connection::OpenReadOnly(const base::FilePath& path) {
  Close();
  base::FilePath resolved = base::ResolvePathCase(path);
  if (!base::PathExists(resolved))
    return false;
  // "immutable=1" is only understood in a URI; the characters a URI path
  // gives a meaning are escaped.
  std::string uri = "file:";
  for (unsigned char c : resolved.AsUTF8Unsafe()) {
    if (c == '%' || c == '?' || c == '#') {
      static const char kHex[] = "0123456789ABCDEF";
      uri += '%';
      uri += kHex[c >> 4];
      uri += kHex[c & 15];
    } else {
      uri += static_cast<char>(c);
    }
  }
  uri += "?mode=ro&immutable=1";
  sqlite3* db = nullptr;
  int rc = sqlite3_open_v2(uri.c_str(), &db,
                           SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_FULLMUTEX, nullptr);
  if (rc != SQLITE_OK) {
    sqlite3_close(db);
    return false;
  }
  m_db = db;
  m_path = resolved;
  m_key.clear();
  if (sqlite3_exec(m_db, "SELECT count(*) FROM sqlite_master", nullptr, nullptr, nullptr) !=
      SQLITE_OK) {
    Close();
    return false;
  }
  return true;
}

bool Connection::OpenInternal(const base::FilePath& path,
                              const std::string* key,
                              bool create_if_missing) {
  Close();
  base::FilePath resolved = base::ResolvePathCase(path);
  if (!create_if_missing && !base::PathExists(resolved))
    return false;
  int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_FULLMUTEX;
  if (create_if_missing)
    flags |= SQLITE_OPEN_CREATE;
  sqlite3* db = nullptr;
  int rc = sqlite3_open_v2(resolved.AsUTF8Unsafe().c_str(), &db, flags, nullptr);
  if (rc != SQLITE_OK) {
    sqlite3_close(db);
    return false;
  }
  m_db = db;
  m_path = resolved;
  m_key = key ? *key : std::string();
  if (key) {
    // The passphrase exactly as "PRAGMA key = '<key>'" gives it.
    if (!Execute(("PRAGMA key = " + Quote(*key)).c_str()) || !PinCipherFormat("main")) {
      Close();
      return false;
    }
  }
  if (!ApplySettings()) {
    Close();
    return false;
  }
  // Reading the schema proves the file is a database and the key is right.
  if (sqlite3_exec(m_db, "SELECT count(*) FROM sqlite_master", nullptr, nullptr, nullptr) !=
      SQLITE_OK) {
    Close();
    return false;
  }
  return true;
}

bool Connection::PinCipherFormat(const char* schema) {
  // The version-3 files use the parameters that were the library's defaults
  // on its 3.x line: 1024-byte pages, 64000 rounds of PBKDF2-HMAC-SHA1 for
  // the key, an HMAC-SHA1 per page. Later lines changed the defaults, so they
  // are set here rather than assumed; from 4.0 on one compatibility setting
  // stands for all of them. Files keep opening with the passphrase alone in
  // a 3.x tool.
  std::string version = QueryText(m_db, "PRAGMA cipher_version");
  std::string prefix = std::string("PRAGMA ") + schema + ".";
  if (version.empty())
    return false;  // no page encryption in this engine
  if (version[0] == '3' && version.size() > 1 && version[1] == '.') {
    return Execute((prefix + "cipher_page_size = 1024; " + prefix + "kdf_iter = 64000; " + prefix +
                    "cipher_use_hmac = ON;")
                       .c_str());
  }
  return Execute((prefix + "cipher_compatibility = 3").c_str());
}

bool Connection::ApplySettings() {
  if (m_page_size > 0 && !Execute(("PRAGMA page_size=" + std::to_string(m_page_size)).c_str()))
    return false;
  if (m_cache_size > 0 && !Execute(("PRAGMA cache_size=" + std::to_string(m_cache_size)).c_str()))
    return false;
  return true;
}

void Connection::Close() {
  for (auto& [id, ref] : m_statement_cache)
    ref->Close();
  m_statement_cache.clear();
  m_transaction_nesting = 0;
  m_needs_rollback = false;
  if (m_db) {
    // Statements still held by callers are finalised here; their Statement
    // objects turn invalid.
    for (auto& weak : m_open_statements) {
      if (auto ref = weak.lock())
        ref->Close();
    }
    m_open_statements.clear();
    sqlite3_close(m_db);
    m_db = nullptr;
  }
  m_key.clear();
}

bool Connection::Execute(const char* sql) {
  if (!m_db)
    return false;
  return sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool Connection::DoesTableExist(const char* table_name) const {
  if (!m_db)
    return false;
  sqlite3_stmt* stmt = nullptr;
  if (sqlite3_prepare_v2(m_db,
                         "SELECT name FROM sqlite_master WHERE type='table' AND name=? "
                         "COLLATE NOCASE",
                         -1, &stmt, nullptr) != SQLITE_OK)
    return false;
  sqlite3_bind_text(stmt, 1, table_name, -1, SQLITE_TRANSIENT);
  bool exists = sqlite3_step(stmt) == SQLITE_ROW;
  sqlite3_finalize(stmt);
  return exists;
}

bool Connection::DoesColumnExist(const char* table_name, const char* column_name) const {
  if (!m_db)
    return false;
  std::string sql = "PRAGMA TABLE_INFO(" + Quote(table_name) + ")";
  sqlite3_stmt* stmt = nullptr;
  if (sqlite3_prepare_v2(m_db, sql.c_str(), -1, &stmt, nullptr) != SQLITE_OK)
    return false;
  bool found = false;
  while (!found && sqlite3_step(stmt) == SQLITE_ROW) {
    const char* name = reinterpret_cast<const char*>(sqlite3_column_text(stmt, 1));
    found = name && sqlite3_stricmp(name, column_name) == 0;
  }
  sqlite3_finalize(stmt);
  return found;
}

bool Connection::AttachDatabase(const base::FilePath& path, const char* alias) {
  std::string sql =
      "ATTACH DATABASE " + Quote(base::ResolvePathCase(path).AsUTF8Unsafe()) + " AS " + alias;
  // The engine would give an attached file the main database's key only
  // until that key has been used once; naming it keeps the promise always.
  // The cipher format is not pinned for the attached file: on the 3.x line
  // an ATTACH with a key already uses the version-3 parameters, and setting
  // them again afterwards drops the attached file's key material.
  if (!m_key.empty())
    sql += " KEY " + Quote(m_key);
  return Execute(sql.c_str());
}

bool Connection::DetachDatabase(const char* alias) {
  return Execute((std::string("DETACH DATABASE ") + alias).c_str());
}

bool Connection::BeginTransaction() {
  if (!m_db)
    return false;
  if (m_transaction_nesting == 0) {
    if (!Execute("BEGIN TRANSACTION"))
      return false;
    m_needs_rollback = false;
  }
  ++m_transaction_nesting;
  return true;
}

bool Connection::CommitTransaction() {
  if (!m_db || m_transaction_nesting == 0)
    return false;
  if (--m_transaction_nesting > 0)
    return !m_needs_rollback;
  if (m_needs_rollback) {
    // The commit fails either way; a failed rollback adds nothing to report.
    (void)Execute("ROLLBACK");
    m_needs_rollback = false;
    return false;
  }
  return Execute("COMMIT");
}

void Connection::RollbackTransaction() {
  if (!m_db || m_transaction_nesting == 0)
    return;
  if (--m_transaction_nesting > 0) {
    m_needs_rollback = true;
    return;
  }
  // Rolling back answers nothing: there is no one to tell of a failure.
  (void)Execute("ROLLBACK");
  m_needs_rollback = false;
}

bool Connection::DbEncrypt(const std::wstring& key) {
  if (!m_db || m_transaction_nesting > 0)
    return false;
  // The file at |path| is never written here: the encrypted content goes to
  // a sibling, which one atomic rename puts in place once its export has
  // been committed (and so synced). Whenever the process dies, |path| holds
  // either the untouched plain database or the finished encrypted one. A
  // killed earlier attempt may have left the sibling and its rollback
  // journal; both are removed first so the export starts from nothing.
  base::FilePath path = m_path;
  base::FilePath encrypted(path.value() + kEncryptedSiblingSuffix);
  base::FilePath encrypted_journal(encrypted.value() + kJournalSuffix);
  // Leftovers of an earlier attempt, if any; a missing file is fine.
  (void)base::DeleteFile(encrypted_journal);
  (void)base::DeleteFile(encrypted);
  std::string utf8_key = base::WideToUTF8(key);
  std::string attach = "ATTACH DATABASE " + Quote(encrypted.AsUTF8Unsafe()) +
                       " AS vantu_encrypted KEY " + Quote(utf8_key);
  if (!Execute(attach.c_str())) {
    // Clean-up after the failure answered below.
    (void)base::DeleteFile(encrypted);
    return false;
  }
  if (!PinCipherFormat("vantu_encrypted")) {
    // Clean-up after the failure answered below.
    (void)Execute("DETACH DATABASE vantu_encrypted");
    (void)base::DeleteFile(encrypted);
    return false;
  }
  // One transaction around the export saves a commit per table.
  bool exported = Execute("BEGIN") && Execute("SELECT sqlcipher_export('vantu_encrypted')") &&
                  Execute("COMMIT");
  if (!exported)
    // The failed export is answered below; the rollback is clean-up.
    (void)Execute("ROLLBACK");
  // Clean-up: the export's result alone decides the answer.
  (void)Execute("DETACH DATABASE vantu_encrypted");
  if (!exported) {
    // Clean-up after the failure answered below.
    (void)base::DeleteFile(encrypted);
    return false;
  }
  Close();
  if (!base::ReplaceFile(encrypted, path)) {
    // Clean-up after the failure answered below.
    (void)base::DeleteFile(encrypted);
    // Reopened so the caller keeps a usable connection if it can; the
    // encryption's failure is the answer.
    (void)Open(path);
    return false;
  }
  return OpenWithKey(path, key, false);
}

std::shared_ptr<StatementRef> Connection::GetUniqueStatement(const char* sql) {
  sqlite3_stmt* stmt = nullptr;
  if (m_db && sqlite3_prepare_v2(m_db, sql, -1, &stmt, nullptr) != SQLITE_OK) {
    sqlite3_finalize(stmt);
    stmt = nullptr;
  }
  auto ref = std::make_shared<StatementRef>(stmt ? this : nullptr, stmt);
  if (stmt) {
    if (m_open_statements.size() >= 64) {
      std::erase_if(m_open_statements, [](const auto& weak) { return weak.expired(); });
    }
    m_open_statements.push_back(ref);
  }
  return ref;
}

std::shared_ptr<StatementRef> Connection::GetCachedStatement(const StatementID& id,
                                                             const char* sql) {
  auto it = m_statement_cache.find(id);
  if (it != m_statement_cache.end() && it->second->is_valid()) {
    sqlite3_reset(it->second->stmt());
    sqlite3_clear_bindings(it->second->stmt());
    return it->second;
  }
  std::shared_ptr<StatementRef> ref = GetUniqueStatement(sql);
  if (ref->is_valid())
    m_statement_cache[id] = ref;
  return ref;
}

int Connection::GetErrorCode() const {
  return m_db ? sqlite3_errcode(m_db) : SQLITE_MISUSE;
}

const char* Connection::GetErrorMessage() const {
  return m_db ? sqlite3_errmsg(m_db) : "database is not open";
}

}  // namespace sql
