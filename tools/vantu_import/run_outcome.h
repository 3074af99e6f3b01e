#ifndef TOOLS_VANTU_IMPORT_RUN_OUTCOME_H_
#define TOOLS_VANTU_IMPORT_RUN_OUTCOME_H_

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "base/file_path.h"

// What a run of the importer left in the data folder: the "DBCheck" values
// of "Vantu.ini", the task named in the run's log, and the new databases.
struct RunOutcome {
  std::wstring task;  // empty when the run found nothing to do
  std::wstring import_progress;
  std::wstring import_state;
  std::wstring update_progress;
  std::wstring import_playlists;
  std::wstring import_end;
  std::wstring source_empty;
  // What a version-2 task did, in words (from "UpgradeResult.json"); empty
  // for the other tasks.
  std::string upgrade_done;
  std::vector<std::pair<std::wstring, int64_t>> files;  // name, size in bytes
};

// Reads the outcome of the run whose log lines start at byte |log_offset|
// of the importer's log.
RunOutcome ReadRunOutcome(const base::FilePath& data_folder, size_t log_offset);

// Current size of the importer's log in |data_folder| (0 when missing).
size_t LogSize(const base::FilePath& data_folder);

// The content of "UpgradeResult.json" in words, e.g. "VTMusicV3.db copied
// and encrypted; playlistV3.db not made: there is no playlist.db".
std::string DescribeUpgradeResult(const std::string& json);

// "ImportState" in words, e.g. "8 (a later stage of the build failed)".
std::string DescribeImportState(const std::wstring& state);

// The outcome as lines of text for a person.
std::string DescribeOutcome(const RunOutcome& outcome);

// 0 when "ImportState" holds no failure bit, else 1.
int ExitStatusOf(const RunOutcome& outcome);

// The value of |key| in section "DBCheck" of |ini|.
std::wstring ReadDBCheck(const base::FilePath& ini, const wchar_t* key);

#endif  // TOOLS_VANTU_IMPORT_RUN_OUTCOME_H_
