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
#include "tools/data_importer/environment/ansi_code_page.h"

using namespace data_importer;  // the importer under use

namespace {

// Sets one option; answers false with |error| for a value it refuses.
using OptionSetter = bool (*)(const std::string& value, HostOptions* options, std::string* error);

template <bool HostOptions::*kField>
bool SetFlag(const std::string&, HostOptions* options, std::string*) {
  options->*kField = true;
  return true;
}

template <std::string HostOptions::*kField>
bool SetPath(const std::string& value, HostOptions* options, std::string*) {
  options->*kField = value;
  return true;
}

bool SetSource(const std::string& value, HostOptions* options, std::string*) {
  options->source = value;
  options->source_given = true;
  return true;
}

bool SetDrive(const std::string& value, HostOptions* options, std::string* error) {
  if (value.size() < 3 || value[1] != '=' || !std::isalpha(static_cast<unsigned char>(value[0]))) {
    *error = "option --drive takes LETTER=DIR, not \"" + value + "\"";
    return false;
  }
  std::string drive = value;
  drive[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(drive[0])));
  options->drives.push_back(drive);
  return true;
}

bool SetCodePage(const std::string& value, HostOptions* options, std::string* error) {
  uint32_t number = 0;
  bool digits = !value.empty() && value.size() <= 5 &&
                value.find_first_not_of("0123456789") == std::string::npos;
  if (digits)
    number = static_cast<uint32_t>(std::stoul(value));
  if (!digits || number == 0) {
    *error = "option --code-page takes a Windows code page number (936, 1252, ...), not \"" +
             value + "\"";
    return false;
  }
  options->code_page = number;
  return true;
}

bool SetDemo(const std::string& value, HostOptions* options, std::string* error) {
  if (value.empty() || value == "7") {
    options->demo = 7;
  } else if (value == "6") {
    options->demo = 6;
  } else if (value == "v1" || value == "v2" || value == "v3") {
    options->demo = 8;
    options->demo_version = value.back() - '0';
  } else {
    *error = "option --demo takes 7, 6, v1, v2 or v3, not \"" + value + "\"";
    return false;
  }
  return true;
}

// How an option takes its value.
enum class ValueForm {
  kNone,      // "--name"
  kRequired,  // "--name VALUE" or "--name=VALUE", not empty
  kOptional,  // "--name" or "--name=VALUE"
};

struct OptionEntry {
  HostOption option;
  ValueForm form;
  OptionSetter set;
};

// Every option of the program, in the order --help and README list them.
const OptionEntry kOptionTable[] = {
    {{"--local-appdata", "DIR",
      "the per-user application-data folder; the importer's data folder is DIR/VanTu8"},
     ValueForm::kRequired,
     SetPath<&HostOptions::local_appdata>},
    {{"--roaming-appdata", "DIR", "the roaming application-data folder (generation 7 lives in it)"},
     ValueForm::kRequired,
     SetPath<&HostOptions::roaming_appdata>},
    {{"--registry", "FILE", "the user's registry: a hive (NTUSER.DAT) or a .reg export"},
     ValueForm::kRequired,
     SetPath<&HostOptions::registry>},
    {{"--profile", "DIR",
      "a copied user profile: DIR/AppData/Local, DIR/AppData/Roaming and DIR/NTUSER.DAT (or "
      "the Windows XP folders Local Settings/Application Data and Application Data); on a "
      "copied volume (.../Users/NAME or .../Documents and Settings/NAME) drive C is the "
      "folder above"},
     ValueForm::kRequired,
     SetPath<&HostOptions::profile>},
    {{"--drive", "LETTER=DIR", "the folder standing for a Windows drive (repeatable)"},
     ValueForm::kRequired,
     SetDrive},
    {{"--i", "DIR",
      "the folder of an older installation to import from, as the player's switch --i=DIR (a "
      "Windows path through --drive)"},
     ValueForm::kRequired,
     SetSource},
    {{"--code-page", "N",
      "the ANSI code page of the copied Windows installation, for its 8-bit settings files "
      "(default: the value in drive C's system hive, else 936)"},
     ValueForm::kRequired,
     SetCodePage},
    {{"--demo", "[=7|6|v1|v2|v3]",
      "build a sample user profile in a temporary folder and run the importer on it: a "
      "generation-7 (default) or generation-6 installation to import, the plain databases of "
      "the current generation's first releases to import again (v1), plain version-2 "
      "databases to copy (v2), or version-3 databases whose cloud lists are to be moved (v3)"},
     ValueForm::kOptional,
     SetDemo},
    {{"--dry-run", nullptr,
      "run the same import on a temporary copy of the data folder and print what would be "
      "imported; nothing else is changed"},
     ValueForm::kNone,
     SetFlag<&HostOptions::dry_run>},
    {{"--keep", nullptr, "keep the demo profile and the dry run's copy"},
     ValueForm::kNone,
     SetFlag<&HostOptions::keep>},
    {{"--quiet", nullptr, "print the verdict alone"},
     ValueForm::kNone,
     SetFlag<&HostOptions::quiet>},
    {{"--verbose", nullptr,
      "add where the run looked, the DBCheck values and per-table figures; copy the log to "
      "standard error"},
     ValueForm::kNone,
     SetFlag<&HostOptions::verbose>},
    {{"--json", nullptr, "print the import report instead of text"},
     ValueForm::kNone,
     SetFlag<&HostOptions::json>},
    {{"--version", nullptr, "print the version"}, ValueForm::kNone, SetFlag<&HostOptions::version>},
    {{"--help", nullptr, "print this text (also -h)"},
     ValueForm::kNone,
     SetFlag<&HostOptions::help>},
};

