#include "common/exception_report/crash_handler.h"

#include <execinfo.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "base/utf_string_conversions.h"

namespace exception_report {

namespace {

constexpr int kSignals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};
constexpr int kSignalCount = sizeof(kSignals) / sizeof(kSignals[0]);
constexpr size_t kPathCapacity = 4096;
constexpr size_t kAltStackSize = 64 * 1024;

// Everything the signal handler reads is prepared when the handler is
// installed: the handler itself calls only async-signal-safe functions.
struct HandlerState {
  bool active = false;
  char crash_folder[kPathCapacity] = {};
  char exe_folder[kPathCapacity] = {};
  struct sigaction previous[kSignalCount] = {};
  stack_t previous_stack = {};
  void* alt_stack = nullptr;
};

HandlerState g_state;

// Appends to a fixed buffer without allocating.
class RecordBuffer {
 public:
  void Add(const char* text) {
    while (*text && length_ < sizeof(data_) - 1)
      data_[length_++] = *text++;
  }
  void AddNumber(unsigned long long value, int min_digits = 1) {
    char digits[24];
    int count = 0;
    do {
      digits[count++] = static_cast<char>('0' + value % 10);
      value /= 10;
    } while (value || count < min_digits);
    while (count > 0 && length_ < sizeof(data_) - 1)
      data_[length_++] = digits[--count];
  }
  const char* data() const { return data_; }
  size_t length() const { return length_; }
  void Clear() { length_ = 0; }

 private:
  char data_[kPathCapacity + 256] = {};
  size_t length_ = 0;
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
    case SIGSEGV: return "SIGSEGV";
    case SIGBUS: return "SIGBUS";
    case SIGFPE: return "SIGFPE";
    case SIGILL: return "SIGILL";
    case SIGABRT: return "SIGABRT";
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
  long long year_of_era = (day_of_era - day_of_era / 1460 + day_of_era / 36524 -
                           day_of_era / 146096) / 365;
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
  buffer.Add("\nbacktrace:\n");
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
  installed_ = true;
}

ScopedCrashHandler::~ScopedCrashHandler() {
  if (!installed_)
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
