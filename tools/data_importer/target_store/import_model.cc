#include "tools/data_importer/target_store/import_model.h"

#include "tools/data_importer/progress_record.h"

ImportModel::ImportModel(ProgressRecord* progress) : m_progress(progress) {}

ImportModel::~ImportModel() = default;

void ImportModel::ReportState(uint32_t bits) {
  if (m_progress)
    m_progress->ReportFailure(bits);
}

void ImportModel::AddSettings(const ImportedSettings& settings) {
  m_settings.push_back(settings);
}
