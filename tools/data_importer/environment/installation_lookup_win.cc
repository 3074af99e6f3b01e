#include "tools/data_importer/environment/installation_lookup.h"

#include "base/windows_headers.h"

#include <objbase.h>
#include <shlobj.h>
#include <shobjidl.h>

#include <string>
#include <vector>

#include "base/file_util.h"
#include "base/string_util.h"

namespace data_importer {

namespace {

constexpr wchar_t kProgramName[] = L"vantu.exe";

// The major version of a program's version information, or 0 when it has
// none.
int MajorVersion(const base::FilePath& program) {
  DWORD ignored = 0;
  DWORD size = GetFileVersionInfoSizeW(program.value().c_str(), &ignored);
  if (size == 0)
    return 0;
  std::vector<char> data(size);
  if (!GetFileVersionInfoW(program.value().c_str(), 0, size, data.data()))
    return 0;
  VS_FIXEDFILEINFO* info = nullptr;
  UINT length = 0;
  if (!VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&info), &length) || !info ||
      length < sizeof(VS_FIXEDFILEINFO)) {
    return 0;
  }
  return static_cast<int>(HIWORD(info->dwFileVersionMS));
}

// The target of a shell shortcut, or empty.
base::FilePath ShortcutTarget(IShellLinkW* link, const base::FilePath& shortcut) {
  IPersistFile* file = nullptr;
  if (FAILED(link->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(&file))))
    return base::FilePath();
  base::FilePath target;
  if (SUCCEEDED(file->Load(shortcut.value().c_str(), STGM_READ))) {
    wchar_t path[MAX_PATH] = {};
    if (SUCCEEDED(link->GetPath(path, MAX_PATH, nullptr, SLGP_RAWPATH)) && path[0])
      target = base::FilePath(path);
  }
  file->Release();
  return target;
}

// Shortcuts to a generation-6 program in one folder and the folders below
// it (the Start menu keeps them a level or two down).
base::FilePath SearchFolder(IShellLinkW* link, const base::FilePath& folder, int depth) {
  std::vector<base::FilePath> subfolders;
  WIN32_FIND_DATAW data;
  HANDLE find = FindFirstFileW(folder.Append(L"*").value().c_str(), &data);
  if (find == INVALID_HANDLE_VALUE)
    return base::FilePath();
  base::FilePath found;
  do {
    std::wstring name = data.cFileName;
    if (name == L"." || name == L"..")
      continue;
    if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
      subfolders.push_back(folder.Append(name));
      continue;
    }
    if (!base::FileEnumerator::MatchPattern(name, L"*.lnk"))
      continue;
    base::FilePath target = ShortcutTarget(link, folder.Append(name));
    if (!target.empty() && base::ToLowerASCII(target.BaseName().value()) == kProgramName &&
        base::PathExists(target) && MajorVersion(target) == 6) {
      found = target;
    }
  } while (found.empty() && FindNextFileW(find, &data));
  FindClose(find);
  for (size_t i = 0; found.empty() && depth > 0 && i < subfolders.size(); ++i)
    found = SearchFolder(link, subfolders[i], depth - 1);
  return found;
}

}  // namespace

base::FilePath FindGeneration6ProgramByShortcut() {
  // The desktop and the Start menu, the user's and everyone's.
  const int kFolders[] = {CSIDL_DESKTOPDIRECTORY, CSIDL_COMMON_DESKTOPDIRECTORY, CSIDL_PROGRAMS,
                          CSIDL_COMMON_PROGRAMS};
  HRESULT init = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  IShellLinkW* link = nullptr;
  base::FilePath found;
  if (SUCCEEDED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                                 reinterpret_cast<void**>(&link)))) {
    for (int csidl : kFolders) {
      wchar_t folder[MAX_PATH];
      if (!SHGetSpecialFolderPathW(nullptr, folder, csidl, FALSE))
        continue;
      found = SearchFolder(link, base::FilePath(folder), 2);
      if (!found.empty())
        break;
    }
    link->Release();
  }
  // Only a successful initialisation is balanced (RPC_E_CHANGED_MODE means
  // the host's thread already has its own).
  if (SUCCEEDED(init))
    CoUninitialize();
  return found;
}

// The player's own modules register themselves under this key; the importer
// is not one of them, so the step has nothing to record on any system.
void RunStartupRegistryStep() {}

}  // namespace data_importer
