#ifndef TOOLS_VANTU_IMPORT_HOST_OPTIONS_H_
#define TOOLS_VANTU_IMPORT_HOST_OPTIONS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "tools/data_importer/environment/run_context.h"

// Options of the host program. The folder options make the run's context
// (HostRunContext); without them the run takes its folders from the
// environment, as the player's entry point does.
struct HostOptions {
  std::string local_appdata;    // --local-appdata DIR
  std::string roaming_appdata;  // --roaming-appdata DIR
  std::string registry;         // --registry FILE
  std::string profile;          // --profile DIR: DIR/AppData/{Local,Roaming}
  std::string source;           // --i=DIR or --i DIR, the player's switch "i"
  bool source_given = false;
  // --drive C=DIR (repeatable): the folder standing for a Windows drive,
  // as "C=DIR".
  std::vector<std::string> drives;
  // --code-page N: the ANSI code page of the copied Windows installation
  // (0: not given; its system hive or 936 decides).
  uint32_t code_page = 0;
  bool quiet = false;    // the verdict line alone
  bool verbose = false;  // "DBCheck" keys, per-table figures, the log on stderr
  bool json = false;     // the report on standard output instead of text
  bool version = false;
  bool help = false;
  // --demo[=GENERATION]: 0 no demo, else the generation of the sample
  // installation (7 by default, 6 on request), or 8 for the current
  // generation's own databases of version |demo_version| (--demo=v1, v2, v3).
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
// through the folder that |context| has for its drive.
bool CheckSourceFolder(const HostOptions& options,
                       const data_importer::RunContext& context,
                       std::string* error);

// Completes the options of a copied Windows profile and checks the files
// they name. With --profile DIR and no --registry, the profile's own
// registry hive "DIR/NTUSER.DAT" (any letter case) is used when present; on
// a copied volume (DIR is ".../Users/NAME") drive C defaults to the folder
// above "Users". Answers false with |error| set when a --drive value is not
// "LETTER=DIR" with an existing folder, or when the registry file cannot be
// read or is a damaged hive.
bool ResolveProfileOptions(HostOptions* options, std::string* error);

// The run's context: the process environment's (RunContextFromEnvironment,
// without its other variables: they are this machine's, not the copied
// profile's), then --profile, then the single-folder options, which win
// over it; the drives; --i mapped through them; --verbose copies the log to
// standard error.
data_importer::RunContext HostRunContext(const HostOptions& options);

// The local and roaming application-data folders of a copied profile:
// "AppData/Local" and "AppData/Roaming" (Windows Vista and later), or, when
// the profile has no "AppData/Local" but "Local Settings/Application Data",
// that and "Application Data" (Windows XP).
struct ProfileFolders {
  base::FilePath local;
  base::FilePath roaming;
  bool xp_layout = false;
};
ProfileFolders ProfileFoldersOf(const base::FilePath& profile);

// One option as --help and README list it.
struct HostOption {
  const char* name;   // "--profile"
  const char* value;  // "DIR", "[=7|6|v2|v3]"; null for a switch
  const char* help;
};

// One exit status and its meaning.
struct HostExitStatus {
  int status;
  const char* meaning;
};

// The one table of options the parser reads and --help and README print,
// and the table of exit statuses.
std::vector<HostOption> HostOptionTable();
std::vector<HostExitStatus> HostExitStatusTable();

// "--profile DIR", "--demo[=7|6|v1|v2|v3]", "--quiet".
std::string OptionSynopsis(const HostOption& option);

// The text of --help, from the two tables (lines of at most 79 columns).
std::string HostUsage();

#endif  // TOOLS_VANTU_IMPORT_HOST_OPTIONS_H_