const HostExitStatus kExitTable[] = {
    {0, "imported (or nothing to do) without failure"},
    {1,
     "the import failed (ImportEnd 5, failure bits 1 or 8, a finished file that did not read "
     "back or holds other rows than were written), the data folder cannot be used, or no "
     "report was written"},
    {2, "bad usage: nothing was run or created"},
    {3,
     "finished, but a source was damaged (repaired by the compaction) or partly unreadable "
     "(failure bits 2, 4 or 16): some records may be missing; the verdict names the file"},
    {4,
     "nothing imported: an earlier installation is named (in the registry) but could not be "
     "reached; the verdict names the path tried and the --drive option that would map it"},
    {130,
     "stopped by Ctrl-C; the program says whether it stopped before anything was replaced "
     "or while replacing (the next run completes the replacement)"},
};

// Appends |text| to |out| in lines of at most |width| columns, each
// continuation line indented by |indent| spaces.
void AppendWrapped(const std::string& text,
                   size_t column,
                   size_t indent,
                   size_t width,
                   std::string* out) {
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find(' ', start);
    if (end == std::string::npos)
      end = text.size();
    std::string word = text.substr(start, end - start);
    if (column > indent && column + 1 + word.size() > width) {
      *out += "\n" + std::string(indent, ' ');
      column = indent;
    } else if (column > indent) {
      *out += ' ';
      ++column;
    }
    *out += word;
    column += word.size();
    start = end + 1;
  }
  *out += '\n';
}

}  // namespace

std::vector<HostOption> HostOptionTable() {
  std::vector<HostOption> options;
  for (const OptionEntry& entry : kOptionTable)
    options.push_back(entry.option);
  return options;
}

std::vector<HostExitStatus> HostExitStatusTable() {
  return std::vector<HostExitStatus>(std::begin(kExitTable), std::end(kExitTable));
}

std::string OptionSynopsis(const HostOption& option) {
  if (!option.value)
    return option.name;
  return std::string(option.name) + (option.value[0] == '[' ? "" : " ") + option.value;
}

std::string HostUsage() {
  constexpr size_t kIndent = 26;
  constexpr size_t kWidth = 79;
  std::string text =
      "Usage: vantu-import [options]\n"
      "Runs the data importer once, as the player does, and reports the outcome.\n"
      "\nOptions:\n";
  for (const OptionEntry& entry : kOptionTable) {
    std::string synopsis = "  " + OptionSynopsis(entry.option);
    text += synopsis;
    if (synopsis.size() + 1 > kIndent) {
      text += "\n" + std::string(kIndent, ' ');
    } else {
      text += std::string(kIndent - synopsis.size(), ' ');
    }
    AppendWrapped(entry.option.help, kIndent, kIndent, kWidth, &text);
  }
  text += "\nExit status:\n";
  for (const HostExitStatus& status : kExitTable) {
    std::string head = "  " + std::to_string(status.status) + "  ";
    text += head;
    AppendWrapped(status.meaning, head.size(), head.size(), kWidth, &text);
  }
  return text;
}

