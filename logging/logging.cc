#include "logging/logging.h"

#include <atomic>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <mutex>

#include "base/file_util.h"
#include "base/string_number_conversions.h"
#include "base/time.h"
#include "base/utf_string_conversions.h"

namespace logging {

struct LogState {
  LogSettings settings;
  FILE* file = nullptr;
};

namespace {

// Guards the scope in force and its file.
std::mutex& LogMutex() {
  static std::mutex mutex;
  return mutex;
}

LogState* g_state = nullptr;
// Read without the lock by every log statement: above every level when no
// scope is active, so nothing is composed.
std::atomic<int> g_min_level{INT_MAX};

const char* ShortFileName(const char* file) {
  const char* last = file;
  for (const char* p = file; *p; ++p) {
    if (*p == '/' || *p == '\\')
      last = p + 1;
  }
  return last;
}

// Opens the scope's file at its first line (creating its folder, one level,
// when missing). A file that cannot be opened is tried again at the next
// line.
FILE* LogFile(LogState* state) {
  if (state->file || state->settings.file.empty())
    return state->file;
  base::FilePath folder = state->settings.file.DirName();
  if (!base::DirectoryExists(folder) && !base::CreateDirectory(folder))
    return nullptr;
  state->file = base::OpenFile(state->settings.file, "ab");
  return state->file;
}

}  // namespace

LogSettings LogSettingsFromEnvironment(const base::FilePath& file) {
  LogSettings settings;
  settings.file = file;
  const char* level = std::getenv("VANTU_LOG_LEVEL");
  if (level && *level && !base::StringToInt(std::string_view(level), &settings.min_level))
    settings.min_level = LOG_PROGRESS;  // not a number: the default
  settings.to_stderr = std::getenv("VANTU_LOG_STDERR") != nullptr;
  return settings;
}

ScopedLogging::ScopedLogging(const LogSettings& settings) : m_state(new LogState{settings}) {
  std::lock_guard<std::mutex> lock(LogMutex());
  m_previous = g_state;
  g_state = m_state;
  g_min_level = settings.min_level;
}

ScopedLogging::~ScopedLogging() {
  {
    std::lock_guard<std::mutex> lock(LogMutex());
    if (m_state->file)
      std::fclose(m_state->file);
    g_state = m_previous;
    g_min_level = m_previous ? m_previous->settings.min_level : INT_MAX;
  }
  delete m_state;
}

int GetMinLogLevel() {
  return g_min_level.load(std::memory_order_relaxed);
}

bool ShouldLog(int level) {
  return level >= GetMinLogLevel();
}

void WriteLogLine(const char* file, int line, int level, const std::wstring& text) {
  std::string stamp = base::Time::Now().ToLocalDateTimeString();

  std::string record = "[";
  record += stamp;
  record += "][";
  record += std::to_string(level);
  record += "][";
  record += ShortFileName(file);
  record += "(";
  record += std::to_string(line);
  record += ")] ";
  base::AppendWideAsUTF8(text, &record);
  record += "\n";

  std::lock_guard<std::mutex> lock(LogMutex());
  if (!g_state || level < g_state->settings.min_level)
    return;
  if (FILE* f = LogFile(g_state)) {
    // A short write is not retried: logging never fails the caller.
    (void)std::fwrite(record.data(), 1, record.size(), f);
    std::fflush(f);
  }
  if (g_state->settings.to_stderr)
    (void)std::fwrite(record.data(), 1, record.size(), stderr);
}

LogMessage::LogMessage(const char* file, int line, int level)
    : m_file(file), m_line(line), m_level(level) {}

LogMessage::~LogMessage() {
  WriteLogLine(m_file, m_line, m_level, m_stream.str());
}

}  // namespace logging
