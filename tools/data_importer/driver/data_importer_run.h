#ifndef TOOLS_DATA_IMPORTER_DRIVER_DATA_IMPORTER_RUN_H_
#define TOOLS_DATA_IMPORTER_DRIVER_DATA_IMPORTER_RUN_H_

#include "tools/data_importer/environment/run_context.h"

namespace data_importer {

// The run behind the library's export, for programs that link the
// importer's core and find the machine's folders themselves (the host
// program, tests).

// Runs one whole import on |context|: opens the context's log, creates the
// data folder, decides and runs the task, and writes section "DBCheck" and
// the import report. Never throws.
void RunDataImporter(const RunContext& context);

// The context DataImporterMain runs on: the process environment
// (RunContextFromEnvironment) and the command line's switch "i", a Windows
// path mapped through the context's drives.
RunContext RunContextOfProcess();

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_DRIVER_DATA_IMPORTER_RUN_H_
