#ifndef TESTING_IMPORTER_TEST_UTIL_H_
#define TESTING_IMPORTER_TEST_UTIL_H_

#include <cstdint>
#include <string>
#include <vector>

#include "base/file_path.h"
#include "base/json_file.h"
#include "logging/logging.h"
#include "testing/fixtures/generation6_fixture.h"
#include "testing/fixtures/generation7_fixture.h"
#include "testing/test_support.h"
#include "tools/data_importer/environment/run_context.h"

namespace sql {
class Connection;
}

namespace data_importer {

// A user profile of its own for one test: a temporary folder holding the
// per-user ("local") and roaming application-data folders and a registry
// file, with the environment pointing at them for the test's life. Its log
// lines go to the profile's data folder, as a run's would.
class TestProfile {
 public:
  TestProfile();

  base::FilePath local() const { return root().Append(L"local"); }
  base::FilePath roaming() const { return root().Append(L"roaming"); }
  base::FilePath data_folder() const { return local().Append(L"VanTu8"); }
  base::FilePath ini() const { return data_folder().Append(L"Vantu.ini"); }
  const base::FilePath& root() const { return m_dir.path(); }

  // Writes the registry file with one string value under
  // HKEY_CURRENT_USER\|key|.
  void SetRegistryValue(const std::wstring& key,
                        const std::wstring& name,
                        const std::wstring& value);

  // A value of section "DBCheck", "#missing#" when the key is absent.
  std::wstring DBCheck(const std::wstring& key) const;
  // A value of section "Settings", "#missing#" when the key is absent.
  std::wstring Setting(const std::wstring& key) const;

  // Creates an empty file (and its folder).
  static void Touch(const base::FilePath& path);

 private:
  testing_support::ScopedTempDir m_dir;
  testing_support::ScopedEnv m_env;
  std::wstring m_registry;
  logging::ScopedLogging m_logging{{data_folder().Append(L"DataImporter.log"), 0, false}};
};

// The run context the test's environment gives (a TestProfile's folders
// and registry, any drives the test has set), with |source_folder| as the
// player's switch "i"; its data folder is made, as the entry point makes it
// at the start of a run.
RunContext TestRunContext(const base::FilePath& source_folder = base::FilePath());

// The data folder of TestRunContext(), made when missing.
base::FilePath TestDataFolder();

class ProgressRecord;

// Watches |record| and keeps every "ImportProgress" value it writes, each as
// the profile's "DBCheck" section holds it at that moment (what the player
// would read while it waits); a value that is not a number is kept as -1.
class ProgressTrace {
 public:
  ProgressTrace(ProgressRecord* record, const TestProfile& profile);
  ~ProgressTrace();

  const std::vector<int>& seen() const { return m_seen; }

 private:
  ProgressRecord* m_record;
  std::vector<int> m_seen;
};

// The "ImportProgress" values a reader writes from |start| when it advances
// by |deltas| in turn: each sum kept at or below 49, an advance that cannot
// move it writes nothing.
std::vector<int> ExpectedReadProgress(int start, const std::vector<int>& deltas);

// The ten single steps of a long reader that walks ten or more rows.
std::vector<int> Tenths();

// Runs |query| and answers each row as its columns' text joined by "|"
// (a NULL reads as empty).
std::vector<std::string> QueryRows(sql::Connection* db, const std::string& query);

// One line per file directly in |folder|: its name and the MD5 of its bytes,
// to tell whether a folder was left exactly as it was.
std::string FolderFingerprint(const base::FilePath& folder);

// For each of |files| and the journal, write-ahead log and shared-memory
// files a database engine would put beside it: whether it exists, the MD5 of
// its bytes and its permission bits. Equal answers before and after a run
// mean the run wrote, created and changed the attributes of none of them.
std::string SourceFilesState(const std::vector<base::FilePath>& files);

// Takes the write permission off |files| (as a read-only attribute does).
void MakeReadOnly(const std::vector<base::FilePath>& files);

// The CREATE TABLE text SQLite stored for |table|, empty when absent.
std::string StoredSchema(sql::Connection* db, const std::string& table);

// The names of the tables of |db|, sorted.
std::vector<std::string> TableNames(sql::Connection* db);

// Every row of |table| in row order, each value with its storage class:
// "NULL", "i:<integer>", "r:<real in hexadecimal, exact>", "t:'<text>'" or
// "b:<length>", joined by "|". Two tables hold the same rows exactly when
// their answers are equal.
std::vector<std::string> TypedRows(sql::Connection* db, const std::string& table);

// Writes the plain copy of the encrypted database |encrypted| (opened with
// |key|) to |plain|; false when either cannot be opened.
bool ExportPlainDatabase(const base::FilePath& encrypted,
                         const std::wstring& key,
                         const base::FilePath& plain);

// What the stock sqlcipher tool prints for |query| on the database at
// |path|, after "PRAGMA key" with |key| when |key| is not empty (error
// messages included).
std::string SqlcipherOutput(const base::FilePath& path,
                            const std::wstring& key,
                            const std::string& query);

// The report of the last run on |data_folder|, the newest of its history
// (a failed expectation and a null value when it cannot be read).
base::Value ReadImportReport(const base::FilePath& data_folder);

// The first entry of the array |list| whose |key| is |value| (and, when
// |key2| is given, whose |key2| is |value2|); null when there is none.
const base::Value* FindEntry(const base::Value& list,
                             const std::string& key,
                             const std::string& value,
                             const std::string& key2 = "",
                             const std::string& value2 = "");

// Expects every number of an import report (ImportReport::ToJson) to add
// up, against the finished databases in |data_folder|:
//  - per pair, read = written + dropped, and the reasons sum to dropped;
//  - every record came from a source table a reader counted (no pair from
//    "(not recorded)");
//  - per source table, the rows read, less those merged into a record of
//    another table, are all found again in the pairs of each target family
//    it feeds (DownloadHistoryItem takes only the finished downloads of a
//    source that also feeds DownloadItem, so it is left out there), and no
//    more records were made than rows read;
//  - the reasons' counts sum to the pairs' drops;
//  - each target table holds, in the finished files, what its writers sent.
void ExpectReportReconciles(const base::Value& report, const base::FilePath& data_folder);

// The number of rows of |table| in |db|; -1 when it cannot be counted.
int64_t TableRowCount(sql::Connection* db, const std::string& table);

#if !defined(_WIN32)
// Runs DataImporterMain once in a child process and answers the processor
// time (user and system) the child took, in microseconds, for kill tests
// that stop later runs at random points within it; -1 (and a failed
// expectation) when the child did not exit normally.
long ProcessorMicrosOfWholeRun();
#endif

// A generation-6 or generation-7 library item "D:\Music\<title>.mp3" with
// the hash NumberedHash(id, hash_fill), so that each test's songs have
// hashes of their own.
V6Music NumberedV6Music(int id, const std::wstring& title, wchar_t hash_fill, int mv_id = 0);
V7Music NumberedV7Music(int id, const std::wstring& title, wchar_t hash_fill);

}  // namespace data_importer

#endif  // TESTING_IMPORTER_TEST_UTIL_H_
