#ifndef TOOLS_DATA_IMPORTER_TARGET_STORE_REPLACEMENT_COMMIT_H_
#define TOOLS_DATA_IMPORTER_TARGET_STORE_REPLACEMENT_COMMIT_H_

#include <functional>

#include "base/file_path.h"

namespace data_importer {

// The two finished databases replace the final ones as one commit: either
// both "VTMusicV3.db" and "playlistV3.db" end up holding the new content, or
// neither changes. Two renames cannot be made atomic together, so a commit
// record, "DatabaseReplace.commit" in the data folder, is made durable before
// the first rename and removed after the second (the model is SQLite's hot
// journal, rolled forward instead of back). A run interrupted between the
// two renames leaves the record behind; the next run completes the renames
// before it decides its task, so it never mistakes half a pair for a
// finished import.
//
// The pairs, in order: "VTMusicV2.db.tmp" -> "VTMusicV3.db", then
// "playlist.db.tmp" -> "playlistV3.db". The build writes both temporary
// files; the version-2 copy writes those whose version-2 file it could copy.

// Told the name of each step of a commit as it ends.
using CommitStepCallback = std::function<void(const char* step)>;

// Which pairs a commit renames.
struct ReplacedFiles {
  bool music = true;
  bool playlist = true;
};

// Writes the record, renames the files of |files| and removes the record.
// The caller has finished those temporary files. |step_done|, when given, is
// told "CommitRecord", "ReplaceMusic", "ReplacePlaylist" and "CommitDone" as
// each step ends (a rename left out is not told; tests stop the process
// there). False when a step fails; the failure is logged, and a record that
// could be written stays so that the next run completes the commit.
[[nodiscard]] bool CommitReplacement(const base::FilePath& data_folder,
                                     const CommitStepCallback& step_done = nullptr,
                                     ReplacedFiles files = {});

// Run at the start of every run, before the task decision. With a record:
// renames whichever temporary file of the pair is still there over its final
// file, in the pair order, then removes the record. Without one: deletes the
// temporary files of an interrupted build or copy ("VTMusicV2.db.tmp",
// "playlist.db.tmp", their ".enc" siblings and the rollback journals of all
// four), which were never finished. A journal goes with its file: left
// beside the next run's fresh file of the same name, the engine would take
// it for that file's hot journal and roll foreign pages into it.
// Logs what it did. False when a record was found and could not be
// completed (it is kept for the next run).
[[nodiscard]] bool CompleteOrUndoReplacement(const base::FilePath& data_folder);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_TARGET_STORE_REPLACEMENT_COMMIT_H_
