#ifndef LOGGING_DEBUG_OUTPUT_H_
#define LOGGING_DEBUG_OUTPUT_H_

namespace logging {

// Short texts meant for an attached debugger. On POSIX they go to the log
// at the lowest level (0), marked as debugger output.
void OutputDebugStringW(const wchar_t* text);

}  // namespace logging

#endif  // LOGGING_DEBUG_OUTPUT_H_
