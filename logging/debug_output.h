#ifndef LOGGING_DEBUG_OUTPUT_H_
#define LOGGING_DEBUG_OUTPUT_H_

namespace logging {

// Short texts meant for an attached debugger. They go to the log at the
// lowest level (0), marked as debugger output; on Windows also to the
// system's debugger channel.
void OutputDebugStringW(const wchar_t* text);

}  // namespace logging

#endif  // LOGGING_DEBUG_OUTPUT_H_