bool ParseHostOptions(int argc, const char* const* argv, HostOptions* options, std::string* error) {
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    if (arg == "-h")
      arg = "--help";
    const OptionEntry* match = nullptr;
    std::string value;
    bool has_value = false;
    for (const OptionEntry& entry : kOptionTable) {
      const std::string name = entry.option.name;
      if (arg == name) {
        match = &entry;
      } else if (entry.form != ValueForm::kNone &&
                 arg.compare(0, name.size() + 1, name + "=") == 0) {
        match = &entry;
        value = arg.substr(name.size() + 1);
        has_value = true;
      }
      if (match)
        break;
    }
    if (!match) {
      *error = "unknown option " + arg;
      return false;
    }
    const std::string name = match->option.name;
    if (match->form == ValueForm::kRequired && !has_value) {
      if (i + 1 >= argc) {
        *error = "option " + name + " needs a value";
        return false;
      }
      value = argv[++i];
      has_value = true;
    }
    if (match->form == ValueForm::kRequired && value.empty()) {
      *error = "option " + name + ": empty value";
      return false;
    }
    if (!match->set(value, options, error))
      return false;
  }
  return true;
}

ProfileFolders ProfileFoldersOf(const base::FilePath& profile) {
  ProfileFolders folders;
  base::FilePath xp_local =
      base::ResolvePathCase(profile.Append(L"Local Settings").Append(L"Application Data"));
  if (!base::DirectoryExists(base::ResolvePathCase(profile.Append(L"AppData").Append(L"Local"))) &&
      base::DirectoryExists(xp_local)) {
    folders.local = xp_local;
    folders.roaming = base::ResolvePathCase(profile.Append(L"Application Data"));
    folders.xp_layout = true;
    return folders;
  }
  folders.local = base::ResolvePathCase(profile.Append(L"AppData").Append(L"Local"));
  folders.roaming = base::ResolvePathCase(profile.Append(L"AppData").Append(L"Roaming"));
  return folders;
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
    // A profile copied with its volume: ".../Users/NAME", or
    // ".../Documents and Settings/NAME" before Windows Vista (any letter
    // case).
    base::FilePath users = profile.DirName();
    std::string users_name = users.BaseName().AsUTF8Unsafe();
    for (char& c : users_name)
      c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (!drive_c && (users_name == "users" || users_name == "documents and settings") &&
        users.DirName() != users)
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
bool CheckPath(const char* option,
               const std::string& path,
               bool want_folder,
               std::string* error,
               const base::FilePath& mapped = base::FilePath()) {
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
    ProfileFolders folders = ProfileFoldersOf(base::FilePath::FromUTF8Unsafe(options.profile));
    if (!CheckPath("--profile", folders.local.AsUTF8Unsafe(), true, error))
      return false;
  }
  return true;
}

bool CheckSourceFolder(const HostOptions& options, const RunContext& context, std::string* error) {
  if (options.source.empty())
    return true;
  base::FilePath mapped = base::MapWindowsPath(base::UTF8ToWide(options.source), context.m_drives);
  if (mapped.empty()) {
    *error = "--i " + options.source + ": no folder stands for its drive (see --drive)";
    return false;
  }
  return CheckPath("--i", options.source, true, error, mapped);
}

RunContext HostRunContext(const HostOptions& options) {
  RunContext context = RunContextFromEnvironment();
  context.m_variables.clear();
  if (!options.profile.empty()) {
    base::FilePath profile = base::FilePath::FromUTF8Unsafe(options.profile);
    ProfileFolders folders = ProfileFoldersOf(profile);
    context.m_local_app_data = folders.local;
    context.m_roaming_app_data = folders.roaming;
    context.m_user_profile = profile;
  }
  for (const std::string& drive : options.drives)
    context.m_drives[static_cast<wchar_t>(drive[0])] =
        base::FilePath::FromUTF8Unsafe(drive.substr(2));
  if (!options.local_appdata.empty())
    context.m_local_app_data = base::FilePath::FromUTF8Unsafe(options.local_appdata);
  if (!options.roaming_appdata.empty())
    context.m_roaming_app_data = base::FilePath::FromUTF8Unsafe(options.roaming_appdata);
  if (!options.registry.empty())
    context.m_registry_file = base::FilePath::FromUTF8Unsafe(options.registry);
  // A copied profile or folder: only a registry file given for it counts.
  if (!options.profile.empty() || !options.local_appdata.empty() ||
      !options.roaming_appdata.empty() || !options.drives.empty())
    context.m_own_registry = false;
  if (!options.source.empty())
    context.m_source_folder =
        base::MapWindowsPath(base::UTF8ToWide(options.source), context.m_drives);
  // A copied installation's code page: named, else its volume's; the
  // player's own machine keeps the one found for this process.
  if (options.code_page != 0 || !options.drives.empty() || !options.profile.empty()) {
    context.m_ansi_code_page = AnsiCodePageOfDrives(
        context.m_drives,
        options.code_page != 0 ? std::optional<uint32_t>(options.code_page) : std::nullopt);
  }
  SetLocalAppData(context.m_local_app_data, &context);
  if (options.verbose)
    context.m_log_to_stderr = true;
  return context;
}
