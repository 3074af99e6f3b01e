#ifndef TOOLS_DATA_IMPORTER_ENVIRONMENT_INSTALLATION_LOOKUP_H_
#define TOOLS_DATA_IMPORTER_ENVIRONMENT_INSTALLATION_LOOKUP_H_

#include <string>

#include "base/file_path.h"
#include "tools/data_importer/environment/run_context.h"

namespace data_importer {

// Where earlier generations of the player left their data, read from the
// user's registry (RunContext::m_registry_file) and turned into paths of
// this machine through the context's folders and drive map.

// What one registry path value led to, step by step, so that a run can say
// what it looked for and where.
struct RegistryPathLookup {
  std::wstring key;         // e.g. L"Software\\VanTa6"
  std::wstring value_name;  // e.g. L"AppFileName"
  bool value_found = false;
  std::wstring text;      // the value as stored
  std::wstring expanded;  // "%NAME%" references replaced (== text without any)
  // The path of this machine it names; empty when its drive has no folder
  // (or no value was found).
  base::FilePath local;
  bool exists = false;
};

// Whether the run has a registry to read: a registry file, or the process's
// own when it is the user's (RunContext::m_own_registry).
[[nodiscard]] bool RegistryKnown(const RunContext& context);

// Looks up the path in string value |value_name| of key |subkey|: expands
// its references (ExpandWindowsVariables), maps
// the drive letter, and checks that the path exists. A path under
// "<drive>:\Program Files\" that does not exist is looked for under
// "Program Files (x86)" too, where Windows puts a 32-bit program named
// under %ProgramFiles%.
RegistryPathLookup LookUpRegistryPath(const RunContext& context,
                                      const std::wstring& subkey,
                                      const std::wstring& value_name);

// |text| with its "%NAME%" references replaced: USERPROFILE, APPDATA and
// LOCALAPPDATA by the context's folders, then the context's variables, then
// the folders every Windows installation has (SystemDrive "C:", SystemRoot
// and windir "C:\Windows", ProgramFiles and ProgramW6432 "C:\Program Files",
// ProgramFiles(x86) "C:\Program Files (x86)"). Unknown names stay.
std::wstring ExpandWindowsVariables(const RunContext& context, const std::wstring& text);

// The string value |value_name| of key |subkey| in the user's registry, as
// stored; empty when the key or the value is missing.
std::wstring ReadRegistryString(const RunContext& context,
                                const std::wstring& subkey,
                                const std::wstring& value_name);

// The local path LookUpRegistryPath finds (whether or not it exists).
base::FilePath ReadRegistryPath(const RunContext& context,
                                const std::wstring& subkey,
                                const std::wstring& value_name);

// The generation-6 program path, "AppFileName" of "Software\VanTa6".
base::FilePath GetGeneration6ProgramPath(const RunContext& context);

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

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_ENVIRONMENT_INSTALLATION_LOOKUP_H_
