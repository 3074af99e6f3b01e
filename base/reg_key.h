#ifndef BASE_REG_KEY_H_
#define BASE_REG_KEY_H_

#include <memory>
#include <string>

#include "base/file_path.h"
#include "base/registry_hive.h"

namespace base {

// Read access to string values of the current user's registry hive
// (HKEY_CURRENT_USER). When the environment variable VANTU_REGISTRY_FILE
// names a file (a copied profile's registry; on POSIX the only registry
// there is), that file is the hive, read at each Open; otherwise Windows
// reads the user's own registry (RegOpenKeyExW, RegQueryValueExW) and POSIX
// finds no key. The file comes in either of two forms, told apart by its
// first bytes:
// - a binary registry hive ("regf", a profile's "NTUSER.DAT"), read with
//   libhivex on POSIX and through RegLoadAppKeyW on a temporary copy on
//   Windows; values of types REG_SZ and REG_EXPAND_SZ are read;
// - a ".reg" export ("Windows Registry Editor Version 5.00" or "REGEDIT4"
//   first line, "[HKEY_CURRENT_USER\Key\Sub]" section lines, "Name"="value"
//   lines with \\ and \" escapes, @=... for the default value, ";" comments,
//   "hex(2):" (REG_EXPAND_SZ) and "hex(1):" (REG_SZ) data as UTF-16LE bytes,
//   lines continued by a trailing "\"), in UTF-8 or in UTF-16LE with a
//   byte-order mark.
// REG_EXPAND_SZ values come back with their "%NAME%" references replaced by
// the environment variables of those names, where set. Key and value names
// compare case-insensitively. A missing or unreadable file, key or value
// behaves as a missing registry key: Open or ReadValue answers false and the
// value stays empty.
class RegKey {
 public:
  RegKey() = default;

  // Opens |subkey| (e.g. L"Software\\VanTa6") under HKEY_CURRENT_USER for
  // reading. False when the key does not exist.
  [[nodiscard]] bool Open(const std::wstring& subkey);
  [[nodiscard]] bool Valid() const { return valid_; }

  // Reads a string value; |name| empty or L"@" reads the default value.
  // False (and |*value| emptied) when the key is not open or the value is
  // missing.
  [[nodiscard]] bool ReadValue(const std::wstring& name, std::wstring* value) const;

 private:
  // Takes |strings| as the open key's values.
  bool Adopt(const std::wstring& subkey, RegistryStrings strings);

  bool valid_ = false;
  // Value names folded to lower case -> value.
  std::wstring key_name_;
  struct Values;
  std::shared_ptr<Values> values_;
};

// Whether |file| can serve as the registry file: it can be read and, when it
// is a binary hive, the hive opens. |*reason| says why not, in words.
[[nodiscard]] bool CheckRegistryFile(const FilePath& file, std::string* reason);

}  // namespace base

#endif  // BASE_REG_KEY_H_
