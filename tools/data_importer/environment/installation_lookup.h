#ifndef TOOLS_DATA_IMPORTER_ENVIRONMENT_INSTALLATION_LOOKUP_H_
#define TOOLS_DATA_IMPORTER_ENVIRONMENT_INSTALLATION_LOOKUP_H_

#include <string>

#include "base/file_path.h"

// Where earlier generations of the player left their data.

// The string value |value_name| of key |subkey| in the current user's
// registry hive; empty when the key or the value is missing.
std::wstring ReadRegistryString(const std::wstring& subkey, const std::wstring& value_name);

// The path in string value |value_name| of key |subkey|, as a path of this
// machine (drive letters mapped, backslashes turned into separators: see
// base/windows_path.h); empty when missing or on an unmapped drive.
base::FilePath ReadRegistryPath(const std::wstring& subkey, const std::wstring& value_name);

// The generation-6 program path, "AppFileName" of "Software\VanTa6".
base::FilePath GetGeneration6ProgramPath();

// The generation-6 program found through the user's shortcuts (".lnk" files
// whose target is the generation-6 program, confirmed by its version
// information). Shortcuts are a Windows shell feature: on POSIX there are
// none to search and the answer is empty.
base::FilePath FindGeneration6ProgramByShortcut();

// The start-up registry step the player's modules run before any work
// (registry key "software\vantu\database_update", module "vantu.dll"). It
// records nothing the importer reads back; on POSIX there is no such module
// registration and the step does nothing.
void RunStartupRegistryStep();

#endif  // TOOLS_DATA_IMPORTER_ENVIRONMENT_INSTALLATION_LOOKUP_H_
