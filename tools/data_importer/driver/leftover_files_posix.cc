#include "tools/data_importer/driver/leftover_files.h"

#include <errno.h>
#include <signal.h>

bool ProcessExists(int pid) {
  if (pid <= 0)
    return false;
  // Signal 0 only checks: EPERM means the process exists under another user.
  return kill(pid, 0) == 0 || errno == EPERM;
}
