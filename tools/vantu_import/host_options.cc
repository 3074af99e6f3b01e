#include "tools/vantu_import/host_options.h"

#include <errno.h>

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "base/file_path.h"
#include "base/environment.h"
#include "base/file_util.h"
#include "base/path_service.h"
#include "base/reg_key.h"
#include "base/utf_string_conversions.h"
#include "base/windows_path.h"

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
    "  --demo[=7|6|v2|v3]     build a sample user profile in a temporary folder\n"
    "                         and run the importer on it: a generation-7\n"
    "                         (default) or generation-6 installation to import,\n"
    "                         plain version-2 databases to copy (v2), or\n"
    "                         version-3 databases whose cloud lists are to be\n"
    "                         moved (v3)\n"
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

// Matches one of the options that take a path; |*value| is then the field
// that received it.
bool TakeFolderValue(int argc, const char* const* argv, int* i, HostOptions* options,
                     std::string** value, bool* missing) {
  const std::pair<const char*, std::string*> kOptions[] = {
      {"--i", &options->source},
      {"--local-appdata", &options->local_appdata},
      {"--roaming-appdata", &options->roaming_appdata},
      {"--registry", &options->registry},
      {"--profile", &options->profile},
  };
  for (const auto& [name, field] : kOptions) {
    if (TakeValue(argc, argv, i, name, field, missing)) {
      *value = field;
      return true;
    }
  }
  return false;
}

}  // namespace

bool ParseHostOptions(int argc, const char* const* argv, HostOptions* options, std::string* error) {
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    bool missing = false;
    std::string* value = nullptr;
    if (arg == "--quiet") {
      options->quiet = true;
    } else if (arg == "--verbose") {
      options->verbose = true;
    } else if (arg == "--json") {
      options->json = true;
    } else if (arg == "--version") {
      options->version = true;
    } else if (arg == "--help" || arg == "-h") {
      options->help = true;
    } else if (arg == "--demo" || arg == "--demo=7") {
      options->demo = 7;
    } else if (arg == "--demo=6") {
      options->demo = 6;
    } else if (arg == "--demo=v2" || arg == "--demo=v3") {
      options->demo = 8;
      options->demo_version = arg.back() - '0';
    } else if (arg.rfind("--demo=", 0) == 0) {
      *error = "option --demo takes 7, 6, v2 or v3, not \"" + arg.substr(7) + "\"";
      return false;
    } else if (arg == "--dry-run") {
      options->dry_run = true;
    } else if (arg == "--keep") {
      options->keep = true;
    } else if (TakeFolderValue(argc, argv, &i, options, &value, &missing)) {
      if (missing) {
        *error = "option " + arg + " needs a value";
        return false;
      }
      if (value->empty()) {
        *error = "option " + arg.substr(0, arg.find('=')) + ": empty value";
        return false;
      }
      if (value == &options->source)
        options->source_given = true;
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

namespace {

// Checks that |path| exists and is a folder (or, with |want_folder| false,
// not a folder); sets |error| to "--option PATH: reason".
bool CheckPath(const char* option, const std::string& path, bool want_folder,
               std::string* error, const base::FilePath& mapped = base::FilePath()) {
  if (path.empty())
    return true;
  // Letter case is resolved as the importer resolves it.
  base::FilePath resolved =
      base::ResolvePathCase(mapped.empty() ? base::FilePath::FromUTF8Unsafe(path) : mapped);
  base::FileInfo info;
  std::string reason;
  if (!base::GetFileInfo(resolved, &info))
    reason = base::SystemErrorText(base::GetLastSystemError());
  else if (want_folder && !info.is_directory)
    reason = std::strerror(ENOTDIR);
  else if (!want_folder && info.is_directory)
    reason = std::strerror(EISDIR);
  if (reason.empty())
    return true;
  *error = std::string(option) + " " + path + ": " + reason;
  return false;
}

}  // namespace

bool CheckHostPaths(const HostOptions& options, std::string* error) {
  if (!CheckPath("--profile", options.profile, true, error) ||
      !CheckPath("--local-appdata", options.local_appdata, true, error) ||
      !CheckPath("--roaming-appdata", options.roaming_appdata, true, error) ||
      !CheckPath("--registry", options.registry, false, error))
    return false;
  if (!options.profile.empty() && options.local_appdata.empty()) {
    std::string local = options.profile + "/AppData/Local";
    if (!CheckPath("--profile", local, true, error))
      return false;
  }
  return true;
}

bool CheckSourceFolder(const HostOptions& options, std::string* error) {
  if (options.source.empty())
    return true;
  base::FilePath mapped = base::MapWindowsPath(base::UTF8ToWide(options.source));
  if (mapped.empty()) {
    *error = "--i " + options.source + ": no folder stands for its drive (see --drive)";
    return false;
  }
  return CheckPath("--i", options.source, true, error, mapped);
}

std::vector<std::string> NormalisedSourceArguments(int argc, const char* const* argv) {
  std::vector<std::string> args;
  bool changed = false;
  for (int i = 0; i < argc; ++i) {
    if (i > 0 && std::strcmp(argv[i], "--i") == 0 && i + 1 < argc) {
      args.push_back(std::string("--i=") + argv[++i]);
      changed = true;
    } else {
      args.push_back(argv[i]);
    }
  }
  return changed ? args : std::vector<std::string>();
}

void ApplyHostEnvironment(const HostOptions& options) {
  // Names, and values in UTF-8 as the options hold them; a failure leaves
  // the variable as it was, which the run's outcome then shows.
  auto set = [](const std::string& name, const std::string& value) {
    (void)base::SetEnvironmentString(name, base::UTF8ToWide(value));
  };
  const std::string separator(1, static_cast<char>(base::FilePath::kSeparator));
  bool redirected = false;
  if (!options.profile.empty()) {
    set("LOCALAPPDATA", options.profile + separator + "AppData" + separator + "Local");
    set("APPDATA", options.profile + separator + "AppData" + separator + "Roaming");
    // REG_EXPAND_SZ values of the profile's registry refer to it.
    set("USERPROFILE", options.profile);
    redirected = true;
  }
  for (const std::string& drive : options.drives)
    set("VANTU_DRIVE_" + drive.substr(0, 1), drive.substr(2));
  if (!options.local_appdata.empty()) {
    set("LOCALAPPDATA", options.local_appdata);
    redirected = true;
  }
  if (!options.roaming_appdata.empty()) {
    set("APPDATA", options.roaming_appdata);
    redirected = true;
  }
  if (redirected)
    set(base::kFoldersFromEnvironment, "1");
  if (!options.registry.empty())
    set("VANTU_REGISTRY_FILE", options.registry);
  if (options.verbose)
    set("VANTU_LOG_STDERR", "1");
}
