#include "common/exception_report/crash_handler.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include <gtest/gtest.h>

#include "base/file_util.h"
#include "testing/test_support.h"

namespace exception_report {
namespace {

std::string ReadOnlyCrashRecord(const base::FilePath& folder) {
  base::FileEnumerator records(folder, L"crash-*.txt");
  base::FilePath first = records.Next();
  EXPECT_FALSE(first.empty()) << "no crash record";
  EXPECT_TRUE(records.Next().empty()) << "more than one crash record";
  std::string text;
  EXPECT_TRUE(base::ReadFileToString(first, &text));
  return text;
}

// The record names the build id of the program holding the handler (this
// test program, linked statically with it), as the linker wrote it, and lists
// the program in its load map under its real path with that id.
void ExpectBuildIdAndLoadMap(const std::string& record) {
  size_t at = record.find("build id: ");
  ASSERT_NE(std::string::npos, at) << record;
  std::string id = record.substr(at + 10, record.find('\n', at) - at - 10);
  ASSERT_FALSE(id.empty());
  EXPECT_EQ(std::string::npos, id.find_first_not_of("0123456789abcdef")) << id;

  char exe[4096];
  ssize_t length = readlink("/proc/self/exe", exe, sizeof(exe) - 1);
  ASSERT_GT(length, 0);
  std::string program(exe, static_cast<size_t>(length));
  std::string notes;
  ASSERT_EQ(0, testing_support::RunCommand("readelf -n '" + program + "'", "", &notes));
  EXPECT_NE(std::string::npos, notes.find("Build ID: " + id + "\n")) << notes;

  size_t map = record.find("modules (load address, path, build id):\n");
  size_t backtrace = record.find("backtrace:\n");
  ASSERT_NE(std::string::npos, map);
  ASSERT_LT(map, backtrace);
  EXPECT_NE(std::string::npos,
            record.substr(map, backtrace - map).find(" " + program + " " + id + "\n"))
      << record;
}

void ChainedHandler(int) {
  _exit(42);
}

// A fault under the handler writes one record and then reaches the handler
// that was installed before; without an earlier handler the process dies
// of the signal as it would have.
TEST(CrashHandlerTest, FaultWritesRecordAndKeepsItsCourse) {
  testing_support::ScopedTempDir temp;
  base::FilePath crash_folder = temp.path().Append(L"data").Append(L"crash");
  EXPECT_TRUE(base::CreateDirectory(temp.path().Append(L"data")));

  pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    // The default disposition is the course the signal takes afterwards
    // (a sanitizer would otherwise have its own handler installed).
    signal(SIGSEGV, SIG_DFL);
    ScopedCrashHandler handler(base::FilePath(L"/opt/player"), crash_folder);
    raise(SIGSEGV);
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(SIGSEGV, WTERMSIG(status));
  std::string record = ReadOnlyCrashRecord(crash_folder);
  EXPECT_NE(std::string::npos, record.find("signal: 11 (SIGSEGV)"));
  EXPECT_NE(std::string::npos, record.find("executable folder: /opt/player"));
  EXPECT_NE(std::string::npos, record.find("backtrace:\n"));
  EXPECT_NE(std::string::npos, record.find("time: 20"));
  ExpectBuildIdAndLoadMap(record);

  base::FilePath chained_folder = temp.path().Append(L"chained");
  child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    signal(SIGFPE, ChainedHandler);
    ScopedCrashHandler handler(base::FilePath(L"/opt/player"), chained_folder);
    raise(SIGFPE);
    _exit(0);
  }
  waitpid(child, &status, 0);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(42, WEXITSTATUS(status));
  EXPECT_NE(std::string::npos, ReadOnlyCrashRecord(chained_folder).find("(SIGFPE)"));
}

// The library lives in someone else's process: leaving the scope puts the
// host's handlers back, and a nested handler changes nothing.
TEST(CrashHandlerTest, RestoresPreviousHandlers) {
  struct sigaction before = {};
  signal(SIGBUS, ChainedHandler);
  {
    ScopedCrashHandler outer(base::FilePath(L"/x"), base::FilePath(L"/tmp/none"));
    struct sigaction during = {};
    sigaction(SIGBUS, nullptr, &during);
    EXPECT_NE(reinterpret_cast<void*>(ChainedHandler), reinterpret_cast<void*>(during.sa_handler));
    { ScopedCrashHandler nested(base::FilePath(L"/y"), base::FilePath(L"/tmp/none")); }
    struct sigaction after_nested = {};
    sigaction(SIGBUS, nullptr, &after_nested);
    EXPECT_EQ(reinterpret_cast<void*>(during.sa_sigaction),
              reinterpret_cast<void*>(after_nested.sa_sigaction));
  }
  sigaction(SIGBUS, nullptr, &before);
  EXPECT_EQ(reinterpret_cast<void*>(ChainedHandler), reinterpret_cast<void*>(before.sa_handler));
  signal(SIGBUS, SIG_DFL);
}

}  // namespace
}  // namespace exception_report
