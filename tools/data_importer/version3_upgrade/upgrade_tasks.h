#ifndef TOOLS_DATA_IMPORTER_VERSION3_UPGRADE_UPGRADE_TASKS_H_
#define TOOLS_DATA_IMPORTER_VERSION3_UPGRADE_UPGRADE_TASKS_H_

#include <memory>

#include "base/file_path.h"
#include "tools/data_importer/target_store/build_sequence.h"
#include "tools/data_importer/target_store/replacement_commit.h"
#include "tools/data_importer/version3_upgrade/upgrade_result.h"

namespace data_importer {

class CloudListCleanup;
class DatabaseHelper;
class ProgressRecord;

// The two tasks on the current generation's own databases in the data
// folder. Both are wrapped the same way: "UpdateProgress" = "10", the
// upgrader is created and runs its step, "UpdateProgress" = "100" whatever
// the outcome, the upgrader is destroyed. Neither reports failure in
// "DBCheck"; the answer says what was done (the driver keeps it as
// "UpgradeResult.json"), and the log says why.

// Both also fill the record's import report (upgrade_report.h): the tables
// copied, the rows read and those counted in the finished files afterwards,
// and the time of the stages "Copy" or "Upgrade" (the task itself) and
// "Count".

// Both work on the files of |data_folder|.

// "copyv8dbv2": encrypted version-3 copies of the plain version-2 databases.
// |stage_done| is told the steps of the commit that renames the copies into
// place ("CommitRecord", "ReplaceMusic", ...; replacement_commit.h) and
// "Copy" once the copies are in place and closed, before they are counted.
UpgradeResult RunVersion2Copy(const base::FilePath& data_folder,
                              ProgressRecord* record,
                              const BuildStageCallback& stage_done = nullptr);

// "updatevantu8": the clean-ups each new release runs on the version-3
// databases (play-queue conversion, cloud-list move).
UpgradeResult RunVersion3Upgrade(const base::FilePath& data_folder, ProgressRecord* record);

// The object behind both tasks. It owns one DatabaseHelper (its connection
// is the one the steps open) and the cloud-list cleanup; on destruction the
// cleanup goes first, then the DatabaseHelper, which closes its database.
// The version-2 files are only ever read.
class UpgradeTasks {
 public:
  explicit UpgradeTasks(const base::FilePath& data_folder);
  ~UpgradeTasks();
  UpgradeTasks(const UpgradeTasks&) = delete;
  UpgradeTasks& operator=(const UpgradeTasks&) = delete;

  // Copies "VTMusicV2.db" to "VTMusicV2.db.tmp", opens the copy with the
  // integrity check and the one-VACUUM repair, and encrypts it in place with
  // the version-3 key when it passed; then the same for "playlist.db" and
  // "playlist.db.tmp" on a fresh connection. The copies then replace
  // "VTMusicV3.db" and "playlistV3.db" in one commit, so that a killed run
  // leaves either both or neither (the next run completes a begun commit or
  // deletes the copies). A copy that fails its check stays plain and closed.
  // A version-2 file that is missing or cannot be copied leaves its
  // version-3 file as it was: no empty database is made in its place, so a
  // later run can still copy it. |step_done| is told the commit's steps.
  void CopyVersion2Databases(UpgradeResult* result, const CommitStepCallback& step_done = nullptr);

  // Opens an existing "VTMusicV3.db" with the key, checks it (one VACUUM to
  // repair), then runs the play-queue conversion and the cloud-list move on
  // the open connection. A file that does not open with the key, or stays
  // corrupt, is left as it is and neither clean-up runs.
  void UpgradeVersion3Databases(UpgradeResult* result);

 private:
  // Copies |from| over |to| in the data folder; on failure sets |*outcome|
  // and answers false.
  bool CopyVersion2File(const wchar_t* from, const wchar_t* to, CopyOutcome* outcome);
  // Opens the copy |name| the way OpenAndCheck does and encrypts it when it
  // passed.
  CopyOutcome EncryptCopy(const wchar_t* name);

  base::FilePath m_data_folder;
  std::unique_ptr<DatabaseHelper> m_db;
  std::unique_ptr<CloudListCleanup> m_cloud_list;
};

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_VERSION3_UPGRADE_UPGRADE_TASKS_H_
