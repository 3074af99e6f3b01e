#include "tools/data_importer/version3_upgrade/upgrade_result.h"

#include "base/file_util.h"
#include "base/json_file.h"
#include "base/utf_string_conversions.h"
#include "tools/data_importer/run_record/task_names.h"

namespace data_importer {

const char* OutcomeWord(CopyOutcome outcome) {
  switch (outcome) {
    case CopyOutcome::kNotRun:
      return "not_run";
    case CopyOutcome::kEncrypted:
      return "encrypted";
    case CopyOutcome::kLeftPlain:
      return "left_plain";
    case CopyOutcome::kEncryptFailed:
      return "encrypt_failed";
    case CopyOutcome::kNoSource:
      return "no_source";
    case CopyOutcome::kCopyFailed:
      return "copy_failed";
    case CopyOutcome::kReplaceFailed:
      return "replace_failed";
    case CopyOutcome::kWithheld:
      return "withheld";
  }
  return "not_run";
}

const char* OutcomeWord(OpenOutcome outcome) {
  switch (outcome) {
    case OpenOutcome::kNotRun:
      return "not_run";
    case OpenOutcome::kOpened:
      return "opened";
    case OpenOutcome::kMissing:
      return "missing";
    case OpenOutcome::kKeyRefused:
      return "key_refused";
    case OpenOutcome::kCorrupt:
      return "corrupt";
  }
  return "not_run";
}

const char* OutcomeWord(CloudListOutcome outcome) {
  switch (outcome) {
    case CloudListOutcome::kNotRun:
      return "not_run";
    case CloudListOutcome::kNoPlaylistDatabase:
      return "no_playlist_database";
    case CloudListOutcome::kAttachFailed:
      return "attach_failed";
    case CloudListOutcome::kAlreadyMoved:
      return "already_moved";
    case CloudListOutcome::kNothingToMove:
      return "nothing_to_move";
    case CloudListOutcome::kCopyFailed:
      return "copy_failed";
    case CloudListOutcome::kMoved:
      return "moved";
  }
  return "not_run";
}

base::Value UpgradeResultJson(const UpgradeResult& result) {
  base::Value root = base::Value::object();
  root["task"] = base::WideToUTF8(result.task);
  if (IsTask(result.task, kTaskCopyVersion2)) {
    root["music"] = OutcomeWord(result.music_copy);
    root["playlist"] = OutcomeWord(result.playlist_copy);
  } else {
    root["music"] = OutcomeWord(result.music_open);
    root["cloud_lists"] = OutcomeWord(result.cloud_lists);
    root["cloud_lists_moved"] = result.cloud_lists_moved;
  }
  return root;
}

bool WriteUpgradeResult(const base::FilePath& data_folder, const UpgradeResult& result) {
  base::Value root = UpgradeResultJson(result);
  base::FilePath path = data_folder.Append(kUpgradeResultFile);
  base::FilePath temp(path.value() + L".tmp");
  if (!base::WriteJsonFile(temp, root) || !base::ReplaceFile(temp, path)) {
    // The write already failed; a temporary file that will not go either
    // is only clutter, removed by a later run.
    (void)base::DeleteFile(temp);
    return false;
  }
  return true;
}

void ClearUpgradeResult(const base::FilePath& data_folder) {
  // A result that cannot be removed stays: the host shows it only when the
  // run was a version-2 task, which writes a fresh one.
  (void)base::DeleteFile(data_folder.Append(kUpgradeResultFile));
}

}  // namespace data_importer
