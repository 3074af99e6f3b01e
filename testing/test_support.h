#ifndef TESTING_TEST_SUPPORT_H_
#define TESTING_TEST_SUPPORT_H_

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "base/file_path.h"
#include "base/status.h"

namespace testing_support {

// A fresh folder under the system's temporary folder, deleted with
// everything in it when the object goes.
class ScopedTempDir {
 public:
  ScopedTempDir();
  ~ScopedTempDir();
  ScopedTempDir(const ScopedTempDir&) = delete;
  ScopedTempDir& operator=(const ScopedTempDir&) = delete;

  const base::FilePath& path() const { return m_path; }

 private:
  base::FilePath m_path;
};

// Sets (or with std::nullopt unsets) environment variables for the life of
// the object, restoring the earlier values afterwards.
class ScopedEnv {
 public:
  ScopedEnv() = default;
  ~ScopedEnv();
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;

  void Set(const std::string& name, const std::optional<std::string>& value);

 private:
  std::map<std::string, std::optional<std::string>> m_saved;
};

// Whether this Windows program runs under Wine rather than Windows (false on
// other systems). Tests of calls that Wine does not implement skip there.
bool RunningUnderWine();

// |path| written with this system's separator: the form in which the
// importer gives back folders it has resolved.
std::wstring NativePath(std::wstring path);

// The reason a test of a binary registry hive skips under Wine.
inline constexpr char kWineHiveSkip[] =
    "Wine's RegLoadAppKeyW is a stub that answers an empty key for any file, "
    "so binary hives are read only on Windows";

// The id of a child process that has ended (and been waited for): a process
// that no longer exists. -1 when no child could be started.
int GoneProcessId();

// Takes write access away from a file (read-only attribute on Windows).
void MakeReadOnly(const base::FilePath& path);

// Runs a shell command, feeding |input| on its standard input; returns its
// exit status and stores its standard output in |*output| when given.
int RunCommand(const std::string& command, const std::string& input, std::string* output);

// Reads or writes a whole file as bytes (test fixtures).
std::string ReadBytes(const base::FilePath& path);
void WriteBytes(const base::FilePath& path, const std::string& bytes);

// Damage done to a database file with 4096-byte pages, for tests of repair.
// Overwrites |length| bytes at |offset| of page |page| (counted from 1).
void DamageDatabasePage(const base::FilePath& path, int page, size_t offset, size_t length);
// Forgets the list of free pages in the file header: those pages are then
// never used, which the integrity check reports and one VACUUM repairs.
void ForgetFreePages(const base::FilePath& path);
// |text| as UTF-16 code units in little- or big-endian byte order, without a
// byte-order mark.
std::string UTF16Bytes(std::wstring_view text, bool big_endian);
// A 32-character song hash that names |n|: its digits, padded on the left
// with |fill| (sources of different tests can use different fills).
std::wstring NumberedHash(int n, wchar_t fill);

}  // namespace testing_support

// For ASSERT_TRUE(IsOk(...)) and EXPECT_FALSE(IsOk(...)): a failure prints
// the status's message.
inline ::testing::AssertionResult IsOk(const base::Status& status) {
  if (status.ok())
    return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure()
         << "not OK: " << std::string(status.message().begin(), status.message().end());
}

#endif  // TESTING_TEST_SUPPORT_H_
