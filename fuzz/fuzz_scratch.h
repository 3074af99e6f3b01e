#ifndef FUZZ_FUZZ_SCRATCH_H_
#define FUZZ_FUZZ_SCRATCH_H_

#include <filesystem>
#include <string>

#include "base/file_path.h"
#include "base/file_util.h"
#include "base/utf_string_conversions.h"

// A scratch path of this process for the targets that must hand their input
// to the code as a file: in memory (/dev/shm) where the system has it, so
// that a target runs at the speed of its parsing rather than of the disk.
inline base::FilePath FuzzScratchPath(const std::string& name) {
  const std::string suffix = "-" + std::to_string(base::GetCurrentProcessNumber());
#if defined(_WIN32)
  std::error_code ignored;  // an empty folder gives a relative path, still usable
  return base::FilePath(std::filesystem::temp_directory_path(ignored).wstring())
      .Append(base::UTF8ToWide(name + suffix));
#else
  const std::string folder =
      base::DirectoryExists(base::FilePath(L"/dev/shm")) ? "/dev/shm" : "/tmp";
  return base::FilePath::FromUTF8Unsafe(folder + "/" + name + suffix);
#endif
}

#endif  // FUZZ_FUZZ_SCRATCH_H_
