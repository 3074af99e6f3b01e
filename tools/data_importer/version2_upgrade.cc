#include "tools/data_importer/version2_upgrade.h"

#include "tools/data_importer/progress_record.h"

// The copy-and-encrypt step and the version-3 clean-ups (play-queue
// conversion, cloud-list move) are carried by the upgrader, which is not part
// of this library yet: the wrapper reports its start and end so the player
// does not wait, and leaves the files as they are.

void RunVersion2Copy(ProgressRecord* record) {
  record->SetUpdateProgress(10);
  record->SetUpdateProgress(100);
}

void RunVersion3Upgrade(ProgressRecord* record) {
  record->SetUpdateProgress(10);
  record->SetUpdateProgress(100);
}
