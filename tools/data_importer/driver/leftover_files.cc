#include "tools/data_importer/driver/leftover_files.h"

#include <filesystem>
#include <system_error>
#include <vector>

#include "base/file_util.h"
#include "logging/logging.h"

namespace data_importer {

namespace {

// The kinds of temporary file: the enumeration pattern and the marker
// before the process id.
struct LeftoverKind {
  const wchar_t* pattern;
  const wchar_t* marker;
};

constexpr LeftoverKind kKinds[] = {
    {L"Vantu.ini.tmp*", L"Vantu.ini.tmp"},
    {L"*.copy-*", L".copy-"},
};

int RemoveIn(const base::FilePath& folder) {
  int removed = 0;
  for (const LeftoverKind& kind : kKinds) {
    base::FileEnumerator files(folder, kind.pattern);
    for (base::FilePath file = files.Next(); !file.empty(); file = files.Next()) {
      int owner = StaleFileOwner(file.BaseName().value(), kind.marker);
      if (owner == 0 || ProcessExists(owner))
        continue;
      if (base::DeleteFile(file)) {
        ++removed;
        VLOG_AT(logging::LOG_PROGRESS)
            << L"Removed {" << file.value() << L"} left by process {" << owner << L"}.";
      } else {
        VLOG_AT(logging::LOG_FAILURE)
            << L"Delete file {" << file.value() << L"} FAILED, error code {"
            << base::GetLastSystemError() << L"}.";
      }
    }
  }
  return removed;
}

}  // namespace

int StaleFileOwner(const std::wstring& name, const std::wstring& marker) {
  size_t at = name.rfind(marker);
  if (at == std::wstring::npos)
    return 0;
  if (marker.front() != L'.' && at != 0)  // "Vantu.ini.tmp" is the whole stem
    return 0;
  std::wstring digits = name.substr(at + marker.size());
  if (digits.empty() || digits.size() > 9)
    return 0;
  int pid = 0;
  for (wchar_t c : digits) {
    if (c < L'0' || c > L'9')
      return 0;
    pid = pid * 10 + (c - L'0');
  }
  return pid;
}

int RemoveStaleWorkFiles(const base::FilePath& data_folder) {
  std::vector<base::FilePath> folders = {data_folder, data_folder.Append(L"Lyric")};
  std::error_code error;
  std::filesystem::path backup(data_folder.Append(L"Backup").AsUTF8Unsafe());
  for (std::filesystem::directory_iterator it(backup, error), end; !error && it != end;
       it.increment(error)) {
    if (it->is_directory(error))
      folders.push_back(base::FilePath::FromUTF8Unsafe(it->path().string()));
  }
  int removed = 0;
  for (const base::FilePath& folder : folders)
    removed += RemoveIn(folder);
  return removed;
}

}  // namespace data_importer
