// Runs the generation-6 reader over arbitrary bytes as its database: the
// bytes become the work copy "VT6Data.db" of a scratch data folder, which
// the reader opens with repair and reads into an import model.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "base/environment.h"
#include "base/file_util.h"
#include "base/path_service.h"
#include "fuzz/fuzz_scratch.h"
#include "tools/data_importer/environment/run_context.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/source_readers/v6_data_exporter/v6_data_exporter.h"

using namespace data_importer;  // the importer under use

namespace {
base::FilePath g_data_folder;
base::FilePath g_root;
RunContext g_context;
}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
  (void)base::SetEnvironmentString("VANTU_LOG_LEVEL", L"5");  // fails only without memory
  base::FilePath root = FuzzScratchPath("vantu-v6-fuzz");
  SetLocalAppData(root, &g_context);
  g_context.m_roaming_app_data = root.Append(L"roaming");
  g_context.m_registry_file = root.Append(L"none.reg");
  g_data_folder = g_context.m_data_folder;
  g_root = root;
  // The scratch folder goes with the process.
  std::atexit([] { (void)base::DeleteFile(g_root, true); });
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!base::DeleteFile(g_data_folder, true) || !base::CreateDirectory(g_data_folder))
    return 0;
  base::FilePath work = g_data_folder.Append(L"VT6Data.db");
  if (!base::WriteFile(work, std::string(reinterpret_cast<const char*>(data), size)))
    return 0;
  // The record is not initialised: without a settings file it writes no
  // "DBCheck" keys, which have fuzz targets of their own, and the reader runs
  // several times faster.
  ProgressRecord record;
  ImportModel model(&record);
  V6DataExporter exporter(g_context, &model);
  (void)exporter.ExportData();  // every outcome is allowed; crashes are not
  return 0;
}
