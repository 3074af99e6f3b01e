#include "base/registry_hive.h"

#include <errno.h>
#include <hivex.h>
#include <stdlib.h>
#include <string.h>

#include <memory>

#include "base/utf_string_conversions.h"

namespace base {

namespace {

struct HiveCloser {
  void operator()(hive_h* hive) const {
    // Opened read-only: closing writes nothing, so its result says nothing
    // about the user's file.
    (void)hivex_close(hive);
  }
};
using ScopedHive = std::unique_ptr<hive_h, HiveCloser>;

struct FreeDeleter {
  void operator()(char* p) const { free(p); }
};

ScopedHive OpenHive(const FilePath& file, std::string* reason) {
  errno = 0;
  hive_h* hive = hivex_open(file.AsUTF8Unsafe().c_str(), 0);
  if (!hive && reason) {
    int error = errno;
    *reason = error ? strerror(error) : "not a registry hive";
    if (error == EINVAL || error == ENOTSUP || error == EFAULT || error == ERANGE)
      *reason = std::string("damaged or not a registry hive (") + strerror(error) + ")";
  }
  return ScopedHive(hive);
}

// The key |subkey| below the root; 0 when it does not exist.
hive_node_h FindKey(hive_h* hive, const std::wstring& subkey) {
  hive_node_h node = hivex_root(hive);
  size_t start = 0;
  while (node && start <= subkey.size()) {
    size_t end = subkey.find(L'\\', start);
    if (end == std::wstring::npos)
      end = subkey.size();
    std::wstring part = subkey.substr(start, end - start);
    start = end + 1;
    if (!part.empty())
      node = hivex_node_get_child(hive, node, WideToUTF8(part).c_str());
  }
  return node;
}

}  // namespace

bool IsRegistryHive(const std::string& bytes) {
  return bytes.size() >= 4 && bytes.compare(0, 4, "regf") == 0;
}

bool CheckHiveFile(const FilePath& file, std::string* reason) {
  ScopedHive hive = OpenHive(file, reason);
  if (!hive)
    return false;
  if (hivex_root(hive.get()) == 0) {
    if (reason)
      *reason = "the hive has no root key";
    return false;
  }
  return true;
}

bool ReadHiveKey(const FilePath& file,
                 const std::wstring& subkey,
                 RegistryStrings* values,
                 std::string* reason) {
  values->clear();
  ScopedHive hive = OpenHive(file, reason);
  if (!hive)
    return false;
  hive_node_h node = FindKey(hive.get(), subkey);
  if (!node)
    return false;

  std::unique_ptr<hive_value_h, decltype(&free)> list(hivex_node_values(hive.get(), node), &free);
  if (!list)
    return false;
  for (hive_value_h* value = list.get(); *value; ++value) {
    hive_type type;
    size_t length = 0;
    if (hivex_value_type(hive.get(), *value, &type, &length) != 0)
      continue;
    if (type != hive_t_REG_SZ && type != hive_t_REG_EXPAND_SZ)
      continue;
    std::unique_ptr<char, FreeDeleter> name(hivex_value_key(hive.get(), *value));
    std::unique_ptr<char, FreeDeleter> text(hivex_value_string(hive.get(), *value));
    if (!name || !text)
      continue;  // a value whose name or text does not decode is unreadable
    RegistryString entry;
    entry.text = UTF8ToWide(text.get());
    entry.expand = type == hive_t_REG_EXPAND_SZ;
    (*values)[UTF8ToWide(name.get())] = std::move(entry);
  }
  return true;
}

bool ReadHiveDword(const FilePath& file,
                   const std::wstring& subkey,
                   const std::wstring& name,
                   uint32_t* value) {
  ScopedHive hive = OpenHive(file, nullptr);
  if (!hive)
    return false;
  hive_node_h node = FindKey(hive.get(), subkey);
  if (!node)
    return false;
  hive_value_h found = hivex_node_get_value(hive.get(), node, WideToUTF8(name).c_str());
  hive_type type;
  size_t length = 0;
  if (!found || hivex_value_type(hive.get(), found, &type, &length) != 0 ||
      type != hive_t_REG_DWORD)
    return false;
  errno = 0;
  int32_t number = hivex_value_dword(hive.get(), found);
  if (number == -1 && errno != 0)
    return false;
  *value = static_cast<uint32_t>(number);
  return true;
}

bool ReadCurrentUserKey(const std::wstring& subkey, RegistryStrings* values) {
  values->clear();
  return false;
}

}  // namespace base
