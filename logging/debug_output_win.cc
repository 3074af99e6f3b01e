#include "logging/debug_output.h"

#include <string>

#include "base/windows_headers.h"
#include "logging/logging.h"

namespace logging {

// To an attached debugger, and to the log as on every system, so that the
// logs of both builds tell the same story.
void OutputDebugStringW(const wchar_t* text) {
  if (!text)
    return;
  ::OutputDebugStringW(text);
  if (ShouldLog(LOG_PROGRESS))
    WriteLogLine(__FILE__, __LINE__, LOG_PROGRESS, std::wstring(L"[debugger] ") + text);
}

}  // namespace logging
