#include "tools/data_importer/run_record/report_history.h"

#include <time.h>

#include <algorithm>
#include <cstdlib>
#include <cwctype>
#include <vector>

#include "base/file_util.h"
#include "base/utf_string_conversions.h"
#include "logging/logging.h"
#include "tools/data_importer/run_record/importer_names.h"

namespace data_importer {

namespace names = importer_names;

namespace {

constexpr size_t kStampLength = 16;  // "20261124T234313Z"

// Where a report of the history sorts: its time stamp, then its n.
struct HistoryEntry {
  std::wstring stamp;
  long n = 0;
  base::FilePath path;
};

// The entry of a file named "<stamp>-<task>-<n>.json"; false for any other
// name (a file a person put there is left alone).
bool ParseEntry(const base::FilePath& path, HistoryEntry* entry) {
  std::wstring name = path.BaseName().value();
  const std::wstring suffix = L".json";
  if (name.size() < kStampLength + suffix.size() + 4 ||
      name.compare(name.size() - suffix.size(), suffix.size(), suffix) != 0 ||
      name[kStampLength] != L'-')
    return false;
  for (size_t i = 0; i < kStampLength; ++i) {
    wchar_t c = name[i];
    bool ok = i == 8 ? c == L'T' : i == kStampLength - 1 ? c == L'Z' : std::iswdigit(c) != 0;
    if (!ok)
      return false;
  }
  std::wstring stem = name.substr(0, name.size() - suffix.size());
  size_t dash = stem.rfind(L'-');
  if (dash <= kStampLength || dash + 1 >= stem.size())
    return false;
  std::wstring digits = stem.substr(dash + 1);
  if (digits.size() > 6 ||
      !std::all_of(digits.begin(), digits.end(), [](wchar_t c) { return std::iswdigit(c) != 0; }))
    return false;
  entry->stamp = name.substr(0, kStampLength);
  entry->n = std::wcstol(digits.c_str(), nullptr, 10);
  entry->path = path;
  return true;
}

// The history, oldest first.
std::vector<HistoryEntry> ListHistory(const base::FilePath& folder) {
  std::vector<HistoryEntry> entries;
  base::FileEnumerator files(folder, L"*.json");
  for (base::FilePath path = files.Next(); !path.empty(); path = files.Next()) {
    HistoryEntry entry;
    if (ParseEntry(path, &entry))
      entries.push_back(std::move(entry));
  }
  std::sort(entries.begin(), entries.end(), [](const HistoryEntry& a, const HistoryEntry& b) {
    return a.stamp != b.stamp ? a.stamp < b.stamp : a.n < b.n;
  });
  return entries;
}

}  // namespace

std::string UtcTimeStamp(double seconds) {
  time_t t = static_cast<time_t>(seconds);
  struct tm utc = {};
#if defined(_WIN32)
  gmtime_s(&utc, &t);
#else
  gmtime_r(&t, &utc);
#endif
  char buffer[32];
  if (strftime(buffer, sizeof(buffer), "%Y%m%dT%H%M%SZ", &utc) != kStampLength)
    return "19700101T000000Z";
  return buffer;
}

base::FilePath KeepRunReport(const base::FilePath& data_folder,
                             const std::wstring& task,
                             double seconds,
                             const std::string& text) {
  base::FilePath folder = data_folder.Append(names::kReportHistoryFolder);
  if (!base::CreateDirectory(folder))
    return base::FilePath();
  std::vector<HistoryEntry> history = ListHistory(folder);
  std::wstring stamp = base::UTF8ToWide(UtcTimeStamp(seconds));
  long n = 1;
  for (const HistoryEntry& entry : history) {
    if (entry.stamp == stamp)
      n = std::max(n, entry.n + 1);
  }
  base::FilePath path =
      folder.Append(stamp + L"-" + (task.empty() ? names::kReportHistoryNoTask : task) + L"-" +
                    std::to_wstring(n) + L".json");
  base::FilePath temp(path.value() + L".tmp");
  if (!base::WriteFile(temp, text) || !base::ReplaceFile(temp, path)) {
    // The failure is what the caller reports; a half-written temporary file
    // is only tidied away.
    (void)base::DeleteFile(temp);
    return base::FilePath();
  }
  history.push_back({stamp, n, path});
  // The new report sorts last unless the clock went back; the oldest go.
  size_t excess = history.size() > static_cast<size_t>(names::kReportHistoryKept)
                      ? history.size() - names::kReportHistoryKept
                      : 0;
  std::sort(history.begin(), history.end(), [](const HistoryEntry& a, const HistoryEntry& b) {
    return a.stamp != b.stamp ? a.stamp < b.stamp : a.n < b.n;
  });
  for (size_t i = 0; i < excess; ++i) {
    if (history[i].path == path)
      continue;  // never the report just written
    if (!base::DeleteFile(history[i].path)) {
      VLOG_AT(logging::LOG_FAILURE) << L"Report history: cannot remove {" << history[i].path.value()
                                    << L"}, error code {" << base::GetLastSystemError() << L"}.";
    }
  }
  return path;
}

base::FilePath LatestRunReport(const base::FilePath& data_folder) {
  std::vector<HistoryEntry> history = ListHistory(data_folder.Append(names::kReportHistoryFolder));
  return history.empty() ? base::FilePath() : history.back().path;
}

}  // namespace data_importer
