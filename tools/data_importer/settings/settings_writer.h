#ifndef TOOLS_DATA_IMPORTER_SETTINGS_SETTINGS_WRITER_H_
#define TOOLS_DATA_IMPORTER_SETTINGS_SETTINGS_WRITER_H_

#include <string>
#include <utility>
#include <vector>

#include "base/file_path.h"
#include "tools/data_importer/run_record/importer_names.h"
#include "tools/data_importer/settings/imported_settings.h"

namespace data_importer {

// The keys and values one record writes, in field order. Keys are the field
// names, arrays expanded ("BandsGain0" ... "BandsGain9", "InnerHotKeys0" ...
// "InnerHotKeys11", "GlobalHotKeys0" ... "GlobalHotKeys11", "VstPlug1Default",
// "VstPlug1File", "VstPlug1Enable" ... "VstPlug6Enable"); "ShowLyric" only
// when the old file had it, "MainWindowX" and "MainWindowY" only when the
// position is set. Values: booleans "0"/"1", signed numbers in decimal,
// PlayMode and LyricsSolidBk as unsigned decimals, hot keys as the decimal
// 16-bit value, texts as they are.
std::vector<std::pair<std::wstring, std::wstring>> SettingsEntries(
    const ImportedSettings& settings);

// Writes every record of |records|, in order, into section "Settings" of the
// profile file |ini_path| through the profile-string writer, so a later
// record overwrites an earlier one key by key. No record writes nothing (the
// file gets no "Settings" section). Other sections, "DBCheck" among them,
// are left as they are. False when a key could not be written; the keys
// after it are still tried.
// An existing 8-bit file is written in |ansi_code_page|.
[[nodiscard]] bool WriteImportedSettings(const std::vector<ImportedSettings>& records,
                                         const base::FilePath& ini_path,
                                         uint32_t ansi_code_page);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_SETTINGS_SETTINGS_WRITER_H_
