#include "tools/data_importer/driver/task_decision.h"

#include <cwchar>
#include <cwctype>

#include "base/file_util.h"
#include "base/reg_key.h"
#include "base/utf_string_conversions.h"
#include "tools/data_importer/environment/installation_lookup.h"

namespace data_importer {

namespace {

bool ExistsIn(const base::FilePath& folder, const wchar_t* name) {
  return !folder.empty() && base::PathExists(folder.Append(name));
}

// Copies every "VTLibrary*.db" of |source| into |target| under its own name.
void CopyLibraryFiles(const base::FilePath& source, const base::FilePath& target) {
  base::FileEnumerator files(source, L"VTLibrary*.db");
  for (base::FilePath file = files.Next(); !file.empty(); file = files.Next())
    // A file that cannot be copied is missing from the import; the task
    // stays the same.
    (void)base::CopyFile(file, target.Append(file.BaseName()));
}

// The rules, first match wins, over what |search| found.
std::wstring DecideFrom(const TaskSearch& search,
                        const base::FilePath& data_folder,
                        const base::FilePath& source_folder) {
  const auto& files = search.data_folder_files;
  if (files[0].second || files[1].second)
    return kTaskUpgradeVersion3;
  if (files[2].second)
    return kTaskCopyVersion2;
  if (files[3].second || files[4].second)
    return kTaskImportCurrent;
  if (search.generation7_found)
    return kTaskImportGeneration7;
  if (search.generation6.exists)
    return kTaskImportGeneration6;
  if (ExistsIn(source_folder, L"VTData.db")) {
    // A file that cannot be copied is missing from the import; the task
    // stays the same.
    (void)base::CopyFile(source_folder.Append(L"VTData.db"), data_folder.Append(L"VT6Data.db"));
    return kTaskImportGeneration6;
  }
  if (ExistsIn(source_folder, L"VTLibrary.db")) {
    CopyLibraryFiles(source_folder, data_folder);
    return kTaskImportGeneration6;
  }
  if (search.edition2008.exists)
    return kTaskImport2008;
  if (!FindGeneration6ProgramByShortcut().empty())
    return kTaskImportGeneration6;
  return std::wstring();
}

}  // namespace

std::wstring DecideTask(const RunContext& context) {
  TaskSearch search;
  return DecideTask(context, &search);
}

std::wstring DecideTask(const RunContext& context, TaskSearch* search) {
  const base::FilePath& data_folder = context.m_data_folder;
  const base::FilePath& source_folder = context.m_source_folder;
  *search = TaskSearch();
  search->registry_file = context.m_registry_file;
  std::string reason;
  search->registry_readable =
      !context.m_registry_file.empty() && base::CheckRegistryFile(context.m_registry_file, &reason);
  for (const wchar_t* name : {importer_names::kMusicDatabaseV3, importer_names::kPlaylistDatabaseV3,
                              importer_names::kMusicDatabaseV2, L"VTMusic.db", L"vantu.db"})
    search->data_folder_files.emplace_back(name, ExistsIn(data_folder, name));
  const base::FilePath& roaming = context.m_roaming_app_data;
  if (!roaming.empty()) {
    search->generation7_database =
        base::ResolvePathCase(roaming.Append(L"VanTu7").Append(L"VTData.db"));
    search->generation7_found = base::PathExists(search->generation7_database);
  }
  search->generation6 = LookUpRegistryPath(context, L"Software\\VanTa6", L"AppFileName");
  search->edition2008 = LookUpRegistryPath(context, L"Software\\VanTa", L"AppFileName");
  search->source_has_databases =
      ExistsIn(source_folder, L"VTData.db") || ExistsIn(source_folder, L"VTLibrary.db");
  search->task = DecideFrom(*search, data_folder, source_folder);
  return search->task;
}

namespace {

std::string U8(const std::wstring& text) {
  return base::WideToUTF8(text);
}

std::string U8(const base::FilePath& path) {
  return path.AsUTF8Unsafe();
}

// The Windows drive letter |path| starts with, 0 for none.
wchar_t DriveOf(const std::wstring& path) {
  if (path.size() < 2 || path[1] != L':' || !iswalpha(path[0]))
    return 0;
  return static_cast<wchar_t>(towupper(path[0]));
}

// "generation 6: registry value HKEY_CURRENT_USER\...\AppFileName = "..."
// expands to "..." -> /local/path (found)".
std::string DescribeLookup(const char* generation, const RegistryPathLookup& lookup) {
  std::string line = std::string(generation) + ": registry value HKEY_CURRENT_USER\\" +
                     U8(lookup.key) + "\\" + U8(lookup.value_name);
  if (!lookup.value_found)
    return line + " not set";
  line += " = \"" + U8(lookup.text) + "\"";
  if (lookup.expanded != lookup.text)
    line += " expands to \"" + U8(lookup.expanded) + "\"";
  if (lookup.local.empty()) {
    wchar_t drive = DriveOf(lookup.expanded);
    if (drive)
      return line + " -> no folder stands for drive " + U8(std::wstring(1, drive)) + ":";
    return line + " -> not a path of this machine";
  }
  return line + " -> " + U8(lookup.local) + (lookup.exists ? " (found)" : " (not found)");
}

const char* GenerationOfTask(const std::wstring& task) {
  if (IsTask(task, kTaskImportGeneration7))
    return "generation 7";
  if (IsTask(task, kTaskImportGeneration6))
    return "generation 6";
  if (IsTask(task, kTaskImport2008))
    return "the 2008 edition";
  return nullptr;
}

// Windows has a registry of the process's user; other systems none.
#if defined(_WIN32)
constexpr bool kSystemHasRegistry = true;
#else
constexpr bool kSystemHasRegistry = false;
#endif

}  // namespace

base::Value DescribeTaskSearch(const RunContext& context, const TaskSearch& search) {
  base::Value lines = base::Value::array();
  if (search.registry_file.empty() && RegistryKnown(context) && kSystemHasRegistry)
    lines.push_back("registry: HKEY_CURRENT_USER of the user running the import");
  else if (search.registry_file.empty())
    lines.push_back("registry: none given");
  else if (!search.registry_readable)
    lines.push_back("registry: " + U8(search.registry_file) +
                    " (neither a readable hive nor a .reg export)");
  else
    lines.push_back("registry: " + U8(search.registry_file));

  std::string held;
  for (const auto& [name, found] : search.data_folder_files) {
    if (found)
      held += (held.empty() ? "" : ", ") + U8(name);
  }
  lines.push_back("data folder " + U8(context.m_data_folder) + ": " +
                  (held.empty() ? "no databases of this generation" : "holds " + held));
  if (search.generation7_database.empty()) {
    lines.push_back("generation 7: no roaming application-data folder to look in");
  } else {
    lines.push_back("generation 7: " + U8(search.generation7_database) +
                    (search.generation7_found ? " (found)" : " (not found)"));
  }
  lines.push_back(DescribeLookup("generation 6", search.generation6));
  if (!context.m_source_folder.empty()) {
    lines.push_back("source folder " + U8(context.m_source_folder) + ": " +
                    (search.source_has_databases ? "generation-6 databases found"
                                                 : "no VTData.db or VTLibrary.db"));
  }
  lines.push_back(DescribeLookup("the 2008 edition", search.edition2008));

  // Installations found but not taken, and why.
  const char* chosen = GenerationOfTask(search.task);
  std::string rule;
  if (search.task.empty() || ImportKindOfTask(search.task) == importer_names::kKindCurrent ||
      !chosen) {
    rule = "the data folder already holds databases of this generation";
  } else {
    rule = std::string(chosen) + " comes first: one installation is imported per run";
  }
  base::Value passed_over = base::Value::array();
  auto pass_over = [&](const char* generation, const base::FilePath& path) {
    if (chosen && std::string(chosen) == generation)
      return;
    passed_over.push_back({{"generation", generation}, {"path", U8(path)}, {"rule", rule}});
  };
  if (search.generation7_found)
    pass_over("generation 7", search.generation7_database);
  if (search.generation6.exists)
    pass_over("generation 6", search.generation6.local);
  if (search.edition2008.exists)
    pass_over("the 2008 edition", search.edition2008.local);

  base::Value unreachable = base::Value::array();
  for (const auto& [generation, lookup] : {std::pair{"generation 6", &search.generation6},
                                           std::pair{"the 2008 edition", &search.edition2008}}) {
    if (!lookup->value_found || lookup->exists)
      continue;
    wchar_t drive = DriveOf(lookup->expanded);
    unreachable.push_back({{"generation", generation},
                           {"value", U8(lookup->text)},
                           {"expanded", U8(lookup->expanded)},
                           {"tried", U8(lookup->local)},
                           {"drive", drive ? U8(std::wstring(1, drive)) : std::string()}});
  }
  return {{"lines", lines}, {"passed_over", passed_over}, {"unreachable", unreachable}};
}

}  // namespace data_importer
