#ifndef LOGGING_LOGGING_H_
#define LOGGING_LOGGING_H_

#include <sstream>
#include <string>

#include "base/file_path.h"

// The player's logging library. A message has a level (0 progress and counts,
// 3 failures, 4 assertions), the source file and line, and a wide text
// stream. It is built only when the minimum level allows it:
//
//   VLOG_AT(0) << L"Size of " << name << L" is {" << count << L"}.";
//
// Nothing is logged until a run starts logging with a ScopedLogging: it
// names the log file (the caller decides where it lives), the minimum level
// and whether lines also go to standard error, all fixed for the scope. The
// file is opened at the first line, stays open for the scope and is flushed
// after every line, so a crash loses nothing already logged. Logging never
// fails the caller: a log file that cannot be opened or written is skipped.
// Lines may come from several threads; each is written whole.

namespace logging {

enum LogLevel : int {
  LOG_PROGRESS = 0,
  LOG_FAILURE = 3,
  LOG_ASSERT = 4,
};

// The scope in force (internal to the logging library).
struct LogState;

struct LogSettings {
  base::FilePath file;  // empty: no log file
  int min_level = LOG_PROGRESS;
  bool to_stderr = false;
};

// |file| with the level and the stderr switch read once from the
// environment: VANTU_LOG_LEVEL (default 0) and VANTU_LOG_STDERR (set: on).
LogSettings LogSettingsFromEnvironment(const base::FilePath& file);

// Logging as |settings| say for the life of the object. Scopes nest: the
// innermost one is in force, and ending it restores the one around it (or
// no logging at all).
class ScopedLogging {
 public:
  explicit ScopedLogging(const LogSettings& settings);
  ~ScopedLogging();
  ScopedLogging(const ScopedLogging&) = delete;
  ScopedLogging& operator=(const ScopedLogging&) = delete;

 private:
  LogState* m_previous;
  LogState* m_state;
};

// The minimum level in force; above every level when no scope is active.
int GetMinLogLevel();
bool ShouldLog(int level);

class LogMessage {
 public:
  LogMessage(const char* file, int line, int level);
  ~LogMessage();  // writes the message
  LogMessage(const LogMessage&) = delete;
  LogMessage& operator=(const LogMessage&) = delete;

  std::wostream& stream() { return m_stream; }

 private:
  const char* m_file;
  int m_line;
  int m_level;
  std::wostringstream m_stream;
};

// Turns a log statement into nothing when its level is filtered out.
class LogMessageVoidify {
 public:
  void operator&(std::wostream&) {}
};

// Writes one already composed line (used by the debug-output channel).
void WriteLogLine(const char* file, int line, int level, const std::wstring& text);

}  // namespace logging

#define VLOG_AT(level)         \
  !::logging::ShouldLog(level) \
      ? (void)0                \
      : ::logging::LogMessageVoidify() & ::logging::LogMessage(__FILE__, __LINE__, level).stream()

#endif  // LOGGING_LOGGING_H_
