#ifndef TOOLS_DATA_IMPORTER_ENVIRONMENT_ANSI_CODE_PAGE_H_
#define TOOLS_DATA_IMPORTER_ENVIRONMENT_ANSI_CODE_PAGE_H_

#include <cstdint>
#include <optional>

#include "base/file_path.h"
#include "base/windows_path.h"

namespace data_importer {

// The code page in which the user's 8-bit text files (settings files
// without a byte-order mark) were written: the ANSI code page of the
// Windows installation they come from.
//
// On Windows that is the system's own (CP_ACP) unless the host names one
// for a copied profile. For a copied Windows volume, in this order:
//  1. |option|, the code page the host was told (--code-page N), when the
//     conversion knows it;
//  2. the value "ACP" of the volume's system hive
//     ("Windows/System32/config/SYSTEM" under |drive_c|, the folder standing
//     for drive C), in the control set that "Select\Current" names
//     ("ControlSet001" for 1), key "Control\Nls\CodePage", when it is a
//     known code page;
//  3. 936, the code page of the player's own texts ("默认列表"): most of
//     generation 7's users ran Chinese Windows.
[[nodiscard]] uint32_t AnsiCodePageOfVolume(const base::FilePath& drive_c,
                                            std::optional<uint32_t> option);

// The rule above for a drive map: drive C as |drives| names it (none: the
// fallback).
[[nodiscard]] uint32_t AnsiCodePageOfDrives(const base::DriveMap& drives,
                                            std::optional<uint32_t> option);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_ENVIRONMENT_ANSI_CODE_PAGE_H_
