#ifndef LOGGING_LOGGING_H_
#define LOGGING_LOGGING_H_

#include <sstream>
#include <string>

// The player's logging library. A message has a level (0 progress and counts,
// 3 failures, 4 assertions), the source file and line, and a wide text
// stream. It is built only when the minimum level allows it:
//
//   VLOG_AT(0) << L"Size of " << name << L" is {" << count << L"}.";
//
// Messages are appended, one line each, to "DataImporter.log" in the current
// generation's data folder ($LOCALAPPDATA/VanTu8, see base/path_service.h),
// and also to standard error when VANTU_LOG_STDERR is set. The minimum level
// comes from VANTU_LOG_LEVEL (default 0). Logging never fails the caller: a
// log file that cannot be written is skipped.

namespace logging {

enum LogLevel : int {
  LOG_PROGRESS = 0,
  LOG_FAILURE = 3,
  LOG_ASSERT = 4,
};

// The minimum level currently in force (read from the environment).
int GetMinLogLevel();
bool ShouldLog(int level);

// Name of the log file in the data folder.
inline constexpr wchar_t kLogFileName[] = L"DataImporter.log";

class LogMessage {
 public:
  LogMessage(const char* file, int line, int level);
  ~LogMessage();  // writes the message
  LogMessage(const LogMessage&) = delete;
  LogMessage& operator=(const LogMessage&) = delete;

  std::wostream& stream() { return stream_; }

 private:
  const char* file_;
  int line_;
  int level_;
  std::wostringstream stream_;
};

// Turns a log statement into nothing when its level is filtered out.
class LogMessageVoidify {
 public:
  void operator&(std::wostream&) {}
};

// Writes one already composed line (used by the debug-output channel).
void WriteLogLine(const char* file, int line, int level, const std::wstring& text);

}  // namespace logging

#define VLOG_AT(level)                              \
  !::logging::ShouldLog(level)                      \
      ? (void)0                                     \
      : ::logging::LogMessageVoidify() &            \
            ::logging::LogMessage(__FILE__, __LINE__, level).stream()

#endif  // LOGGING_LOGGING_H_
