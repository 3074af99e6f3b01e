// Runs the generation-7 reader over arbitrary bytes as the user's
// "VTData.db": the summary reads the bytes where they lie, the reader copies
// them into a scratch data folder and reads the copy (with its repair and,
// past that, its salvage copy) into an import model.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "base/environment.h"
#include "base/file_util.h"
#include "fuzz/fuzz_scratch.h"
#include "tools/data_importer/environment/run_context.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/source_readers/v7_data_exporter/v7_data_exporter.h"

using namespace data_importer;  // the importer under use

namespace {
base::FilePath g_root;
RunContext g_context;
}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
  (void)base::SetEnvironmentString("VANTU_LOG_LEVEL", L"5");  // fails only without memory
  g_root = FuzzScratchPath("vantu-v7-fuzz");
  SetLocalAppData(g_root.Append(L"local"), &g_context);
  g_context.m_roaming_app_data = g_root.Append(L"roaming");
  g_context.m_registry_file = g_root.Append(L"none.reg");
  // The scratch folder goes with the process.
  std::atexit([] { (void)base::DeleteFile(g_root, true); });
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!base::DeleteFile(g_root, true))
    return 0;
  base::FilePath folder = g_root.Append(L"roaming").Append(L"Vantu7");
  if (!base::CreateDirectory(folder) || !base::CreateDirectory(g_context.m_data_folder))
    return 0;
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  base::FilePath source = folder.Append(L"VTData.db");
  if (!base::WriteFile(source, bytes))
    return 0;
  // The record is not initialised: without a settings file it writes no
  // "DBCheck" keys, and the reader runs several times faster.
  ProgressRecord record;
  ImportModel model(&record);
  V7DataExporter exporter(g_context, &model);
  (void)exporter.Dump(source);  // every outcome is allowed; crashes are not
  (void)exporter.ExportData();
  std::string after;
  // The user's file is only ever read.
  if (!base::ReadFileToString(source, &after) || after != bytes)
    std::abort();
  return 0;
}
