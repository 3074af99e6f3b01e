#ifndef TOOLS_DATA_IMPORTER_VERSION3_UPGRADE_UPGRADE_REPORT_H_
#define TOOLS_DATA_IMPORTER_VERSION3_UPGRADE_UPGRADE_REPORT_H_

#include <string>

#include "base/file_path.h"
#include "tools/data_importer/target_store/verify_database.h"
#include "tools/data_importer/version3_upgrade/upgrade_result.h"

namespace data_importer {

class ImportReport;

// What the version-2 tasks copied, in the terms of the import report: the
// databases read are its sources, their tables its source tables, and each
// table copied is a pair from the source table to the table of the same
// name. The rows read are counted in the source; the rows written are those
// the copy carried, and the finished encrypted file is counted afterwards,
// so a table that lost rows shows as a count that does not match. Rows
// whose encrypted copy is not in place (not made, left plain or withheld) or that the
// task dropped again count as dropped with their reason. Nothing here
// changes a database; every failure only shows in the report.

// The rows of each table of the plain database at |path|, counted before it
// is copied; not ok (no counts) when it is missing or cannot be read.
VerifiedDatabase CountPlainDatabase(const base::FilePath& path);

// Reports the copy of the plain database |source| (counted beforehand as
// |read|) to the version-3 database |target|, which ended with |outcome|.
void ReportCopiedDatabase(ImportReport* report,
                          const base::FilePath& source,
                          const VerifiedDatabase& read,
                          const base::FilePath& target,
                          CopyOutcome outcome);

// Reports the cloud tables the upgrade of the version-3 databases in
// |data_folder| moved from "VTMusicV3.db" to "playlistV3.db".
void ReportMovedTables(ImportReport* report,
                       const base::FilePath& data_folder,
                       const UpgradeResult& result);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_VERSION3_UPGRADE_UPGRADE_REPORT_H_
