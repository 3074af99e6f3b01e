#include "tools/vantu_import/data_folder_check.h"

#include <errno.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "base/file_util.h"
#include "tools/data_importer/run_record/importer_names.h"

using namespace data_importer;  // the importer under use

namespace {

bool FailWithText(const base::FilePath& path,
                  const std::string& what,
                  const std::string& reason,
                  std::string* error) {
  *error = what + " " + path.AsUTF8Unsafe() + ": " + reason;
  return false;
}

bool Fail(const base::FilePath& path,
          const std::string& what,
          int error_number,
          std::string* error) {
  return FailWithText(path, what, std::strerror(error_number), error);
}

}  // namespace

bool CheckDataFolder(const base::FilePath& data_folder, std::string* error) {
  base::FileInfo info;
  if (base::GetFileInfo(data_folder, &info)) {
    if (!info.is_directory)
      return Fail(data_folder, "data folder", ENOTDIR, error);
  } else if (!base::CreateDirectory(data_folder)) {
    return FailWithText(data_folder, "data folder",
                        base::SystemErrorText(base::GetLastSystemError()), error);
  }

  // A probe file shows whether files can be created and written here.
  base::FilePath probe = data_folder.Append(L".vantu-import-probe-" +
                                            std::to_wstring(base::GetCurrentProcessNumber()));
  errno = 0;
  FILE* file = base::OpenFile(probe, "wb");
  if (!file)
    return Fail(data_folder, "data folder", errno, error);
  bool written = std::fwrite("x", 1, 1, file) == 1;
  int write_error = errno;
  if (std::fclose(file) != 0 && written) {
    written = false;
    write_error = errno;
  }
  // A probe left behind is only a stray empty file; the write is the test.
  (void)base::DeleteFile(probe);
  if (!written)
    return Fail(data_folder, "data folder", write_error, error);

  base::FilePath ini = base::ResolvePathCase(data_folder.Append(importer_names::kSettingsFileName));
  if (base::GetFileInfo(ini, &info)) {
    if (info.is_directory)
      return Fail(ini, "settings file", EISDIR, error);
    // Opened for appending and closed again: nothing is written.
    errno = 0;
    file = base::OpenFile(ini, "ab");
    if (!file)
      return Fail(ini, "settings file", errno, error);
    std::fclose(file);
  }
  return true;
}

namespace {

// The path as the standard library takes it: wide on Windows, UTF-8 bytes
// elsewhere (never through the C library's locale).
std::filesystem::path StdPath(const base::FilePath& path) {
#if defined(_WIN32)
  return std::filesystem::path(path.value());
#else
  return std::filesystem::path(path.AsUTF8Unsafe());
#endif
}

}  // namespace

bool CopyFolder(const base::FilePath& from, const base::FilePath& to, std::string* error) {
  std::error_code code;
  std::filesystem::copy(
      StdPath(from), StdPath(to),
      std::filesystem::copy_options::recursive | std::filesystem::copy_options::copy_symlinks,
      code);
  if (code) {
    *error =
        "cannot copy " + from.AsUTF8Unsafe() + " to " + to.AsUTF8Unsafe() + ": " + code.message();
    return false;
  }
  return true;
}
