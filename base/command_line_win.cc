#include "base/command_line.h"

#include "base/windows_headers.h"

namespace base {

std::wstring GetCommandLineW() {
  const wchar_t* line = ::GetCommandLineW();
  return line ? std::wstring(line) : std::wstring();
}

}  // namespace base
