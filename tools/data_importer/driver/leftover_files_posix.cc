#include "tools/data_importer/driver/leftover_files.h"

#include <errno.h>
#include <signal.h>

namespace data_importer {

bool ProcessExists(int pid) {
  if (pid <= 0)
    return false;
  // Signal 0 only checks: EPERM means the process exists under another user.
  return kill(pid, 0) == 0 || errno == EPERM;
}

}  // namespace data_importer
