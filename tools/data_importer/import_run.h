#ifndef TOOLS_DATA_IMPORTER_IMPORT_RUN_H_
#define TOOLS_DATA_IMPORTER_IMPORT_RUN_H_

class ProgressRecord;

// Imports one earlier generation, chosen by the record's import kind, into
// new version-3 databases: creates the import model with the record, picks
// the exporter for the kind, asks it for its database path, logs its
// summary, runs its export, and runs the build sequence only when the export
// returned 0; then writes "ImportEnd". A kind without an exporter imports
// nothing.
void RunImport(ProgressRecord* record);

#endif  // TOOLS_DATA_IMPORTER_IMPORT_RUN_H_
