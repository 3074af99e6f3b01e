#ifndef TOOLS_VANTU_IMPORT_HOST_OPTIONS_H_
#define TOOLS_VANTU_IMPORT_HOST_OPTIONS_H_

#include <string>
#include <vector>

// Options of the host program. Every folder option only sets an environment
// variable of the run; "--i=DIR" is left on the process command line, where
// the importer reads it as the player's switch ("--i DIR" is turned into
// that form, see NormalisedSourceArguments).
struct HostOptions {
  std::string local_appdata;    // --local-appdata DIR -> LOCALAPPDATA
  std::string roaming_appdata;  // --roaming-appdata DIR -> APPDATA
  std::string registry;         // --registry FILE -> VANTU_REGISTRY_FILE
  std::string profile;          // --profile DIR: DIR/AppData/{Local,Roaming}
  std::string source;           // --i=DIR or --i DIR
  bool source_given = false;
  // --drive C=DIR (repeatable): the folder standing for a Windows drive,
  // as "C=DIR" -> VANTU_DRIVE_C.
  std::vector<std::string> drives;
  bool quiet = false;    // the verdict line alone
  bool verbose = false;  // "DBCheck" keys, per-table figures, the log on stderr
  bool json = false;     // the report on standard output instead of text
  bool version = false;
  bool help = false;
  // --demo[=GENERATION]: 0 no demo, else the generation of the sample
  // installation (7 by default, 6 on request), or 8 for the current
  // generation's own databases of version |demo_version| (--demo=v2, v3).
  int demo = 0;
  int demo_version = 0;
  bool dry_run = false;  // import into a temporary copy of the data folder
  bool keep = false;     // keep the demo profile and the dry run's folder
};

// Parses argv. Answers false and sets |error| for an unknown option, a
// missing value, an empty one or a demo generation other than 6 or 7.
// Options take their value as "--opt DIR" or "--opt=DIR".
bool ParseHostOptions(int argc, const char* const* argv, HostOptions* options, std::string* error);

// Checks that every folder option but --i names an existing folder and
// --registry an existing file, before anything is created. Answers false with |error|
// set to one line naming the option, the path and the system's reason.
// A --profile must hold "AppData/Local", where the data folder lies.
bool CheckHostPaths(const HostOptions& options, std::string* error);

// Checks that --i names an existing folder, a Windows path ("E:\\Old")
// through the folder that stands for its drive: call it once the drive
// options are in the environment (ApplyHostEnvironment).
bool CheckSourceFolder(const HostOptions& options, std::string* error);

// argv with "--i DIR" written as "--i=DIR", the form the importer reads
// from the process command line; empty when argv needs no change.
std::vector<std::string> NormalisedSourceArguments(int argc, const char* const* argv);

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
