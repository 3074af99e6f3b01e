#ifndef TOOLS_DATA_IMPORTER_SOURCE_READERS_VT2008_DATA_EXPORTER_VT2008_DATA_EXPORTER_H_
#define TOOLS_DATA_IMPORTER_SOURCE_READERS_VT2008_DATA_EXPORTER_VT2008_DATA_EXPORTER_H_

#include "tools/data_importer/source_readers/data_exporter.h"

namespace data_importer {

// The 2008 edition's reader. The edition is detected (its registry key), but
// its files ("CacheList.dat", "Library.xml", "VT2008LoginSave.bin") are not
// read yet: ExportData reports state 1 and imports nothing.
class VT2008DataExporter : public DataExporter {
 public:
  VT2008DataExporter(const RunContext& context, ImportModel* model);
  ~VT2008DataExporter() override;

  [[nodiscard]] ExportResult ExportData() override;
  // Logs "[VT2008DataExporter::Dump] Assert(false) " at level 4 and answers
  // an empty text.
  std::wstring Dump(const base::FilePath& path) override;
  // An empty path.
  base::FilePath GetDatabasePath() override;
};

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_SOURCE_READERS_VT2008_DATA_EXPORTER_VT2008_DATA_EXPORTER_H_
