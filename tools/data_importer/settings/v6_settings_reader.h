#ifndef TOOLS_DATA_IMPORTER_SETTINGS_V6_SETTINGS_READER_H_
#define TOOLS_DATA_IMPORTER_SETTINGS_V6_SETTINGS_READER_H_

#include <optional>

#include "base/file_path.h"
#include "tools/data_importer/settings/imported_settings.h"

namespace data_importer {

// Reads the generation-6 settings file "VanTa.xml" (any letter case) of the
// program folder |program_folder| with the markup reader. Its root element
// is "VanTa"; the player kept its settings in child elements named after
// sections, each key either as a child element's text or as an attribute of
// the section:
//   <VanTa><Player Volume="80"><AutoPlay>1</AutoPlay></Player>
//          <PlayBack SFadeInTime="500"/><Network><ProxyType>2</ProxyType>
//   </Network></VanTa>
// "Volume", "AutoPlay", "SFadeInTime" and "SFadeOutTime" are looked up in
// "Player" and then in "PlayBack" (where both hold a key, "PlayBack" wins,
// as the later of two sources does in the generation-7 migration);
// "ProxyType" in "Network". An element wins over an attribute of the same
// name. Numbers are read as decimal integers (0 when they do not parse);
// AutoPlay is also true for the text "true".
//
// The record holds Volume, AutoPlay, MusicFadeIn, MusicFadeOut (MusicUserFade
// set when either fade is not 0) and ProxyType; every other field keeps its
// default. std::nullopt when the file is missing, unreadable or unparsable,
// or has no "VanTa" element. Nothing is logged.
std::optional<ImportedSettings> ReadV6Settings(const base::FilePath& program_folder);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_SETTINGS_V6_SETTINGS_READER_H_
