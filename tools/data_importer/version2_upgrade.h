#ifndef TOOLS_DATA_IMPORTER_VERSION2_UPGRADE_H_
#define TOOLS_DATA_IMPORTER_VERSION2_UPGRADE_H_

class ProgressRecord;

// The two tasks on the current generation's own databases. Both are wrapped
// the same way: "UpdateProgress" = "10", the step, "UpdateProgress" = "100"
// whatever the step's outcome. Neither reports failure: the only trace is the
// files left behind.

// "copyv8dbv2": encrypted version-3 copies of the plain version-2 databases.
void RunVersion2Copy(ProgressRecord* record);

// "updatevantu8": the clean-ups each new release runs on the version-3
// music database.
void RunVersion3Upgrade(ProgressRecord* record);

#endif  // TOOLS_DATA_IMPORTER_VERSION2_UPGRADE_H_
