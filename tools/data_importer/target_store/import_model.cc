#include "tools/data_importer/target_store/import_model.h"

#include "tools/data_importer/run_record/import_report.h"
#include "tools/data_importer/run_record/progress_record.h"

namespace data_importer {

ImportModel::ImportModel(ProgressRecord* progress) : m_progress(progress) {}

ImportModel::~ImportModel() = default;

void ImportModel::ReportState(uint32_t bits) {
  if (m_progress)
    m_progress->ReportFailure(bits);
}

ImportReport* ImportModel::report() {
  if (m_progress)
    return m_progress->report();
  if (!m_own_report)
    m_own_report = std::make_unique<ImportReport>();
  return m_own_report.get();
}

void ImportModel::AddSettings(const ImportedSettings& settings) {
  m_settings.push_back(settings);
}

}  // namespace data_importer
