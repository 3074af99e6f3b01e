#include "tools/vantu_import/data_folder_check.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <system_error>

#include "base/file_util.h"
#include "tools/data_importer/run_record/importer_names.h"

namespace {

bool Fail(const base::FilePath& path, const std::string& what, int error_number,
          std::string* error) {
  *error = what + " " + path.AsUTF8Unsafe() + ": " + std::strerror(error_number);
  return false;
}

}  // namespace

bool CheckDataFolder(const base::FilePath& data_folder, std::string* error) {
  std::string folder = data_folder.AsUTF8Unsafe();
  struct stat info;
  if (stat(folder.c_str(), &info) == 0) {
    if (!S_ISDIR(info.st_mode))
      return Fail(data_folder, "data folder", ENOTDIR, error);
  } else if (!base::CreateDirectory(data_folder)) {
    return Fail(data_folder, "data folder", base::GetLastSystemError(), error);
  }

  // A probe file shows whether files can be created and written here.
  base::FilePath probe =
      data_folder.Append(L".vantu-import-probe-" + std::to_wstring(getpid()));
  int fd = open(probe.AsUTF8Unsafe().c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
  if (fd < 0)
    return Fail(data_folder, "data folder", errno, error);
  bool written = write(fd, "x", 1) == 1;
  int write_error = errno;
  close(fd);
  unlink(probe.AsUTF8Unsafe().c_str());
  if (!written)
    return Fail(data_folder, "data folder", write_error, error);

  base::FilePath ini =
      base::ResolvePathCase(data_folder.Append(importer_names::kSettingsFileName));
  if (stat(ini.AsUTF8Unsafe().c_str(), &info) == 0) {
    if (S_ISDIR(info.st_mode))
      return Fail(ini, "settings file", EISDIR, error);
    // Opened for appending and closed again: nothing is written.
    fd = open(ini.AsUTF8Unsafe().c_str(), O_WRONLY | O_APPEND);
    if (fd < 0)
      return Fail(ini, "settings file", errno, error);
    close(fd);
  }
  return true;
}

bool CopyFolder(const base::FilePath& from, const base::FilePath& to, std::string* error) {
  std::error_code code;
  std::filesystem::copy(from.AsUTF8Unsafe(), to.AsUTF8Unsafe(),
                        std::filesystem::copy_options::recursive |
                            std::filesystem::copy_options::copy_symlinks,
                        code);
  if (code) {
    *error = "cannot copy " + from.AsUTF8Unsafe() + " to " + to.AsUTF8Unsafe() + ": " +
             code.message();
    return false;
  }
  return true;
}
