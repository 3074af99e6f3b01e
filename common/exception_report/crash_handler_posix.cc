#include <elf.h>
#include <execinfo.h>
#include <fcntl.h>
#include <link.h>
#include <signal.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "base/utf_string_conversions.h"
#include "common/exception_report/crash_handler.h"

namespace exception_report {

namespace {

constexpr int kSignals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};
constexpr int kSignalCount = sizeof(kSignals) / sizeof(kSignals[0]);
constexpr size_t kPathCapacity = 4096;
constexpr size_t kAltStackSize = 64 * 1024;
constexpr size_t kModulesCapacity = 32 * 1024;
constexpr size_t kBuildIdCapacity = 2 * 64 + 1;  // hex digits of a long build id

// Everything the signal handler reads is prepared when the handler is
// installed: the handler itself calls only async-signal-safe functions.
struct HandlerState {
  bool active = false;
  char crash_folder[kPathCapacity] = {};
  char exe_folder[kPathCapacity] = {};
  char build_id[kBuildIdCapacity] = {};  // of the module holding this handler
  char modules[kModulesCapacity] = {};   // the load map, one module a line
  struct sigaction previous[kSignalCount] = {};
  stack_t previous_stack = {};
  void* alt_stack = nullptr;
};

HandlerState g_state;

// Appends to a fixed buffer without allocating.
class RecordBuffer {
 public:
  void Add(const char* text) {
    while (*text && m_length < sizeof(m_data) - 1)
      m_data[m_length++] = *text++;
  }
  void AddNumber(unsigned long long value, int min_digits = 1) {
    char digits[24];
    int count = 0;
    do {
      digits[count++] = static_cast<char>('0' + value % 10);
      value /= 10;
    } while (value || count < min_digits);
    while (count > 0 && m_length < sizeof(m_data) - 1)
      m_data[m_length++] = digits[--count];
  }
  const char* data() const { return m_data; }
  size_t length() const { return m_length; }
  void Clear() { m_length = 0; }

