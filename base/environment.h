#ifndef BASE_ENVIRONMENT_H_
#define BASE_ENVIRONMENT_H_

#include <string>
#include <utility>
#include <vector>

namespace base {

// The process environment as wide text (Windows keeps it in UTF-16; POSIX
// in bytes, taken as UTF-8). Names are ASCII.

// False (and |*value| emptied) when |name| is not set.
[[nodiscard]] bool GetEnvironmentString(const std::string& name, std::wstring* value);

// Sets |name| to |value| for this process and the programs it starts.
[[nodiscard]] bool SetEnvironmentString(const std::string& name, const std::wstring& value);

// Removes |name|; true when it is not set afterwards.
[[nodiscard]] bool UnsetEnvironmentString(const std::string& name);

// Every variable of the process, name and value, in the system's order.
// Windows' hidden per-drive entries ("=C:") are left out.
std::vector<std::pair<std::wstring, std::wstring>> EnvironmentVariables();

}  // namespace base

#endif  // BASE_ENVIRONMENT_H_
