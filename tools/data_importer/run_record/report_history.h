#ifndef TOOLS_DATA_IMPORTER_RUN_RECORD_REPORT_HISTORY_H_
#define TOOLS_DATA_IMPORTER_RUN_RECORD_REPORT_HISTORY_H_

#include <string>

#include "base/file_path.h"

namespace data_importer {

// The history of runs: every run's report is kept in the folder "reports"
// of the data folder as "<UTC time>-<task>-<n>.json", e.g.
// "20261124T234313Z-importvantu6-1.json", where n makes the name unique
// within the second (the second run of that second is 2, whatever its
// task). Only the newest kReportHistoryKept files stay. Meanwhile
// "ImportReport.json" stays the report of the last run that imported.

// "20261124T234313Z" for |seconds| since 1970-01-01 UTC.
std::string UtcTimeStamp(double seconds);

// Writes |text| as the report of a run of |task| ("" for none) that ended
// at |seconds|, then removes the oldest reports beyond the limit. Answers
// the file written, or an empty path when it could not be written (a report
// that cannot be pruned is only logged).
base::FilePath KeepRunReport(const base::FilePath& data_folder,
                             const std::wstring& task,
                             double seconds,
                             const std::string& text);

// The newest report of the history (by time, then n); empty when there is
// none.
base::FilePath LatestRunReport(const base::FilePath& data_folder);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_RUN_RECORD_REPORT_HISTORY_H_
