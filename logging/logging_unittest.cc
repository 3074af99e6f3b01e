#include "logging/logging.h"

#include <gtest/gtest.h>

#include <string>

#include "base/file_util.h"
#include "testing/test_support.h"

namespace logging {
namespace {

std::string Read(const base::FilePath& file) {
  std::string text;
  EXPECT_TRUE(base::ReadFileToString(file, &text));
  return text;
}

// Nothing is written before a run starts logging; inside the scope every
// line is in the file as soon as it is logged (flushed), and the file stays
// open: a line logged after the file was moved away lands in the moved file.
TEST(LoggingTest, FileNamedAtStartStaysOpenAndIsFlushed) {
  testing_support::ScopedTempDir dir;
  base::FilePath file = dir.path().Append(L"data").Append(L"run.log");
  EXPECT_FALSE(ShouldLog(LOG_ASSERT));
  VLOG_AT(LOG_ASSERT) << L"before";
  {
    ScopedLogging logging({file, LOG_PROGRESS, false});
    VLOG_AT(LOG_PROGRESS) << L"first {" << 1 << L"}";
    EXPECT_NE(std::string::npos, Read(file).find("] first {1}\n"));
    base::FilePath moved = dir.path().Append(L"moved.log");
    ASSERT_TRUE(base::ReplaceFile(file, moved));
    VLOG_AT(LOG_FAILURE) << L"second";
    EXPECT_FALSE(base::PathExists(file));
    EXPECT_NE(std::string::npos, Read(moved).find("][3][logging_unittest.cc("));
    EXPECT_NE(std::string::npos, Read(moved).find("] second\n"));
  }
  EXPECT_FALSE(ShouldLog(LOG_ASSERT));
  VLOG_AT(LOG_ASSERT) << L"after";
  EXPECT_FALSE(base::PathExists(file));
  EXPECT_EQ(std::string::npos, Read(dir.path().Append(L"moved.log")).find("before"));
}

// The level and the stderr switch are read once, when the run starts: a
// change of the environment during the run changes nothing.
TEST(LoggingTest, SettingsReadOnceAtStart) {
  testing_support::ScopedEnv env;
  env.Set("VANTU_LOG_LEVEL", "3");
  env.Set("VANTU_LOG_STDERR", "1");
  LogSettings settings = LogSettingsFromEnvironment(base::FilePath());
  EXPECT_EQ(3, settings.min_level);
  EXPECT_TRUE(settings.to_stderr);

  ScopedLogging logging(settings);
  env.Set("VANTU_LOG_LEVEL", "0");
  env.Set("VANTU_LOG_STDERR", std::nullopt);
  EXPECT_FALSE(ShouldLog(LOG_PROGRESS));
  EXPECT_TRUE(ShouldLog(LOG_FAILURE));
  testing::internal::CaptureStderr();
  VLOG_AT(LOG_PROGRESS) << L"filtered";
  VLOG_AT(LOG_FAILURE) << L"shown";
  std::string err = testing::internal::GetCapturedStderr();
  EXPECT_EQ(std::string::npos, err.find("filtered"));
  EXPECT_NE(std::string::npos, err.find("] shown\n"));

  env.Set("VANTU_LOG_LEVEL", "not a number");
  EXPECT_EQ(LOG_PROGRESS, LogSettingsFromEnvironment(base::FilePath()).min_level);
  EXPECT_FALSE(LogSettingsFromEnvironment(base::FilePath()).to_stderr);
}

// Scopes nest: the inner one writes its own file, and ending it puts the
// outer one back.
TEST(LoggingTest, NestedScopes) {
  testing_support::ScopedTempDir dir;
  base::FilePath outer_file = dir.path().Append(L"outer.log");
  base::FilePath inner_file = dir.path().Append(L"inner.log");
  ScopedLogging outer({outer_file, LOG_FAILURE, false});
  {
    ScopedLogging inner({inner_file, LOG_PROGRESS, false});
    VLOG_AT(LOG_PROGRESS) << L"inner line";
  }
  EXPECT_FALSE(ShouldLog(LOG_PROGRESS));
  VLOG_AT(LOG_FAILURE) << L"outer line";
  EXPECT_NE(std::string::npos, Read(inner_file).find("inner line"));
  EXPECT_EQ(std::string::npos, Read(inner_file).find("outer line"));
  EXPECT_NE(std::string::npos, Read(outer_file).find("outer line"));
}

}  // namespace
}  // namespace logging
