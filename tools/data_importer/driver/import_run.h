#ifndef TOOLS_DATA_IMPORTER_DRIVER_IMPORT_RUN_H_
#define TOOLS_DATA_IMPORTER_DRIVER_IMPORT_RUN_H_

#include "tools/data_importer/target_store/build_sequence.h"

#include "tools/data_importer/environment/run_context.h"

namespace data_importer {

class ProgressRecord;

// Imports one earlier generation, chosen by the record's import kind, into
// new version-3 databases: creates the import model with the record, picks
// the exporter for the kind, asks it for its database path, logs its
// summary, runs its export, and runs the build sequence only when the export
// returned 0; then writes "ImportEnd". A kind without an exporter imports
// nothing. The exporter reads the machine through |context|, the build
// writes into its data folder. |stage_done| is handed to the build sequence.
void RunImport(const RunContext& context,
               ProgressRecord* record,
               const BuildStageCallback& stage_done = nullptr);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_DRIVER_IMPORT_RUN_H_
