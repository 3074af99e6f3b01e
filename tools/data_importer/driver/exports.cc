// The shared library's only export, DataImporterMain, is defined in the core
// library (data_importer_main.cc) and kept by the linker's whole-archive
// option; this file exists so that the shared library has a source.
