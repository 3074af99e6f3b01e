#include "tools/data_importer/environment/ansi_code_page.h"

#include <string>

#include "base/code_page.h"
#include "base/file_util.h"
#include "base/registry_hive.h"
#include "base/string_number_conversions.h"
#include "base/windows_path.h"

namespace data_importer {

namespace {

// The code page of the player's own texts, taken when nothing names one.
constexpr uint32_t kFallbackCodePage = base::kCodePageSimplifiedChinese;

// The ANSI code page recorded in the system hive |hive|; 0 when it names
// none.
uint32_t CodePageOfHive(const base::FilePath& hive) {
  uint32_t current = 0;
  if (!base::ReadHiveDword(hive, L"Select", L"Current", &current) || current == 0 || current > 999)
    return 0;
  // "ControlSet001" for 1.
  std::wstring number = std::to_wstring(current);
  number.insert(0, 3 - number.size(), L'0');
  base::RegistryStrings values;
  if (!base::ReadHiveKey(hive, L"ControlSet" + number + L"\\Control\\Nls\\CodePage", &values))
    return 0;
  auto acp = values.find(L"ACP");
  int code_page = 0;
  if (acp == values.end() || !base::StringToInt(acp->second.text, &code_page) || code_page <= 0)
    return 0;
  return static_cast<uint32_t>(code_page);
}

}  // namespace

uint32_t AnsiCodePageOfVolume(const base::FilePath& drive_c, std::optional<uint32_t> option) {
  if (option && base::IsKnownCodePage(*option))
    return *option;
  if (!drive_c.empty()) {
    const base::FilePath hive = base::ResolvePathCase(
        drive_c.Append(L"Windows").Append(L"System32").Append(L"config").Append(L"SYSTEM"));
    const uint32_t recorded = CodePageOfHive(hive);
    if (recorded != 0 && base::IsKnownCodePage(recorded))
      return recorded;
  }
  return kFallbackCodePage;
}

uint32_t AnsiCodePageOfDrives(const base::DriveMap& drives, std::optional<uint32_t> option) {
  auto c = drives.find(L'C');
  return AnsiCodePageOfVolume(c == drives.end() ? base::FilePath() : c->second, option);
}

}  // namespace data_importer
