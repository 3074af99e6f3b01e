#ifndef TOOLS_DATA_IMPORTER_SETTINGS_V7_SETTINGS_MIGRATION_H_
#define TOOLS_DATA_IMPORTER_SETTINGS_V7_SETTINGS_MIGRATION_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/file_path.h"
#include "tools/data_importer/settings/imported_settings.h"

namespace data_importer {

// Reads the settings file "vantu.ini" (any letter case) of the generation-7
// folder |v7_folder| into one ImportedSettings record. std::nullopt when the
// file does not exist; otherwise a record, however little the file holds:
// absent keys keep their defaults, malformed numbers read as 0, a hot-key
// list of the wrong length is ignored as a whole. Section and key names are
// compared ignoring case. Nothing is logged and nothing is written.
//
// The old names are kept as generation 7 spelt them ("LyrciConfig",
// "PluginCofing", "SoftUpdataConfig", "DeleteOperarion"). Hot keys are only
// taken when the folder "SkinPic2012" exists beside the file (later
// releases of generation 7 stored them in the form converted here). A file
// in 8-bit text is read in |ansi_code_page|, the code page of the user's
// Windows.
std::optional<ImportedSettings> MigrateV7Settings(const base::FilePath& v7_folder,
                                                  uint32_t ansi_code_page);

// Copies the main window's position into |settings| when the generation-7
// reader found one: |found| set and neither coordinate -1.
void SetMainWindowPosition(bool found, int32_t x, int32_t y, ImportedSettings* settings);

// The conversions of old values, exposed for their tests.
// Old play mode (3, 4, 6, anything else) to the current one, with bit 31 set
// when |auto_shift|.
uint32_t ConvertPlayMode(int old_mode, bool auto_shift);
// A Windows colour 0x00BBGGRR to 0xFFRRGGBB.
uint32_t ColorRefToArgb(uint32_t color_ref);
// "255;65280" (colours 0x00BBGGRR) to "-65536,-16711936" (0xFFRRGGBB as
// signed decimals); empty pieces are skipped, no piece gives "".
std::wstring ConvertColorList(std::wstring_view old_list);
// An old hot key (virtual key in bits 16-23, modifier flags in the low byte)
// to the current one (flags in the high byte, virtual key in the low); the
// shift and alt flags (bits 0 and 2) change places.
uint16_t ConvertHotKey(int old_value);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_SETTINGS_V7_SETTINGS_MIGRATION_H_
