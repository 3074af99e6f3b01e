#include "tools/data_importer/environment/installation_lookup.h"

#include "base/file_util.h"
#include "base/reg_key.h"
#include "base/string_util.h"
#include "base/windows_path.h"

namespace data_importer {

namespace {

// The folders of a Windows installation on its system drive, by folded
// variable name.
bool FixedWindowsFolder(const std::wstring& folded, std::wstring* value) {
  static const struct {
    const wchar_t* name;
    const wchar_t* value;
  } kFolders[] = {
      {L"systemdrive", L"C:"},
      {L"systemroot", L"C:\\Windows"},
      {L"windir", L"C:\\Windows"},
      {L"programfiles", L"C:\\Program Files"},
      {L"programw6432", L"C:\\Program Files"},
      {L"programfiles(x86)", L"C:\\Program Files (x86)"},
  };
  for (const auto& folder : kFolders) {
    if (folded == folder.name) {
      *value = folder.value;
      return true;
    }
  }
  return false;
}

bool ContextVariable(const RunContext& context, const std::wstring& name, std::wstring* value) {
  std::wstring folded = base::ToLowerASCII(name);
  const base::FilePath* folder = nullptr;
  if (folded == L"userprofile")
    folder = &context.m_user_profile;
  else if (folded == L"appdata")
    folder = &context.m_roaming_app_data;
  else if (folded == L"localappdata")
    folder = &context.m_local_app_data;
  if (folder && !folder->empty()) {
    *value = folder->value();
    return true;
  }
  for (const auto& [variable, text] : context.m_variables) {
    if (base::ToLowerASCII(variable) == folded) {
      *value = text;
      return true;
    }
  }
  return FixedWindowsFolder(folded, value);
}

// "X:\Program Files\rest" as "X:\Program Files (x86)\rest"; empty for any
// other path.
std::wstring In32BitProgramFiles(const std::wstring& path) {
  const std::wstring kFolder = L":\\program files\\";
  std::wstring folded = base::ToLowerASCII(path);
  if (folded.size() <= 1 + kFolder.size() || folded.compare(1, kFolder.size(), kFolder) != 0)
    return std::wstring();
  return path.substr(0, 1) + L":\\Program Files (x86)\\" + path.substr(1 + kFolder.size());
}

}  // namespace

std::wstring ExpandWindowsVariables(const RunContext& context, const std::wstring& text) {
  return base::ExpandEnvironmentReferences(
      text, [&context](const std::wstring& name, std::wstring* value) {
        return ContextVariable(context, name, value);
      });
}

bool RegistryKnown(const RunContext& context) {
  return !context.m_registry_file.empty() || context.m_own_registry;
}

RegistryPathLookup LookUpRegistryPath(const RunContext& context,
                                      const std::wstring& subkey,
                                      const std::wstring& value_name) {
  RegistryPathLookup lookup;
  lookup.key = subkey;
  lookup.value_name = value_name;
  base::RegKey key;
  if (!RegistryKnown(context) || !key.Open(context.m_registry_file, subkey) ||
      !key.ReadValue(value_name, &lookup.text) || lookup.text.empty()) {
    return lookup;
  }
  lookup.value_found = true;
  // Installers write paths with references into plain strings (REG_SZ) as
  // well as into REG_EXPAND_SZ values; a path that still held "%NAME%"
  // could name no folder, so every value is expanded.
  lookup.expanded = ExpandWindowsVariables(context, lookup.text);
  lookup.local = base::MapWindowsPath(lookup.expanded, context.m_drives);
  lookup.exists = !lookup.local.empty() && base::PathExists(lookup.local);
  if (!lookup.exists) {
    std::wstring alternative = In32BitProgramFiles(lookup.expanded);
    base::FilePath local = base::MapWindowsPath(alternative, context.m_drives);
    if (!alternative.empty() && !local.empty() && base::PathExists(local)) {
      lookup.expanded = alternative;
      lookup.local = local;
      lookup.exists = true;
    }
  }
  return lookup;
}

std::wstring ReadRegistryString(const RunContext& context,
                                const std::wstring& subkey,
                                const std::wstring& value_name) {
  base::RegKey key;
  std::wstring value;
  if (!RegistryKnown(context) || !key.Open(context.m_registry_file, subkey) ||
      !key.ReadValue(value_name, &value))
    return std::wstring();
  return value;
}

base::FilePath ReadRegistryPath(const RunContext& context,
                                const std::wstring& subkey,
                                const std::wstring& value_name) {
  return LookUpRegistryPath(context, subkey, value_name).local;
}

base::FilePath GetGeneration6ProgramPath(const RunContext& context) {
  return ReadRegistryPath(context, L"Software\\VanTa6", L"AppFileName");
}

}  // namespace data_importer
