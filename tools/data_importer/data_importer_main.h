#ifndef TOOLS_DATA_IMPORTER_DATA_IMPORTER_MAIN_H_
#define TOOLS_DATA_IMPORTER_DATA_IMPORTER_MAIN_H_

// The library's only export. The player calls it once, on its own thread,
// after an install or an upgrade. It takes nothing and returns nothing: it
// reads the process command line, the registry and the file system, and
// reports progress and outcome in section "DBCheck" of "Vantu.ini" in the
// data folder. It never throws and never ends the process.
extern "C" void DataImporterMain();

#endif  // TOOLS_DATA_IMPORTER_DATA_IMPORTER_MAIN_H_
