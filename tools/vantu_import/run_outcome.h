#ifndef TOOLS_VANTU_IMPORT_RUN_OUTCOME_H_
#define TOOLS_VANTU_IMPORT_RUN_OUTCOME_H_

#include <string>

#include "base/file_path.h"
#include "base/json_file.h"

// How the host tells a person what a run did. Everything is read from the
// report the run wrote (the newest of "reports" in the data folder), so only
// what this run wrote is shown: the task it ran, the "DBCheck" values it
// wrote and the rows it read, wrote and dropped; and from the report of the
// last import ("ImportReport.json"), which import the data folder holds.

// Exit statuses of the host.
enum HostExit : int {
  kExitImported = 0,       // no failure
  kExitFailed = 1,         // the import failed, or the run could not be judged
  kExitUsage = 2,          // bad usage; nothing was run or created
  kExitDamaged = 3,        // finished, but a source was damaged or partly unreadable
  kExitUnreachable = 4,    // an earlier installation is named but could not be reached
  kExitInterrupted = 130,  // stopped by Ctrl-C (128 + SIGINT, as shells report it)
};

// The task the report names ("" for none).
std::string ReportTask(const base::Value& report);

// The task in words, e.g. "import from generation 6 (importvantu6)".
std::string TaskInWords(const std::string& task);

// The content of "UpgradeResult.json" in words, e.g. "VTMusicV3.db copied
// and encrypted; playlistV3.db not made: there is no playlist.db".
std::string DescribeUpgradeResult(const std::string& json);

// "ImportState" in words, e.g. "8 (a later stage of the build failed)".
std::string DescribeImportState(const std::wstring& state);

// One line in words with counts: what was imported, what was skipped and
// why, which source was damaged, or why the import failed. |last_import| is
// "ImportReport.json", the report of the last run that imported (null when
// there is none): a run that did not write it names the import it follows.
std::string VerdictLine(const base::Value& report, const base::Value& last_import = base::Value());

// The import of |last_import| that the run of |report| follows, e.g.
// "Follows the import from generation 6 (importvantu6), imported on
// 2026-11-24: 300 songs and 4 lists with 342 entries."; empty when
// |report| is that import's own report or |last_import| is none.
std::string FollowedImport(const base::Value& report, const base::Value& last_import);

// Whether the run renamed a new database into place (its stages name
// "ReplaceMusic" or "ReplacePlaylist").
bool ReplacedDatabases(const base::Value& report);

// The verdict of a run that ran |task|, without the lookup's notes and the
// final full stop.
std::string TaskVerdict(const base::Value& report, const std::string& task);

// The places the run looked at for earlier installations, one indented
// line each under a heading; empty when the report has none.
std::string LookupLines(const base::Value& report);

// The records the run dropped, by name and grouped by reason, e.g.
// "  skipped list 'Cloud list' (27 entries): lists of a type that is not
// imported"; the report names the first few of each reason, the rest are
// counted. Empty when nothing was dropped.
std::string DroppedByName(const base::Value& report);

// What the run looked at, the "DBCheck" values of the run and the per-table figures (sources,
// source tables, source-to-target pairs, target tables, stage times).
std::string DescribeDetails(const base::Value& report);

// The exit status the report calls for (see HostExit).
int ExitStatusOf(const base::Value& report);

// Reads the report at |path|; false when it is missing or not a JSON
// object.
bool ReadReport(const base::FilePath& path, base::Value* report);

// One line of the terminal's progress bar, e.g. "import [#####     ]  50%
// 3.2s writing songs", at most |columns| - 1 characters wide (so that the
// terminal never wraps it): the bar takes what the label, the figures and
// room for the stage leave, between 10 and 40 columns, so it keeps its
// width while the stage changes; a stage longer than its room, or a
// terminal too narrow even for that, cuts the line.
std::string ProgressBarLine(const std::string& label,
                            int percent,
                            double seconds,
                            int columns,
                            const std::string& stage = std::string());

// The value of |key| in section "DBCheck" of |ini|.
std::wstring ReadDBCheck(const base::FilePath& ini, const wchar_t* key);

#endif  // TOOLS_VANTU_IMPORT_RUN_OUTCOME_H_
