#include "base/registry_hive.h"

#include "base/windows_headers.h"

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "base/file_util.h"

namespace base {

namespace {

struct KeyCloser {
  void operator()(HKEY key) const {
    // Opened for reading: closing has nothing to save.
    (void)RegCloseKey(key);
  }
};
using ScopedKey = std::unique_ptr<std::remove_pointer_t<HKEY>, KeyCloser>;

// Reads the REG_SZ and REG_EXPAND_SZ values of an open key.
bool ReadStrings(HKEY key, RegistryStrings* values) {
  DWORD max_name = 0, max_data = 0;
  if (RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                       &max_name, &max_data, nullptr, nullptr) != ERROR_SUCCESS) {
    return false;
  }
  std::vector<wchar_t> name(max_name + 1);
  for (DWORD index = 0;; ++index) {
    DWORD name_length = static_cast<DWORD>(name.size());
    DWORD type = 0;
    LONG result =
        RegEnumValueW(key, index, name.data(), &name_length, nullptr, &type, nullptr, nullptr);
    if (result == ERROR_NO_MORE_ITEMS)
      break;
    if (result != ERROR_SUCCESS || (type != REG_SZ && type != REG_EXPAND_SZ))
      continue;
    std::wstring value_name(name.data(), name_length);
    // The text itself through RegQueryValueExW, sized by its first answer.
    DWORD size = 0;
    if (RegQueryValueExW(key, value_name.c_str(), nullptr, &type, nullptr, &size) != ERROR_SUCCESS)
      continue;
    std::vector<wchar_t> data(size / sizeof(wchar_t) + 1, L'\0');
    DWORD got = size;
    if (RegQueryValueExW(key, value_name.c_str(), nullptr, &type,
                         reinterpret_cast<BYTE*>(data.data()), &got) != ERROR_SUCCESS) {
      continue;
    }
    std::wstring text(data.data(), got / sizeof(wchar_t));
    // Stored strings usually, but not always, end in a NUL.
    text.resize(std::min(text.size(), text.find(L'\0')));
    RegistryString entry;
    entry.text = std::move(text);
    entry.expand = type == REG_EXPAND_SZ;
    (*values)[value_name] = std::move(entry);
  }
  return true;
}

// Loading a hive writes log files beside it, so the user's file is never
// loaded: a copy in a temporary folder is, and goes afterwards.
class HiveCopy {
 public:
  explicit HiveCopy(const FilePath& file) {
    wchar_t temp[MAX_PATH + 1];
    DWORD n = GetTempPathW(MAX_PATH + 1, temp);
    if (n == 0 || n > MAX_PATH)
      return;
    m_folder = FilePath(std::wstring(temp, n))
                   .Append(L"vantu-hive-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                           std::to_wstring(GetTickCount64()));
    if (!CreateDirectory(m_folder)) {
      m_folder = FilePath();
      return;
    }
    m_copy = m_folder.Append(L"hive.dat");
    if (!CopyFile(file, m_copy))
      m_copy = FilePath();
  }
  ~HiveCopy() {
    if (!m_folder.empty())
      (void)DeleteFile(m_folder, true);  // a leftover temporary folder harms nothing
  }
  const FilePath& path() const { return m_copy; }

 private:
  FilePath m_folder;
  FilePath m_copy;
};

ScopedKey LoadHive(const FilePath& copy, std::string* reason) {
  HKEY root = nullptr;
  LONG result = RegLoadAppKeyW(copy.value().c_str(), &root, KEY_READ, 0, 0);
  if (result != ERROR_SUCCESS) {
    if (reason)
      *reason = "damaged or not a registry hive (error " + std::to_string(result) + ")";
    return ScopedKey();
  }
  return ScopedKey(root);
}

}  // namespace

bool IsRegistryHive(const std::string& bytes) {
  return bytes.size() >= 4 && bytes.compare(0, 4, "regf") == 0;
}

bool CheckHiveFile(const FilePath& file, std::string* reason) {
  HiveCopy copy(file);
  if (copy.path().empty()) {
    if (reason)
      *reason = "cannot be copied to a temporary folder (error " +
                std::to_string(GetLastSystemError()) + ")";
    return false;
  }
  return LoadHive(copy.path(), reason) != nullptr;
}

bool ReadHiveKey(const FilePath& file,
                 const std::wstring& subkey,
                 RegistryStrings* values,
                 std::string* reason) {
  values->clear();
  HiveCopy copy(file);
  if (copy.path().empty()) {
    if (reason)
      *reason = "cannot be copied to a temporary folder";
    return false;
  }
  ScopedKey root = LoadHive(copy.path(), reason);
  if (!root)
    return false;
  HKEY key = nullptr;
  if (RegOpenKeyExW(root.get(), subkey.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
    return false;
  ScopedKey opened(key);
  return ReadStrings(opened.get(), values);
}

bool ReadHiveDword(const FilePath& file,
                   const std::wstring& subkey,
                   const std::wstring& name,
                   uint32_t* value) {
  HiveCopy copy(file);
  if (copy.path().empty())
    return false;
  ScopedKey root = LoadHive(copy.path(), nullptr);
  if (!root)
    return false;
  HKEY key = nullptr;
  if (RegOpenKeyExW(root.get(), subkey.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
    return false;
  ScopedKey opened(key);
  DWORD type = 0;
  DWORD data = 0;
  DWORD size = sizeof(data);
  if (RegQueryValueExW(opened.get(), name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(&data),
                       &size) != ERROR_SUCCESS ||
      type != REG_DWORD || size != sizeof(data))
    return false;
  *value = data;
  return true;
}

bool ReadCurrentUserKey(const std::wstring& subkey, RegistryStrings* values) {
  values->clear();
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_CURRENT_USER, subkey.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
    return false;
  ScopedKey opened(key);
  return ReadStrings(opened.get(), values);
}

}  // namespace base
