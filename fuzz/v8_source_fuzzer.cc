// Runs the re-import of an earlier release over arbitrary bytes as its two
// databases: the first four bytes (little-endian) give the length of
// "VTMusic.db", the rest after it is "vantu.db". Both are copied and read
// from a scratch data folder; the originals must come through unchanged.

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
#include "tools/data_importer/source_readers/v8_data_exporter/v8_data_exporter.h"

using namespace data_importer;  // the importer under use

namespace {
base::FilePath g_root;
base::FilePath g_data_folder;
RunContext g_context;
}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
  (void)base::SetEnvironmentString("VANTU_LOG_LEVEL", L"5");  // fails only without memory
  g_root = FuzzScratchPath("vantu-v8-fuzz");
  SetLocalAppData(g_root, &g_context);
  g_context.m_roaming_app_data = g_root.Append(L"roaming");
  g_context.m_registry_file = g_root.Append(L"none.reg");
  g_data_folder = g_context.m_data_folder;
  // The scratch folder goes with the process.
  std::atexit([] { (void)base::DeleteFile(g_root, true); });
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 4)
    return 0;
  size_t first =
      (size_t{data[0]} | size_t{data[1]} << 8 | size_t{data[2]} << 16 | size_t{data[3]} << 24) %
      (size - 3);
  const std::string music(reinterpret_cast<const char*>(data) + 4, first);
  const std::string lists(reinterpret_cast<const char*>(data) + 4 + first, size - 4 - first);
  if (!base::DeleteFile(g_data_folder, true) || !base::CreateDirectory(g_data_folder))
    return 0;
  const base::FilePath music_path = g_data_folder.Append(L"VTMusic.db");
  const base::FilePath list_path = g_data_folder.Append(L"vantu.db");
  if (!base::WriteFile(music_path, music) || !base::WriteFile(list_path, lists))
    return 0;
  ProgressRecord record;
  ImportModel model(&record);
  V8DataExporter exporter(g_context, &model);
  (void)exporter.ExportData();  // every outcome is allowed; crashes are not
  std::string after;
  if (!base::ReadFileToString(music_path, &after) || after != music ||
      !base::ReadFileToString(list_path, &after) || after != lists)
    std::abort();
  return 0;
}
