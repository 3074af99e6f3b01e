#ifndef FUZZ_FUZZ_SCRATCH_H_
#define FUZZ_FUZZ_SCRATCH_H_

#include <unistd.h>

#include <string>

#include "base/file_path.h"
#include "base/file_util.h"

// A scratch path of this process for the targets that must hand their input
// to the code as a file: in memory (/dev/shm) where the system has it, so
// that a target runs at the speed of its parsing rather than of the disk.
inline base::FilePath FuzzScratchPath(const std::string& name) {
  const std::string folder = base::DirectoryExists(base::FilePath(L"/dev/shm")) ? "/dev/shm" : "/tmp";
  return base::FilePath::FromUTF8Unsafe(folder + "/" + name + "-" + std::to_string(getpid()));
}

#endif  // FUZZ_FUZZ_SCRATCH_H_
