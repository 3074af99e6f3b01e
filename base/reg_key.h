#ifndef BASE_REG_KEY_H_
#define BASE_REG_KEY_H_

#include <functional>
#include <memory>
#include <string>

#include "base/file_path.h"
#include "base/registry_hive.h"

namespace base {

// Read access to string values of the current user's registry hive
// (HKEY_CURRENT_USER). The hive is a file given at each Open (a copied
// profile's registry; on POSIX the only registry there is); without one,
// Windows reads the user's own registry (RegOpenKeyExW, RegQueryValueExW)
// and POSIX finds no key. The file comes in either of two forms, told apart
// by its first bytes:
// - a binary registry hive ("regf", a profile's "NTUSER.DAT"), read with
//   libhivex on POSIX and through RegLoadAppKeyW on a temporary copy on
//   Windows; values of types REG_SZ and REG_EXPAND_SZ are read;
// - a ".reg" export ("Windows Registry Editor Version 5.00" or "REGEDIT4"
//   first line, "[HKEY_CURRENT_USER\Key\Sub]" section lines (or
//   "[HKEY_USERS\<name>\Key\Sub]", a user's hive exported while loaded
//   under another name), "Name"="value"
//   lines with \\ and \" escapes, @=... for the default value, ";" comments,
//   "hex(2):" (REG_EXPAND_SZ) and "hex(1):" (REG_SZ) data as UTF-16LE bytes,
//   lines continued by a trailing "\"), in UTF-8 or in UTF-16LE with a
//   byte-order mark.
// Values come back as stored: a REG_EXPAND_SZ value is flagged, and the
// caller expands its "%NAME%" references (ExpandEnvironmentReferences) with
// the variables of the user whose registry it is. Key and value names
// compare case-insensitively. A missing or unreadable file, key or value
// behaves as a missing registry key: Open or ReadValue answers false and the
// value stays empty.
class RegKey {
 public:
  RegKey() = default;

  // Opens |subkey| (e.g. L"Software\\VanTa6") under HKEY_CURRENT_USER of
  // the registry file |file| (the user's own registry when empty) for
  // reading. False when the key does not exist.
  [[nodiscard]] bool Open(const FilePath& file, const std::wstring& subkey);
  [[nodiscard]] bool Valid() const { return m_valid; }

  // Reads a string value; |name| empty or L"@" reads the default value.
  // False (and |*value| emptied) when the key is not open or the value is
  // missing. |*expandable|, when given, tells a REG_EXPAND_SZ value.
  [[nodiscard]] bool ReadValue(const std::wstring& name,
                               std::wstring* value,
                               bool* expandable = nullptr) const;

 private:
  // Takes |strings| as the open key's values.
  bool Adopt(const std::wstring& subkey, RegistryStrings strings);

  bool m_valid = false;
  // Value names folded to lower case -> value.
  std::wstring m_key_name;
  struct Values;
  std::shared_ptr<Values> m_values;
};

// Answers the value of the variable |name| (any letter case), false when it
// is not set.
using VariableLookup = std::function<bool(const std::wstring& name, std::wstring* value)>;

// Replaces each "%NAME%" of |text| by what |lookup| answers for NAME; a
// reference to a variable that is not set stays as it is, as Windows leaves
// it.
std::wstring ExpandEnvironmentReferences(const std::wstring& text, const VariableLookup& lookup);

// Whether |file| can serve as the registry file: it can be read and is a
// binary hive that opens or a ".reg" export (by its first line); empty or
// other content is not. |*reason| says why not, in words.
[[nodiscard]] bool CheckRegistryFile(const FilePath& file, std::string* reason);

}  // namespace base

#endif  // BASE_REG_KEY_H_
