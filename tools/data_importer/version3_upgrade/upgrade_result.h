#ifndef TOOLS_DATA_IMPORTER_VERSION3_UPGRADE_UPGRADE_RESULT_H_
#define TOOLS_DATA_IMPORTER_VERSION3_UPGRADE_UPGRADE_RESULT_H_

#include <cstdint>
#include <string>
#include <vector>

#include "base/file_path.h"
#include "base/json_file.h"
#include "tools/data_importer/run_record/importer_names.h"

namespace data_importer {

// What one of the two version-2 tasks did. Neither task reports anything in
// "DBCheck" beyond "UpdateProgress", so the driver keeps this record in the
// data folder as "UpgradeResult.json" for the host program (and for whoever
// looks at a user's data folder afterwards). One JSON object, every value a
// word from the lists below:
//
//   {"task":"copyv8dbv2","music":"encrypted","playlist":"no_source"}
//   {"task":"updatevantu8","music":"opened","cloud_lists":"moved",
//    "cloud_lists_moved":2}
//
// The file is removed at the start of every run, so one that exists was
// written by the last run. Writing it never fails the run.

// One file of the copy task.
enum class CopyOutcome {
  kNotRun,         // "not_run"
  kEncrypted,      // "encrypted": copied, checked and encrypted
  kLeftPlain,      // "left_plain": copied, failed the integrity check
  kEncryptFailed,  // "encrypt_failed": copied and checked, the encryption
                   // failed; the copy is deleted
  kNoSource,       // "no_source": the version-2 file does not exist
  kCopyFailed,     // "copy_failed": the version-2 file could not be copied
  kReplaceFailed,  // "replace_failed": copied, but the copy could not be
                   // renamed over its version-3 file; a commit record that
                   // was written makes the next run finish the rename
  kWithheld,       // "withheld": copied, but not put in place because the
                   // other file could not be copied or encrypted; the next
                   // run copies both again
};

// The music database of the upgrade task.
enum class OpenOutcome {
  kNotRun,      // "not_run"
  kOpened,      // "opened": opened with the key and sound
  kMissing,     // "missing": no "VTMusicV3.db"
  kKeyRefused,  // "key_refused": does not open with the key (plain or foreign)
  kCorrupt,     // "corrupt": opened, but failed the integrity check twice
};

// The cloud-list move of the upgrade task.
enum class CloudListOutcome {
  kNotRun,              // "not_run": the music database was not opened
  kNoPlaylistDatabase,  // "no_playlist_database": "playlistV3.db" missing,
                        // not opened with the key, or corrupt
  kAttachFailed,        // "attach_failed"
  kAlreadyMoved,        // "already_moved": the playlist database already
                        // holds "CloudListTable"
  kNothingToMove,       // "nothing_to_move": no "CloudListTable" in the
                        // music database
  kCopyFailed,          // "copy_failed": a table copy failed; nothing moved
  kMoved,               // "moved"
};

// A cloud table the upgrade task copied into the playlist database, with
// the rows it held in the music database; |dropped| when the playlist
// database dropped it again after the copy because no cloud list was left
// to use it.
struct MovedTable {
  std::string name;
  int64_t rows = 0;
  bool dropped = false;
};

struct UpgradeResult {
  std::wstring task;  // the task name
  // Copy task.
  CopyOutcome music_copy = CopyOutcome::kNotRun;
  CopyOutcome playlist_copy = CopyOutcome::kNotRun;
  // Upgrade task.
  OpenOutcome music_open = OpenOutcome::kNotRun;
  CloudListOutcome cloud_lists = CloudListOutcome::kNotRun;
  int cloud_lists_moved = 0;  // lists with an id above 0 that were moved
  // The tables copied (for the import report; not in "UpgradeResult.json").
  std::vector<MovedTable> moved_tables;
};

const char* OutcomeWord(CopyOutcome outcome);
const char* OutcomeWord(OpenOutcome outcome);
const char* OutcomeWord(CloudListOutcome outcome);

inline constexpr const wchar_t* kUpgradeResultFile = importer_names::kUpgradeResultFileName;

// |result| as the JSON object shown above.
base::Value UpgradeResultJson(const UpgradeResult& result);

// Writes |result| as "UpgradeResult.json" in |data_folder| (through a
// temporary file and a rename). False when it cannot be written.
[[nodiscard]] bool WriteUpgradeResult(const base::FilePath& data_folder,
                                      const UpgradeResult& result);

// Removes a record left by an earlier run.
void ClearUpgradeResult(const base::FilePath& data_folder);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_VERSION3_UPGRADE_UPGRADE_RESULT_H_
