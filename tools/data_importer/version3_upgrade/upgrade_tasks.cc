#include "tools/data_importer/version3_upgrade/upgrade_tasks.h"

#include <chrono>

#include "base/file_util.h"
#include "logging/logging.h"
#include "tools/data_importer/version3_upgrade/cloud_list_cleanup.h"
#include "tools/data_importer/environment/data_folder.h"
#include "tools/data_importer/database_helper/database_helper.h"
#include "tools/data_importer/run_record/import_report.h"
#include "tools/data_importer/run_record/importer_names.h"
#include "tools/data_importer/version3_upgrade/play_queue_conversion.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/target_store/build_sequence.h"
#include "tools/data_importer/target_store/replacement_commit.h"
#include "tools/data_importer/run_record/task_names.h"
#include "tools/data_importer/version3_upgrade/upgrade_report.h"

namespace data_importer {

namespace {

constexpr wchar_t kTag[] = L"[V8数据升级]";

// Runs |step| on a fresh upgrader between "UpdateProgress" 10 and 100.
template <typename Step>
UpgradeResult RunWrapped(const base::FilePath& data_folder,
                         ProgressRecord* record,
                         const wchar_t* task,
                         Step step) {
  UpgradeResult result;
  result.task = task;
  record->SetUpdateProgress(10);
  auto upgrader = std::make_unique<UpgradeTasks>(data_folder);
  step(upgrader.get(), &result);
  record->SetUpdateProgress(100);
  upgrader.reset();
  return result;
}

// Seconds since |start|, which moves on to now.
double Lap(std::chrono::steady_clock::time_point* start) {
  auto now = std::chrono::steady_clock::now();
  double seconds = std::chrono::duration<double>(now - *start).count();
  *start = now;
  return seconds;
}

}  // namespace

UpgradeResult RunVersion2Copy(const base::FilePath& folder,
                              ProgressRecord* record,
                              const BuildStageCallback& stage_done) {
  ImportReport* report = record->report();
  auto start = std::chrono::steady_clock::now();
  const base::FilePath music = folder.Append(importer_names::kMusicDatabaseV2);
  const base::FilePath playlist = folder.Append(importer_names::kPlaylistDatabaseV2);
  VerifiedDatabase music_read = CountPlainDatabase(music);
  VerifiedDatabase playlist_read = CountPlainDatabase(playlist);
  UpgradeResult result = RunWrapped(folder, record, kTaskCopyVersion2,
                                    [&](UpgradeTasks* upgrader, UpgradeResult* outcome) {
                                      upgrader->CopyVersion2Databases(outcome, stage_done);
                                    });
  report->AddStage("Copy", Lap(&start));
  if (stage_done)
    stage_done("Copy");
  Lap(&start);
  ReportCopiedDatabase(report, music, music_read, folder.Append(importer_names::kMusicDatabaseV3),
                       result.music_copy);
  ReportCopiedDatabase(report, playlist, playlist_read,
                       folder.Append(importer_names::kPlaylistDatabaseV3), result.playlist_copy);
  report->AddStage("Count", Lap(&start));
  return result;
}

UpgradeResult RunVersion3Upgrade(const base::FilePath& data_folder, ProgressRecord* record) {
  ImportReport* report = record->report();
  auto start = std::chrono::steady_clock::now();
  UpgradeResult result = RunWrapped(data_folder, record, kTaskUpgradeVersion3,
                                    [](UpgradeTasks* upgrader, UpgradeResult* outcome) {
                                      upgrader->UpgradeVersion3Databases(outcome);
                                    });
  report->AddStage("Upgrade", Lap(&start));
  ReportMovedTables(report, data_folder, result);
  report->AddStage("Count", Lap(&start));
  return result;
}

UpgradeTasks::UpgradeTasks(const base::FilePath& data_folder)
    : m_data_folder(data_folder),
      m_db(std::make_unique<DatabaseHelper>()),
      m_cloud_list(std::make_unique<CloudListCleanup>(data_folder)) {}

UpgradeTasks::~UpgradeTasks() {
  m_cloud_list.reset();
  m_db.reset();
}

void UpgradeTasks::CopyVersion2Databases(UpgradeResult* result,
                                         const CommitStepCallback& step_done) {
  namespace names = importer_names;
  // Each copy is made and encrypted under the build's temporary name, and
  // the finished copies replace the version-3 files in one commit
  // (replacement_commit.h). Copying straight over "VTMusicV3.db" and
  // encrypting it there would leave, after a kill between the two steps or
  // between the two files, a plain file or half a pair under the final
  // names; the next run would take them for an upgraded installation and
  // never finish the copy.
  const bool music_copied =
      CopyVersion2File(names::kMusicDatabaseV2, names::kMusicBuildFile, &result->music_copy);
  if (music_copied)
    result->music_copy = EncryptCopy(names::kMusicBuildFile);
  m_db->ResetConnection();
  const bool playlist_copied = CopyVersion2File(names::kPlaylistDatabaseV2,
                                                names::kPlaylistBuildFile, &result->playlist_copy);
  if (playlist_copied)
    result->playlist_copy = EncryptCopy(names::kPlaylistBuildFile);
  // The copies are renamed closed.
  m_db->ResetConnection();

  // A version-2 file that exists but could not be copied or encrypted (a
  // full disk, typically) puts neither copy in place: a plain file under a
  // final name, or one file of the pair alone, would make every later run
  // take the upgrade path, and the player would never see the version-2
  // data. With nothing in place the next run copies both again. A copy that
  // failed its integrity check is different: it is the version-2 file's own
  // damage, which no later run can mend, so it takes its final name, plain.
  auto unfinished = [](CopyOutcome outcome) {
    return outcome == CopyOutcome::kCopyFailed || outcome == CopyOutcome::kEncryptFailed;
  };
  if (unfinished(result->music_copy) || unfinished(result->playlist_copy)) {
    for (auto [name, outcome] : {std::pair{names::kMusicBuildFile, &result->music_copy},
                                 std::pair{names::kPlaylistBuildFile, &result->playlist_copy}}) {
      // Clean-up: a copy that stays behind is deleted by the next run.
      (void)base::DeleteFile(m_data_folder.Append(name));
      if (!unfinished(*outcome) && *outcome != CopyOutcome::kNoSource)
        *outcome = CopyOutcome::kWithheld;
    }
    VLOG_AT(logging::LOG_FAILURE) << kTag << L" The version-2 databases were not both copied; "
                                  << L"no version-3 file is replaced.";
    return;
  }
  if (!music_copied && !playlist_copied)
    return;
  if (CommitReplacement(m_data_folder, step_done, {music_copied, playlist_copied}))
    return;
  // Logged by the commit; a record that was written makes the next run
  // finish the renames. A copy still under its temporary name is not in
  // place.
  if (base::PathExists(m_data_folder.Append(names::kMusicBuildFile)))
    result->music_copy = CopyOutcome::kReplaceFailed;
  if (base::PathExists(m_data_folder.Append(names::kPlaylistBuildFile)))
    result->playlist_copy = CopyOutcome::kReplaceFailed;
}

bool UpgradeTasks::CopyVersion2File(const wchar_t* from, const wchar_t* to, CopyOutcome* outcome) {
  base::FilePath source = m_data_folder.Append(from);
  base::FilePath target = m_data_folder.Append(to);
  if (!base::PathExists(source)) {
    VLOG_AT(logging::LOG_PROGRESS) << kTag << L" No {" << source.value() << L"} to copy.";
    *outcome = CopyOutcome::kNoSource;
    return false;
  }
  if (!base::CopyFile(source, target)) {
    VLOG_AT(logging::LOG_FAILURE) << kTag << L" Copy file {" << source.value() << L"} to {"
                                  << target.value() << L"} FAILED, error code {"
                                  << base::GetLastSystemError() << L"}.";
    *outcome = CopyOutcome::kCopyFailed;
    return false;
  }
  return true;
}

CopyOutcome UpgradeTasks::EncryptCopy(const wchar_t* name) {
  base::FilePath path = m_data_folder.Append(name);
  if (!m_db->OpenAndCheck(path)) {
    VLOG_AT(logging::LOG_FAILURE) << kTag << L" {" << path.value()
                                  << L"} failed the integrity check; left plain.";
    return CopyOutcome::kLeftPlain;
  }
  // DbEncrypt writes the encrypted database beside the copy and renames it
  // over the copy only when it is complete: a run killed meanwhile leaves the
  // plain copy, never a half-encrypted file.
  if (!m_db->connection()->DbEncrypt(kVersion3DatabaseKey)) {
    VLOG_AT(logging::LOG_FAILURE) << kTag << L" Encrypting {" << path.value() << L"} FAILED.";
    return CopyOutcome::kEncryptFailed;
  }
  VLOG_AT(logging::LOG_PROGRESS) << kTag << L" {" << path.value() << L"} copied and encrypted.";
  return CopyOutcome::kEncrypted;
}

void UpgradeTasks::UpgradeVersion3Databases(UpgradeResult* result) {
  base::FilePath music = m_data_folder.Append(importer_names::kMusicDatabaseV3);
  if (!base::PathExists(music)) {
    result->music_open = OpenOutcome::kMissing;
    return;
  }
  if (!m_db->OpenWithKey(music, kVersion3DatabaseKey)) {
    VLOG_AT(logging::LOG_FAILURE) << kTag << L" {" << music.value()
                                  << L"} does not open with the key; left as it is.";
    result->music_open = OpenOutcome::kKeyRefused;
    return;
  }
  if (!m_db->CheckOrRepair()) {
    VLOG_AT(logging::LOG_FAILURE) << kTag << L" {" << music.value()
                                  << L"} failed the integrity check; left as it is.";
    result->music_open = OpenOutcome::kCorrupt;
    return;
  }
  result->music_open = OpenOutcome::kOpened;
  ConvertPlayQueue(m_db->connection());
  if (m_cloud_list) {
    m_cloud_list->SetUp(m_db.get());
    result->cloud_lists = m_cloud_list->Run();
    if (result->cloud_lists == CloudListOutcome::kMoved) {
      result->cloud_lists_moved = static_cast<int>(m_cloud_list->cloud_list_ids().size());
      result->moved_tables = m_cloud_list->moved_tables();
    }
  }
  VLOG_AT(logging::LOG_PROGRESS) << kTag << L" Cloud lists: {" << OutcomeWord(result->cloud_lists)
                                 << L"}, {" << result->cloud_lists_moved << L"} moved.";
}

}  // namespace data_importer
