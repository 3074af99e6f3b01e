#include "logging/logging.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <mutex>

#include "base/file_path.h"
#include "base/file_util.h"
#include "base/path_service.h"
#include "base/string_number_conversions.h"
#include "base/utf_string_conversions.h"

namespace logging {

namespace {

// Only the file appends are serialised; the importer itself is
// single-threaded, but the host may log from another thread.
std::mutex& LogMutex() {
  static std::mutex mutex;
  return mutex;
}

const char* ShortFileName(const char* file) {
  const char* last = file;
  for (const char* p = file; *p; ++p) {
    if (*p == '/' || *p == '\\')
      last = p + 1;
  }
  return last;
}

}  // namespace

int GetMinLogLevel() {
  const char* text = std::getenv("VANTU_LOG_LEVEL");
  if (!text || !*text)
    return 0;
  int level = 0;
  // Text that is not a number logs at what the conversion made of it.
  (void)base::StringToInt(std::string_view(text), &level);
  return level;
}

bool ShouldLog(int level) {
  return level >= GetMinLogLevel();
}

void WriteLogLine(const char* file, int line, int level, const std::wstring& text) {
  char stamp[32] = {0};
  std::time_t now = std::time(nullptr);
  std::tm local_tm;
  localtime_r(&now, &local_tm);
  std::strftime(stamp, sizeof(stamp), "%Y-%m-%d %H:%M:%S", &local_tm);

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
  base::FilePath folder;
  if (base::PathService::Get(base::DIR_LOCAL_APP_DATA, &folder)) {
    folder = folder.Append(L"VanTu8");
    if (base::DirectoryExists(folder) || base::CreateDirectory(folder)) {
      base::FilePath log_file = base::ResolvePathCase(folder.Append(kLogFileName));
      if (FILE* f = std::fopen(log_file.AsUTF8Unsafe().c_str(), "ab")) {
        std::fwrite(record.data(), 1, record.size(), f);
        std::fclose(f);
      }
    }
  }
  if (std::getenv("VANTU_LOG_STDERR"))
    std::fwrite(record.data(), 1, record.size(), stderr);
}

LogMessage::LogMessage(const char* file, int line, int level)
    : file_(file), line_(line), level_(level) {}

LogMessage::~LogMessage() {
  WriteLogLine(file_, line_, level_, stream_.str());
}

}  // namespace logging
