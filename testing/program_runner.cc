#include "testing/program_runner.h"

#if defined(_WIN32)
#include "base/windows_headers.h"
#endif

#include <algorithm>
#include <cwctype>

#include "base/environment.h"
#include "base/utf_string_conversions.h"
#include "testing/test_support.h"

namespace testing_support {

std::string QuoteArgument(const base::FilePath& path) {
  return QuoteArgument(path.AsUTF8Unsafe());
}

#if defined(_WIN32)

namespace {

std::wstring Upper(std::wstring text) {
  for (wchar_t& c : text)
    c = static_cast<wchar_t>(std::towupper(c));
  return text;
}

// The test's environment with the changes, as the block CreateProcessW
// takes: "name=value" entries, each ended by a NUL, sorted by name without
// regard to case, and one more NUL.
std::wstring EnvironmentBlock(const ProgramEnvironment& environment) {
  std::map<std::wstring, std::pair<std::wstring, std::wstring>> entries;
  for (const auto& [name, value] : base::EnvironmentVariables())
    entries[Upper(name)] = {name, value};
  for (const std::string& name : environment.unset)
    entries.erase(Upper(base::UTF8ToWide(name)));
  for (const auto& [name, value] : environment.set) {
    std::wstring wide = base::UTF8ToWide(name);
    entries[Upper(wide)] = {wide, base::UTF8ToWide(value)};
  }
  std::wstring block;
  for (const auto& [key, entry] : entries)
    block += entry.first + L"=" + entry.second + L'\0';
  block += L'\0';
  return block;
}

}  // namespace

std::string QuoteArgument(const std::string& argument) {
  // Backslashes are literal except before a quote; paths end in none here.
  return "\"" + argument + "\"";
}

int RunProgram(const base::FilePath& program,
               const std::string& arguments,
               const ProgramEnvironment& environment,
               std::string* output) {
  output->clear();
  SECURITY_ATTRIBUTES inherit = {sizeof(inherit), nullptr, TRUE};
  HANDLE read_end = nullptr;
  HANDLE write_end = nullptr;
  if (!CreatePipe(&read_end, &write_end, &inherit, 0))
    return -1;
  (void)SetHandleInformation(read_end, HANDLE_FLAG_INHERIT, 0);  // ours alone
  HANDLE nul = CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                           &inherit, OPEN_EXISTING, 0, nullptr);

  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = nul;
  startup.hStdOutput = write_end;
  startup.hStdError = environment.with_errors ? write_end : nul;
  std::wstring command_line =
      base::UTF8ToWide(QuoteArgument(base::FilePath(NativePath(program.value())))) + L" " +
      base::UTF8ToWide(arguments);
  std::wstring block = EnvironmentBlock(environment);
  PROCESS_INFORMATION process = {};
  const BOOL started = CreateProcessW(nullptr, command_line.data(), nullptr, nullptr, TRUE,
                                      CREATE_UNICODE_ENVIRONMENT | CREATE_NO_WINDOW, block.data(),
                                      nullptr, &startup, &process);
  CloseHandle(write_end);
  if (nul != INVALID_HANDLE_VALUE)
    CloseHandle(nul);
  if (!started) {
    CloseHandle(read_end);
    return -1;
  }
  char buffer[4096];
  DWORD n = 0;
  while (ReadFile(read_end, buffer, sizeof(buffer), &n, nullptr) && n > 0)
    output->append(buffer, n);
  CloseHandle(read_end);
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD status = 0;
  const BOOL known = GetExitCodeProcess(process.hProcess, &status);
  CloseHandle(process.hProcess);
  CloseHandle(process.hThread);
  output->erase(std::remove(output->begin(), output->end(), '\r'), output->end());
  return known ? static_cast<int>(status) : -1;
}

#else

std::string QuoteArgument(const std::string& argument) {
  std::string quoted = "'";
  for (char c : argument)
    quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

int RunProgram(const base::FilePath& program,
               const std::string& arguments,
               const ProgramEnvironment& environment,
               std::string* output) {
  std::string command = "env";
  for (const std::string& name : environment.unset)
    command += " -u " + name;
  for (const auto& [name, value] : environment.set)
    command += " " + name + "=" + QuoteArgument(value);
  command += " " + QuoteArgument(program) + " " + arguments +
             (environment.with_errors ? " 2>&1" : " 2>/dev/null");
  return RunCommand(command, "", output);
}

#endif

}  // namespace testing_support
