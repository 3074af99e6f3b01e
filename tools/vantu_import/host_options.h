#ifndef TOOLS_VANTU_IMPORT_HOST_OPTIONS_H_
#define TOOLS_VANTU_IMPORT_HOST_OPTIONS_H_

#include <string>
#include <vector>

// Options of the host program. Every folder option only sets an environment
// variable of the run; "--i=DIR" is left on the process command line, where
// the importer reads it as the player's switch.
struct HostOptions {
  std::string local_appdata;    // --local-appdata DIR -> LOCALAPPDATA
  std::string roaming_appdata;  // --roaming-appdata DIR -> APPDATA
  std::string registry;         // --registry FILE -> VANTU_REGISTRY_FILE
  std::string profile;          // --profile DIR: DIR/AppData/{Local,Roaming}
  std::string source;           // --i=DIR (informational)
  // --drive C=DIR (repeatable): the folder standing for a Windows drive,
  // as "C=DIR" -> VANTU_DRIVE_C.
  std::vector<std::string> drives;
  bool quiet = false;
  bool help = false;
  // --demo[=GENERATION]: 0 no demo, else the generation of the sample
  // installation (7 by default, 6 on request).
  int demo = 0;
};

// Parses argv. Answers false and sets |error| for an unknown option, a
// missing value or a demo generation other than 6 or 7. Options take their value as "--opt DIR" or "--opt=DIR".
bool ParseHostOptions(int argc, const char* const* argv, HostOptions* options, std::string* error);

// Completes the options of a copied Windows profile and checks the files
// they name. With --profile DIR and no --registry, the profile's own
// registry hive "DIR/NTUSER.DAT" (any letter case) is used when present; on
// a copied volume (DIR is ".../Users/NAME") drive C defaults to the folder
// above "Users". Answers false with |error| set when a --drive value is not
// "LETTER=DIR" with an existing folder, or when the registry file cannot be
// read or is a damaged hive.
bool ResolveProfileOptions(HostOptions* options, std::string* error);

// Sets the environment variables the options ask for: --profile first, then
// the single-folder options, which win over it.
void ApplyHostEnvironment(const HostOptions& options);

extern const char kHostUsage[];

#endif  // TOOLS_VANTU_IMPORT_HOST_OPTIONS_H_
