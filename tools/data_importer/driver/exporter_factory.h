#ifndef TOOLS_DATA_IMPORTER_DRIVER_EXPORTER_FACTORY_H_
#define TOOLS_DATA_IMPORTER_DRIVER_EXPORTER_FACTORY_H_

#include <memory>

#include "tools/data_importer/source_readers/data_exporter.h"
#include "tools/data_importer/environment/run_context.h"

namespace data_importer {

class ImportModel;

// The exporter for an import kind (1 2008 edition, 2 generation 6,
// 3 generation 7, 4 current generation), reading the machine through
// |context|, which outlives it. A kind whose reader is not part of
// this library gets one that reports state 1 and imports nothing.
std::unique_ptr<DataExporter> CreateExporter(const RunContext& context,
                                             int import_kind,
                                             ImportModel* model);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_DRIVER_EXPORTER_FACTORY_H_
