#ifndef BASE_REGISTRY_HIVE_H_
#define BASE_REGISTRY_HIVE_H_

#include <cstdint>
#include <map>
#include <string>

#include "base/file_path.h"

namespace base {

// One string value read from a registry store.
struct RegistryString {
  std::wstring text;
  bool expand = false;  // REG_EXPAND_SZ: holds "%NAME%" references
};

// String values of one key, by name as stored ("" is the key's default
// value).
using RegistryStrings = std::map<std::wstring, RegistryString>;

// Whether |bytes| begin with the signature of a binary registry hive
// ("regf", as in a profile's "NTUSER.DAT").
[[nodiscard]] bool IsRegistryHive(const std::string& bytes);

// Reads the string values (REG_SZ and REG_EXPAND_SZ; other types are
// skipped) of key |subkey| ("Software\VanTa6", components matched in any
// letter case) below the root of the hive file |file|. False when the file
// cannot be opened as a hive (missing, truncated, damaged: |*reason| says
// why when given) or the key does not exist. Never modifies the file.
[[nodiscard]] bool ReadHiveKey(const FilePath& file,
                               const std::wstring& subkey,
                               RegistryStrings* values,
                               std::string* reason = nullptr);

// Reads the REG_DWORD value |name| of key |subkey| (as for ReadHiveKey) of
// the hive file |file|. False when the file is no hive, the key or value is
// missing, or the value is of another type.
[[nodiscard]] bool ReadHiveDword(const FilePath& file,
                                 const std::wstring& subkey,
                                 const std::wstring& name,
                                 uint32_t* value);

// Reads the string values of |subkey| under HKEY_CURRENT_USER of the
// system's own registry. False when the key does not exist, and always on
// POSIX, which has no registry of its own.
[[nodiscard]] bool ReadCurrentUserKey(const std::wstring& subkey, RegistryStrings* values);

// Whether |file| opens as a hive; |*reason| says why not.
[[nodiscard]] bool CheckHiveFile(const FilePath& file, std::string* reason);

}  // namespace base

#endif  // BASE_REGISTRY_HIVE_H_
