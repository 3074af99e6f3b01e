#include "tools/vantu_import/host_options.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

#include "base/file_path.h"
#include "base/file_util.h"
#include "base/reg_key.h"

const char kHostUsage[] =
    "Usage: vantu-import [options]\n"
    "Runs the data importer once, as the player does, and reports the outcome.\n"
    "\n"
    "  --local-appdata DIR    per-user application-data folder (LOCALAPPDATA);\n"
    "                         the importer's data folder is DIR/VanTu8\n"
    "  --roaming-appdata DIR  roaming application-data folder (APPDATA)\n"
    "  --registry FILE        the user's registry: a hive (NTUSER.DAT) or a .reg\n"
    "                         export (VANTU_REGISTRY_FILE)\n"
    "  --profile DIR          a copied user profile: DIR/AppData/Local,\n"
    "                         DIR/AppData/Roaming and DIR/NTUSER.DAT; on a copied\n"
    "                         volume (.../Users/NAME) drive C is the folder above\n"
    "                         Users\n"
    "  --drive C=DIR          the folder standing for Windows drive C: (repeatable)\n"
    "  --i=DIR                folder of an older installation to import from\n"
    "  --demo[=7|6]           build a sample user profile in a temporary folder\n"
    "                         holding a generation-7 (default) or generation-6\n"
    "                         installation, and import it\n"
    "  --quiet                print only the outcome\n"
    "  --help                 this text\n"
    "\n"
    "Exit status: 0 when the run ended without failure bits, 1 when\n"
    "\"ImportState\" holds failure bits, 2 on bad usage.\n";

namespace {

// Matches "--name VALUE" and "--name=VALUE"; advances |i| past the value.
bool TakeValue(int argc, const char* const* argv, int* i, const char* name, std::string* value,
               bool* missing) {
  const char* arg = argv[*i];
  size_t length = std::strlen(name);
  if (std::strncmp(arg, name, length) != 0)
    return false;
  if (arg[length] == '=') {
    *value = arg + length + 1;
    return true;
  }
  if (arg[length] != '\0')
    return false;
  if (*i + 1 >= argc) {
    *missing = true;
    return true;
  }
  *value = argv[++*i];
  return true;
}

}  // namespace

bool ParseHostOptions(int argc, const char* const* argv, HostOptions* options, std::string* error) {
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    bool missing = false;
    if (arg == "--quiet") {
      options->quiet = true;
    } else if (arg == "--help" || arg == "-h") {
      options->help = true;
    } else if (arg == "--demo" || arg == "--demo=7") {
      options->demo = 7;
    } else if (arg == "--demo=6") {
      options->demo = 6;
    } else if (arg.rfind("--demo=", 0) == 0) {
      *error = "option --demo takes 7 or 6, not \"" + arg.substr(7) + "\"";
      return false;
    } else if (arg.rfind("--i=", 0) == 0) {
      options->source = arg.substr(4);
    } else if (TakeValue(argc, argv, &i, "--local-appdata", &options->local_appdata, &missing) ||
               TakeValue(argc, argv, &i, "--roaming-appdata", &options->roaming_appdata,
                         &missing) ||
               TakeValue(argc, argv, &i, "--registry", &options->registry, &missing) ||
               TakeValue(argc, argv, &i, "--profile", &options->profile, &missing)) {
      if (missing) {
        *error = "option " + arg + " needs a value";
        return false;
      }
    } else if (std::string drive; TakeValue(argc, argv, &i, "--drive", &drive, &missing)) {
      if (missing) {
        *error = "option " + arg + " needs a value";
        return false;
      }
      if (drive.size() < 3 || drive[1] != '=' || !std::isalpha(static_cast<unsigned char>(drive[0]))) {
        *error = "option --drive takes LETTER=DIR, not \"" + drive + "\"";
        return false;
      }
      drive[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(drive[0])));
      options->drives.push_back(drive);
    } else {
      *error = "unknown option " + arg;
      return false;
    }
  }
  return true;
}

bool ResolveProfileOptions(HostOptions* options, std::string* error) {
  bool drive_c = false;
  for (const std::string& drive : options->drives) {
    drive_c = drive_c || drive[0] == 'C';
    if (!base::DirectoryExists(base::FilePath::FromUTF8Unsafe(drive.substr(2)))) {
      *error = "option --drive: " + drive.substr(2) + " is not a folder";
      return false;
    }
  }
  if (!options->profile.empty()) {
    base::FilePath profile = base::FilePath::FromUTF8Unsafe(options->profile);
    if (options->registry.empty()) {
      base::FilePath hive = base::ResolvePathCase(profile.Append(L"NTUSER.DAT"));
      if (base::PathExists(hive))
        options->registry = hive.AsUTF8Unsafe();
    }
    // A profile copied with its volume: ".../Users/NAME" (any letter case).
    base::FilePath users = profile.DirName();
    std::string users_name = users.BaseName().AsUTF8Unsafe();
    for (char& c : users_name)
      c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (!drive_c && users_name == "users" && users.DirName() != users)
      options->drives.push_back("C=" + users.DirName().AsUTF8Unsafe());
  }
  if (!options->registry.empty()) {
    std::string reason;
    if (!base::CheckRegistryFile(base::FilePath::FromUTF8Unsafe(options->registry), &reason)) {
      *error = "registry file " + options->registry + ": " + reason;
      return false;
    }
  }
  return true;
}

void ApplyHostEnvironment(const HostOptions& options) {
  if (!options.profile.empty()) {
    setenv("LOCALAPPDATA", (options.profile + "/AppData/Local").c_str(), 1);
    setenv("APPDATA", (options.profile + "/AppData/Roaming").c_str(), 1);
    // REG_EXPAND_SZ values of the profile's registry refer to it.
    setenv("USERPROFILE", options.profile.c_str(), 1);
  }
  for (const std::string& drive : options.drives)
    setenv(("VANTU_DRIVE_" + drive.substr(0, 1)).c_str(), drive.substr(2).c_str(), 1);
  if (!options.local_appdata.empty())
    setenv("LOCALAPPDATA", options.local_appdata.c_str(), 1);
  if (!options.roaming_appdata.empty())
    setenv("APPDATA", options.roaming_appdata.c_str(), 1);
  if (!options.registry.empty())
    setenv("VANTU_REGISTRY_FILE", options.registry.c_str(), 1);
}