 private:
  char m_data[kPathCapacity + 256] = {};
  size_t m_length = 0;
};

void WriteAll(int fd, const char* data, size_t length) {
  while (length > 0) {
    ssize_t written = write(fd, data, length);
    if (written <= 0)
      return;
    data += written;
    length -= static_cast<size_t>(written);
  }
}

const char* SignalName(int signal) {
  switch (signal) {
    case SIGSEGV:
      return "SIGSEGV";
    case SIGBUS:
      return "SIGBUS";
    case SIGFPE:
      return "SIGFPE";
    case SIGILL:
      return "SIGILL";
    case SIGABRT:
      return "SIGABRT";
  }
  return "signal";
}

// "YYYY-MM-DD hh:mm:ss UTC" from seconds since 1970, without the C
// library's time conversion (which may lock).
void AddUtcTime(RecordBuffer* out, time_t seconds) {
  long long days = seconds / 86400;
  long long rest = seconds % 86400;
  // Civil date from a day count (proleptic Gregorian calendar).
  days += 719468;
  long long era = days / 146097;
  long long day_of_era = days - era * 146097;
  long long year_of_era =
      (day_of_era - day_of_era / 1460 + day_of_era / 36524 - day_of_era / 146096) / 365;
  long long day_of_year = day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  long long mp = (5 * day_of_year + 2) / 153;
  long long day = day_of_year - (153 * mp + 2) / 5 + 1;
  long long month = mp < 10 ? mp + 3 : mp - 9;
  long long year = year_of_era + era * 400 + (month <= 2);
  out->AddNumber(year, 4);
  out->Add("-");
  out->AddNumber(month, 2);
  out->Add("-");
  out->AddNumber(day, 2);
  out->Add(" ");
  out->AddNumber(rest / 3600, 2);
  out->Add(":");
  out->AddNumber(rest / 60 % 60, 2);
  out->Add(":");
  out->AddNumber(rest % 60, 2);
  out->Add(" UTC");
}

// The GNU build id of a loaded module as hex digits, empty when it has none.
std::string BuildIdOf(const dl_phdr_info* info) {
  for (int i = 0; i < info->dlpi_phnum; ++i) {
    const ElfW(Phdr)& segment = info->dlpi_phdr[i];
    if (segment.p_type != PT_NOTE)
      continue;
    const char* note = reinterpret_cast<const char*>(info->dlpi_addr + segment.p_vaddr);
    const char* end = note + segment.p_memsz;
    while (note + sizeof(ElfW(Nhdr)) <= end) {
      const auto* header = reinterpret_cast<const ElfW(Nhdr)*>(note);
      const char* name = note + sizeof(ElfW(Nhdr));
      const char* desc = name + ((header->n_namesz + 3) & ~3u);
      const char* next = desc + ((header->n_descsz + 3) & ~3u);
      if (next > end)
        break;
      if (header->n_type == NT_GNU_BUILD_ID && header->n_namesz == 4 &&
          std::memcmp(name, "GNU", 4) == 0) {
        static const char kHex[] = "0123456789abcdef";
        std::string hex;
        for (size_t b = 0; b < header->n_descsz && hex.size() + 2 < kBuildIdCapacity; ++b) {
          const unsigned char byte = static_cast<unsigned char>(desc[b]);
          hex += kHex[byte >> 4];
          hex += kHex[byte & 15];
        }
        return hex;
      }
      note = next;
    }
  }
  return std::string();
}

bool Contains(const dl_phdr_info* info, const void* address) {
  const auto where = reinterpret_cast<ElfW(Addr)>(address);
  for (int i = 0; i < info->dlpi_phnum; ++i) {
    const ElfW(Phdr)& segment = info->dlpi_phdr[i];
    const ElfW(Addr) start = info->dlpi_addr + segment.p_vaddr;
    if (segment.p_type == PT_LOAD && where >= start && where < start + segment.p_memsz)
      return true;
  }
  return false;
}

void HandleSignal(int signal, siginfo_t*, void*);

struct ModuleMap {
  std::string text;
  std::string own_build_id;
};

// "<load address> <path> <build id>" for every loaded module; the main
// program, which the loader lists without a name, by its real path.
int AddModule(dl_phdr_info* info, size_t, void* data) {
  auto* map = static_cast<ModuleMap*>(data);
  std::string path = info->dlpi_name ? info->dlpi_name : "";
  if (path.empty()) {
    char exe[kPathCapacity];
    ssize_t length = readlink("/proc/self/exe", exe, sizeof(exe) - 1);
    path = length > 0 ? std::string(exe, static_cast<size_t>(length)) : "(main program)";
  }
  std::string build_id = BuildIdOf(info);
  if (Contains(info, reinterpret_cast<const void*>(&HandleSignal)))
    map->own_build_id = build_id;
  char address[32];
  std::snprintf(address, sizeof(address), "0x%lx", static_cast<unsigned long>(info->dlpi_addr));
  map->text += "  " + std::string(address) + " " + path + " " +
               (build_id.empty() ? std::string("-") : build_id) + "\n";
  return 0;
}

// Taken when the handler is installed: the loader's lists may not be read
// inside a signal handler. Modules loaded later are missing from the map.
void RecordModules() {
  ModuleMap map;
  dl_iterate_phdr(AddModule, &map);
  size_t length = std::min(map.text.size(), kModulesCapacity - 1);
  std::memcpy(g_state.modules, map.text.data(), length);
  g_state.modules[length] = '\0';
  length = std::min(map.own_build_id.size(), kBuildIdCapacity - 1);
  std::memcpy(g_state.build_id, map.own_build_id.data(), length);
  g_state.build_id[length] = '\0';
}

void WriteCrashRecord(int signal) {
  if (!g_state.crash_folder[0])
    return;
  mkdir(g_state.crash_folder, 0755);
  time_t now = time(nullptr);
  RecordBuffer buffer;
  buffer.Add(g_state.crash_folder);
  buffer.Add("/crash-");
  buffer.AddNumber(static_cast<unsigned long long>(now));
  buffer.Add("-");
  buffer.AddNumber(static_cast<unsigned long long>(getpid()));
  buffer.Add(".txt");
  int fd = open(buffer.data(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0)
    return;
  buffer.Clear();
  buffer.Add("time: ");
  AddUtcTime(&buffer, now);
  buffer.Add("\nsignal: ");
  buffer.AddNumber(static_cast<unsigned long long>(signal));
  buffer.Add(" (");
  buffer.Add(SignalName(signal));
  buffer.Add(")\nprocess: ");
  buffer.AddNumber(static_cast<unsigned long long>(getpid()));
  buffer.Add("\nexecutable folder: ");
  buffer.Add(g_state.exe_folder);
  buffer.Add("\nbuild id: ");
  buffer.Add(g_state.build_id[0] ? g_state.build_id : "-");
  buffer.Add("\nmodules (load address, path, build id):\n");
  WriteAll(fd, buffer.data(), buffer.length());
  WriteAll(fd, g_state.modules, std::strlen(g_state.modules));
  buffer.Clear();
  buffer.Add("backtrace:\n");
  WriteAll(fd, buffer.data(), buffer.length());
  void* frames[64];
  int count = backtrace(frames, 64);
  backtrace_symbols_fd(frames, count, fd);
  close(fd);
}

void HandleSignal(int signal, siginfo_t*, void*) {
  WriteCrashRecord(signal);
  // Hand the signal back to whoever had it before: it is delivered again
  // under the previous disposition as soon as this handler returns (a fault
  // also recurs when the instruction is retried).
  for (int i = 0; i < kSignalCount; ++i) {
    if (kSignals[i] == signal)
      sigaction(signal, &g_state.previous[i], nullptr);
  }
  raise(signal);
}

void CopyPath(const base::FilePath& path, char* out) {
  std::string utf8 = base::WideToUTF8(path.value());
  size_t length = std::min(utf8.size(), kPathCapacity - 1);
  std::memcpy(out, utf8.data(), length);
  out[length] = '\0';
}

}  // namespace

ScopedCrashHandler::ScopedCrashHandler(const base::FilePath& exe_folder,
                                       const base::FilePath& crash_folder) {
  if (g_state.active)
    return;
  CopyPath(exe_folder, g_state.exe_folder);
  CopyPath(crash_folder, g_state.crash_folder);
  RecordModules();

  // The first backtrace() loads the unwinder, which must not happen inside
  // the signal handler.
  void* warm_up[1];
  backtrace(warm_up, 1);

  // A stack of its own lets the handler run after a stack overflow.
  g_state.alt_stack = std::malloc(kAltStackSize);
  if (g_state.alt_stack) {
    stack_t stack = {};
    stack.ss_sp = g_state.alt_stack;
    stack.ss_size = kAltStackSize;
    if (sigaltstack(&stack, &g_state.previous_stack) != 0) {
      std::free(g_state.alt_stack);
      g_state.alt_stack = nullptr;
    }
  }

  struct sigaction action = {};
  action.sa_sigaction = HandleSignal;
  action.sa_flags = SA_SIGINFO | SA_ONSTACK;
  sigemptyset(&action.sa_mask);
  for (int i = 0; i < kSignalCount; ++i)
    sigaction(kSignals[i], &action, &g_state.previous[i]);
  g_state.active = true;
  m_installed = true;
}

ScopedCrashHandler::~ScopedCrashHandler() {
  if (!m_installed)
    return;
  for (int i = 0; i < kSignalCount; ++i)
    sigaction(kSignals[i], &g_state.previous[i], nullptr);
  if (g_state.alt_stack) {
    sigaltstack(&g_state.previous_stack, nullptr);
    std::free(g_state.alt_stack);
    g_state.alt_stack = nullptr;
  }
  g_state.active = false;
}

}  // namespace exception_report
