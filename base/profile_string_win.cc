#include "base/profile_string.h"

#include "base/windows_headers.h"

namespace base {

namespace {

// Calls |read| with growing buffers until what it copies fits with room to
// spare: the profile functions cut a value short at the buffer's end
// without saying so, answering the buffer's size less |reserve| (1 for a
// value, 2 for a list of names).
template <typename Read>
std::wstring ReadWhole(DWORD reserve, Read read) {
  std::wstring buffer(256, L'\0');
  for (;;) {
    DWORD n = read(buffer.data(), static_cast<DWORD>(buffer.size()));
    if (n + reserve < buffer.size() || buffer.size() >= (1u << 24)) {
      buffer.resize(n);
      return buffer;
    }
    buffer.resize(buffer.size() * 4);
  }
}

// The NUL-separated names of a list the profile functions answer.
std::vector<std::wstring> SplitNames(const std::wstring& list) {
  std::vector<std::wstring> names;
  for (size_t begin = 0; begin < list.size();) {
    size_t end = list.find(L'\0', begin);
    if (end == std::wstring::npos)
      end = list.size();
    if (end > begin)
      names.push_back(list.substr(begin, end - begin));
    begin = end + 1;
  }
  return names;
}

}  // namespace

// The system reads and writes 8-bit files in its own ANSI code page, which
// on the player's machine is the code page the run was given: the argument
// is not needed here.

bool WritePrivateProfileStringW(const wchar_t* section,
                                const wchar_t* key,
                                const wchar_t* value,
                                const wchar_t* file,
                                uint32_t /*ansi_code_page*/) {
  return ::WritePrivateProfileStringW(section, key, value, file) != FALSE;
}

std::wstring GetPrivateProfileStringW(const std::wstring& section,
                                      const std::wstring& key,
                                      const std::wstring& default_value,
                                      const std::wstring& file,
                                      uint32_t /*ansi_code_page*/) {
  return ReadWhole(1, [&](wchar_t* buffer, DWORD size) {
    return ::GetPrivateProfileStringW(section.c_str(), key.c_str(), default_value.c_str(), buffer,
                                      size, file.c_str());
  });
}

std::vector<std::wstring> GetPrivateProfileKeys(const std::wstring& section,
                                                const std::wstring& file,
                                                uint32_t /*ansi_code_page*/) {
  return SplitNames(ReadWhole(2, [&](wchar_t* buffer, DWORD size) {
    return ::GetPrivateProfileStringW(section.c_str(), nullptr, L"", buffer, size, file.c_str());
  }));
}

std::vector<std::wstring> GetPrivateProfileSections(const std::wstring& file,
                                                    uint32_t /*ansi_code_page*/) {
  return SplitNames(ReadWhole(2, [&](wchar_t* buffer, DWORD size) {
    return ::GetPrivateProfileStringW(nullptr, nullptr, L"", buffer, size, file.c_str());
  }));
}

}  // namespace base
