#include "base/environment.h"

#include <stdlib.h>
#include <wchar.h>

#include <string_view>

#if defined(_WIN32)
#include "base/windows_headers.h"
#else
extern char** environ;
#endif

#include "base/utf_string_conversions.h"

namespace base {

#if defined(_WIN32)

// The C runtime's copy of the environment (_wgetenv) and the system's
// (GetEnvironmentVariableW) are both kept, so that either way of reading it,
// here or in a program started later, sees the change.

bool GetEnvironmentString(const std::string& name, std::wstring* value) {
  value->clear();
  const wchar_t* found = _wgetenv(UTF8ToWide(name).c_str());
  if (!found)
    return false;
  *value = found;
  return true;
}

bool SetEnvironmentString(const std::string& name, const std::wstring& value) {
  std::wstring wide_name = UTF8ToWide(name);
  return _wputenv_s(wide_name.c_str(), value.c_str()) == 0 &&
         SetEnvironmentVariableW(wide_name.c_str(), value.c_str()) != 0;
}

bool UnsetEnvironmentString(const std::string& name) {
  std::wstring wide_name = UTF8ToWide(name);
  bool ok = _wputenv_s(wide_name.c_str(), L"") == 0;
  if (!SetEnvironmentVariableW(wide_name.c_str(), nullptr) &&
      GetLastError() != ERROR_ENVVAR_NOT_FOUND) {
    ok = false;
  }
  return ok;
}

std::vector<std::pair<std::wstring, std::wstring>> EnvironmentVariables() {
  std::vector<std::pair<std::wstring, std::wstring>> variables;
  wchar_t* block = GetEnvironmentStringsW();
  if (!block)
    return variables;
  for (const wchar_t* entry = block; *entry; entry += wcslen(entry) + 1) {
    std::wstring_view pair(entry);
    size_t equals = pair.find(L'=');
    if (equals == std::wstring_view::npos || equals == 0)
      continue;
    variables.emplace_back(pair.substr(0, equals), pair.substr(equals + 1));
  }
  // The copy is ours; freeing it cannot fail in a way that matters here.
  (void)FreeEnvironmentStringsW(block);
  return variables;
}

#else

bool GetEnvironmentString(const std::string& name, std::wstring* value) {
  value->clear();
  const char* found = getenv(name.c_str());
  if (!found)
    return false;
  *value = UTF8ToWide(found);
  return true;
}

bool SetEnvironmentString(const std::string& name, const std::wstring& value) {
  return setenv(name.c_str(), WideToUTF8(value).c_str(), 1) == 0;
}

bool UnsetEnvironmentString(const std::string& name) {
  return unsetenv(name.c_str()) == 0;
}

std::vector<std::pair<std::wstring, std::wstring>> EnvironmentVariables() {
  std::vector<std::pair<std::wstring, std::wstring>> variables;
  for (char** entry = environ; entry && *entry; ++entry) {
    std::string_view pair(*entry);
    size_t equals = pair.find('=');
    if (equals == std::string_view::npos || equals == 0)
      continue;
    variables.emplace_back(UTF8ToWide(pair.substr(0, equals)), UTF8ToWide(pair.substr(equals + 1)));
  }
  return variables;
}

#endif

}  // namespace base
