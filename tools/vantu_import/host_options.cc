#include "tools/vantu_import/host_options.h"

#include <cstdlib>
#include <cstring>

const char kHostUsage[] =
    "Usage: vantu-import [options]\n"
    "Runs the data importer once, as the player does, and reports the outcome.\n"
    "\n"
    "  --local-appdata DIR    per-user application-data folder (LOCALAPPDATA);\n"
    "                         the importer's data folder is DIR/VanTu8\n"
    "  --roaming-appdata DIR  roaming application-data folder (APPDATA)\n"
    "  --registry FILE        registry export file (VANTU_REGISTRY_FILE)\n"
    "  --profile DIR          a copied user profile: DIR/AppData/Local and\n"
    "                         DIR/AppData/Roaming\n"
    "  --i=DIR                folder of an older installation to import from\n"
    "  --demo                 build a sample user profile in a temporary folder\n"
    "                         and import it\n"
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
    } else if (arg == "--demo") {
      options->demo = true;
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
    } else {
      *error = "unknown option " + arg;
      return false;
    }
  }
  return true;
}

void ApplyHostEnvironment(const HostOptions& options) {
  if (!options.profile.empty()) {
    setenv("LOCALAPPDATA", (options.profile + "/AppData/Local").c_str(), 1);
    setenv("APPDATA", (options.profile + "/AppData/Roaming").c_str(), 1);
  }
  if (!options.local_appdata.empty())
    setenv("LOCALAPPDATA", options.local_appdata.c_str(), 1);
  if (!options.roaming_appdata.empty())
    setenv("APPDATA", options.roaming_appdata.c_str(), 1);
  if (!options.registry.empty())
    setenv("VANTU_REGISTRY_FILE", options.registry.c_str(), 1);
}
