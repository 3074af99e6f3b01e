#include "tools/data_importer/driver/leftover_files.h"

#include "base/windows_headers.h"

namespace data_importer {

bool ProcessExists(int pid) {
  if (pid <= 0)
    return false;
  HANDLE process = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, static_cast<DWORD>(pid));
  if (!process) {
    // Access denied: the process exists under another user.
    return GetLastError() == ERROR_ACCESS_DENIED;
  }
  DWORD code = 0;
  bool running = GetExitCodeProcess(process, &code) && code == STILL_ACTIVE;
  CloseHandle(process);
  return running;
}

}  // namespace data_importer
