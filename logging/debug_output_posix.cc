#include "logging/debug_output.h"

#include <string>

#include "logging/logging.h"

namespace logging {

void OutputDebugStringW(const wchar_t* text) {
  if (!text || !ShouldLog(LOG_PROGRESS))
    return;
  WriteLogLine(__FILE__, __LINE__, LOG_PROGRESS, std::wstring(L"[debugger] ") + text);
}

}  // namespace logging
