#include "base/windows_headers.h"

#include <dbghelp.h>
#include <psapi.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "common/exception_report/crash_handler.h"

namespace exception_report {

namespace {

constexpr size_t kPathCapacity = 32768;

// Everything the filter reads is prepared when it is installed.
struct HandlerState {
  bool active = false;
  wchar_t crash_folder[kPathCapacity] = {};
  wchar_t exe_folder[kPathCapacity] = {};
  LPTOP_LEVEL_EXCEPTION_FILTER previous = nullptr;
};

HandlerState g_state;

// Appends to a fixed buffer without allocating (the heap may be what broke).
class RecordBuffer {
 public:
  void Add(const char* text) {
    while (*text && m_length < sizeof(m_data) - 1)
      m_data[m_length++] = *text++;
  }
  void AddNumber(unsigned long long value, int base = 10, int min_digits = 1) {
    static const char kDigits[] = "0123456789abcdef";
    char digits[24];
    int count = 0;
    do {
      digits[count++] = kDigits[value % base];
      value /= base;
    } while (value || count < min_digits);
    while (count > 0 && m_length < sizeof(m_data) - 1)
      m_data[m_length++] = digits[--count];
  }
  // Wide text as UTF-8.
  void AddWide(const wchar_t* text) {
    char utf8[4 * 1024];
    int n = WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8, sizeof(utf8), nullptr, nullptr);
    if (n > 0)
      Add(utf8);
  }
  const char* data() const { return m_data; }
  size_t length() const { return m_length; }

 private:
  char m_data[16 * 1024] = {};
  size_t m_length = 0;
};

// Joins folder and name into |out| (capacity kPathCapacity).
void JoinPath(const wchar_t* folder, const wchar_t* name, wchar_t* out) {
  size_t n = wcslen(folder);
  size_t m = wcslen(name);
  if (n + 1 + m + 1 > kPathCapacity) {
    out[0] = L'\0';
    return;
  }
  std::memcpy(out, folder, n * sizeof(wchar_t));
  out[n] = L'\\';
  std::memcpy(out + n + 1, name, (m + 1) * sizeof(wchar_t));
}

// The load map: every module of the process with its base address, path
// and link time stamp (the debugger's key to its symbols).
void AddModules(RecordBuffer* out) {
  HMODULE modules[256];
  DWORD needed = 0;
  HANDLE process = GetCurrentProcess();
  if (!EnumProcessModules(process, modules, sizeof(modules), &needed))
    return;
  DWORD count = std::min<DWORD>(needed / sizeof(HMODULE), 256);
  for (DWORD i = 0; i < count; ++i) {
    wchar_t path[MAX_PATH];
    if (!GetModuleFileNameW(modules[i], path, MAX_PATH))
      continue;
    out->Add("  0x");
    out->AddNumber(reinterpret_cast<ULONG_PTR>(modules[i]), 16);
    out->Add(" ");
    out->AddWide(path);
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(modules[i]);
    const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(
        reinterpret_cast<const char*>(modules[i]) + dos->e_lfanew);
    out->Add(" ");
    out->AddNumber(nt->FileHeader.TimeDateStamp, 16, 8);
    out->Add("\n");
  }
}

void WriteCrashRecord(EXCEPTION_POINTERS* info) {
  if (!g_state.crash_folder[0])
    return;
  CreateDirectoryW(g_state.crash_folder, nullptr);
  SYSTEMTIME now;
  GetSystemTime(&now);
  wchar_t name[64];
  wchar_t path[kPathCapacity];
  DWORD pid = GetCurrentProcessId();
  swprintf(name, 64, L"crash-%04u%02u%02u-%02u%02u%02u-%lu.txt", now.wYear, now.wMonth, now.wDay,
           now.wHour, now.wMinute, now.wSecond, pid);
  JoinPath(g_state.crash_folder, name, path);
  HANDLE file =
      CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file != INVALID_HANDLE_VALUE) {
    RecordBuffer record;
    record.Add("time: ");
    record.AddNumber(now.wYear, 10, 4);
    record.Add("-");
    record.AddNumber(now.wMonth, 10, 2);
    record.Add("-");
    record.AddNumber(now.wDay, 10, 2);
    record.Add(" ");
    record.AddNumber(now.wHour, 10, 2);
    record.Add(":");
    record.AddNumber(now.wMinute, 10, 2);
    record.Add(":");
    record.AddNumber(now.wSecond, 10, 2);
    record.Add(" UTC\nexception: 0x");
    record.AddNumber(info->ExceptionRecord->ExceptionCode, 16, 8);
    record.Add(" at 0x");
    record.AddNumber(reinterpret_cast<ULONG_PTR>(info->ExceptionRecord->ExceptionAddress), 16);
    record.Add("\nprocess: ");
    record.AddNumber(pid);
    record.Add("\nexecutable folder: ");
    record.AddWide(g_state.exe_folder);
    record.Add("\nmodules (load address, path, link time stamp):\n");
    AddModules(&record);
    DWORD written = 0;
    // Nothing more can be done about a record that does not get written.
    (void)WriteFile(file, record.data(), static_cast<DWORD>(record.length()), &written, nullptr);
    CloseHandle(file);
  }

  // The minidump beside it, for the debugger.
  swprintf(name, 64, L"crash-%04u%02u%02u-%02u%02u%02u-%lu.dmp", now.wYear, now.wMonth, now.wDay,
           now.wHour, now.wMinute, now.wSecond, pid);
  JoinPath(g_state.crash_folder, name, path);
  HANDLE dump =
      CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (dump == INVALID_HANDLE_VALUE)
    return;
  MINIDUMP_EXCEPTION_INFORMATION exception = {};
  exception.ThreadId = GetCurrentThreadId();
  exception.ExceptionPointers = info;
  exception.ClientPointers = FALSE;
  (void)MiniDumpWriteDump(GetCurrentProcess(), pid, dump, MiniDumpNormal, &exception, nullptr,
                          nullptr);  // a dump that fails leaves the text record
  CloseHandle(dump);
}

LONG WINAPI HandleException(EXCEPTION_POINTERS* info) {
  WriteCrashRecord(info);
  // Whoever had the filter before decides the process's fate.
  if (g_state.previous)
    return g_state.previous(info);
  return EXCEPTION_CONTINUE_SEARCH;
}

void CopyPath(const base::FilePath& path, wchar_t* out) {
  size_t length = std::min(path.value().size(), kPathCapacity - 1);
  std::memcpy(out, path.value().data(), length * sizeof(wchar_t));
  out[length] = L'\0';
}

}  // namespace

ScopedCrashHandler::ScopedCrashHandler(const base::FilePath& exe_folder,
                                       const base::FilePath& crash_folder) {
  if (g_state.active)
    return;
  CopyPath(exe_folder, g_state.exe_folder);
  CopyPath(crash_folder, g_state.crash_folder);
  g_state.previous = SetUnhandledExceptionFilter(HandleException);
  g_state.active = true;
  m_installed = true;
}

ScopedCrashHandler::~ScopedCrashHandler() {
  if (!m_installed)
    return;
  SetUnhandledExceptionFilter(g_state.previous);
  g_state.active = false;
}

}  // namespace exception_report
