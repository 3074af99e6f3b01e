#ifndef BASE_REG_KEY_H_
#define BASE_REG_KEY_H_

#include <memory>
#include <string>

namespace base {

// Read access to string values of the current user's registry hive
// (HKEY_CURRENT_USER). On POSIX the hive is a registry export file named by
// the environment variable VANTU_REGISTRY_FILE, read at each Open: the ".reg"
// text format ("Windows Registry Editor Version 5.00" or "REGEDIT4" first
// line, "[HKEY_CURRENT_USER\Key\Sub]" section lines, "Name"="value" lines with
// \\ and \" escapes, @="value" for the default value, ";" comments), in UTF-8
// or in UTF-16LE with a byte-order mark. Key and value names compare
// case-insensitively. A missing file, key or value behaves as a missing
// registry key: Open or ReadValue answers false and the value stays empty.
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
  bool valid_ = false;
  // Value names folded to lower case -> value.
  std::wstring key_name_;
  struct Values;
  std::shared_ptr<Values> values_;
};

}  // namespace base

#endif  // BASE_REG_KEY_H_
