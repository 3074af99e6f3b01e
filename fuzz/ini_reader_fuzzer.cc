// Feeds arbitrary bytes to the INI reader as a file's contents and reads a
// few keys, with and without case folding.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "base/code_page.h"
#include "tools/data_importer/settings/ini_reader.h"

using namespace data_importer;  // the importer under use

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  IniReader reader(base::kCodePageSimplifiedChinese);
  reader.ParseData(bytes, size % 2 == 0);
  reader.KeyExists(L"", L"");
  reader.ReadString(L"MainPlayList", L"PlayMode", L"3");
  reader.ReadInt(L"a", L"b", -1);
  reader.ReadBool(L"A", L"B", true);
  return 0;
}
