#include "testing/test_support.h"

#include <stdlib.h>
#if defined(_WIN32)
#include "base/windows_headers.h"
#else
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "base/environment.h"
#include "base/file_util.h"
#include "base/path_service.h"
#include "base/utf_string_conversions.h"

namespace testing_support {

ScopedTempDir::ScopedTempDir() {
  if (!base::CreateNewTempDirectory(L"vantu_test_", &m_path))
    ADD_FAILURE() << "cannot create a temporary folder";
}

ScopedTempDir::~ScopedTempDir() {
  if (m_path.empty())
    return;
#if defined(_WIN32)
  // Read-only files go too (their attribute is cleared first).
  (void)base::DeleteFile(m_path, true);  // a leftover in the temporary folder is harmless
#else
  std::error_code ec;
  // Tests make files read-only on purpose; restore write access first.
  for (auto it = std::filesystem::recursive_directory_iterator(m_path.AsUTF8Unsafe(), ec);
       !ec && it != std::filesystem::recursive_directory_iterator(); it.increment(ec)) {
    std::filesystem::permissions(it->path(), std::filesystem::perms::owner_all,
                                 std::filesystem::perm_options::add, ec);
  }
  std::filesystem::remove_all(m_path.AsUTF8Unsafe(), ec);
#endif
}

ScopedEnv::~ScopedEnv() {
  for (const auto& [name, value] : m_saved) {
    if (value)
      (void)base::SetEnvironmentString(name, base::UTF8ToWide(*value));  // restoring: best effort
    else
      (void)base::UnsetEnvironmentString(name);
  }
}

void ScopedEnv::Set(const std::string& name, const std::optional<std::string>& value) {
  if (!m_saved.count(name)) {
    std::wstring old;
    m_saved[name] = base::GetEnvironmentString(name, &old)
                        ? std::optional<std::string>(base::WideToUTF8(old))
                        : std::nullopt;
  }
  if (value)
    EXPECT_TRUE(base::SetEnvironmentString(name, base::UTF8ToWide(*value))) << name;
  else
    EXPECT_TRUE(base::UnsetEnvironmentString(name)) << name;
  // A test that gives the application-data folders means them on every
  // system (Windows otherwise asks the shell).
  if (name == "LOCALAPPDATA" || name == "APPDATA")
    Set(base::kFoldersFromEnvironment, std::string("1"));
}

std::wstring NativePath(std::wstring path) {
  for (wchar_t& c : path)
    c = c == L'/' ? base::FilePath::kSeparator : c;
  return path;
}

bool RunningUnderWine() {
#if defined(_WIN32)
  HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
  return ntdll && GetProcAddress(ntdll, "wine_get_version") != nullptr;
#else
  return false;
#endif
}

int GoneProcessId() {
#if defined(_WIN32)
  wchar_t system[MAX_PATH];
  UINT n = GetSystemDirectoryW(system, MAX_PATH);
  if (n == 0 || n >= MAX_PATH)
    return -1;
  std::wstring exe = std::wstring(system) + L"\\cmd.exe";
  std::wstring line = L"cmd.exe /c exit 0";
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION process = {};
  if (!CreateProcessW(exe.c_str(), line.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr,
                      nullptr, &startup, &process)) {
    return -1;
  }
  WaitForSingleObject(process.hProcess, INFINITE);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return static_cast<int>(process.dwProcessId);
#else
  pid_t child = fork();
  if (child == 0)
    _exit(0);
  if (child == -1 || waitpid(child, nullptr, 0) != child)
    return -1;
  return static_cast<int>(child);
#endif
}

void MakeReadOnly(const base::FilePath& path) {
#if defined(_WIN32)
  EXPECT_TRUE(SetFileAttributesW(path.value().c_str(), FILE_ATTRIBUTE_READONLY))
      << path.AsUTF8Unsafe();
#else
  EXPECT_EQ(0, chmod(path.AsUTF8Unsafe().c_str(), 0444)) << path.AsUTF8Unsafe();
#endif
}

int RunCommand(const std::string& command, const std::string& input, std::string* output) {
  base::FilePath temp;
  if (!base::CreateNewTempDirectory(L"vantu_cmd_", &temp))
    return -1;
  base::FilePath in_file = temp.Append(L"input");
  WriteBytes(in_file, input);
#if defined(_WIN32)
  // cmd.exe runs it: double quotes, and the whole line quoted once more.
  std::string full = "\"(" + command + ") < \"" + in_file.AsUTF8Unsafe() + "\" 2>&1\"";
  FILE* pipe = _wpopen(base::UTF8ToWide(full).c_str(), L"rb");
#else
  std::string full = "(" + command + ") < '" + in_file.AsUTF8Unsafe() + "' 2>&1";
  FILE* pipe = popen(full.c_str(), "r");
#endif
  if (!pipe) {
    (void)base::DeleteFile(temp, true);
    return -1;
  }
  std::string out;
  char buffer[4096];
  size_t n;
  while ((n = fread(buffer, 1, sizeof(buffer), pipe)) > 0)
    out.append(buffer, n);
#if defined(_WIN32)
  int status = _pclose(pipe);
#else
  int status = pclose(pipe);
#endif
  (void)base::DeleteFile(temp, true);  // a leftover in the temporary folder is harmless
  if (output)
    *output = out;
#if defined(_WIN32)
  return status;
#else
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
}

std::string ReadBytes(const base::FilePath& path) {
#if defined(_WIN32)
  std::string bytes;
  return base::ReadFileToString(path, &bytes) ? bytes : std::string();
#else
  std::ifstream in(path.AsUTF8Unsafe(), std::ios::binary);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
#endif
}

void WriteBytes(const base::FilePath& path, const std::string& bytes) {
#if defined(_WIN32)
  EXPECT_TRUE(base::WriteFile(path, bytes)) << path.AsUTF8Unsafe();
#else
  std::ofstream out(path.AsUTF8Unsafe(), std::ios::binary | std::ios::trunc);
  out << bytes;
#endif
}

void DamageDatabasePage(const base::FilePath& path, int page, size_t offset, size_t length) {
  std::string bytes = ReadBytes(path);
  size_t at = static_cast<size_t>(page - 1) * 4096 + offset;
  ASSERT_LT(at + length, bytes.size());
  for (size_t i = 0; i < length; ++i)
    bytes[at + i] = static_cast<char>(0xA5 ^ i);
  WriteBytes(path, bytes);
}

void ForgetFreePages(const base::FilePath& path) {
  std::string bytes = ReadBytes(path);
  ASSERT_GE(bytes.size(), 40u);
  bytes.replace(32, 8, std::string(8, '\0'));
  WriteBytes(path, bytes);
}

std::string UTF16Bytes(std::wstring_view text, bool big_endian) {
  std::string bytes;
  for (char16_t unit : base::WideToUTF16(text)) {
    const char low = static_cast<char>(unit & 0xFF);
    const char high = static_cast<char>(unit >> 8);
    bytes += big_endian ? std::string{high, low} : std::string{low, high};
  }
  return bytes;
}

std::wstring NumberedHash(int n, wchar_t fill) {
  const std::wstring digits = std::to_wstring(n);
  return std::wstring(32 - digits.size(), fill) + digits;
}

}  // namespace testing_support
