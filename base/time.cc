#include "base/time.h"

#include <cstdint>
#include <ctime>

#if defined(_WIN32)
#include "base/windows_headers.h"
#else
#include <sys/time.h>
#endif

namespace base {

Time Time::Now() {
#if defined(_WIN32)
  // 100-nanosecond intervals since 1601-01-01 UTC.
  FILETIME ft;
  GetSystemTimePreciseAsFileTime(&ft);
  ULARGE_INTEGER ticks;
  ticks.LowPart = ft.dwLowDateTime;
  ticks.HighPart = ft.dwHighDateTime;
  constexpr uint64_t kTicksFrom1601To1970 = 116444736000000000ULL;
  return Time(static_cast<double>(ticks.QuadPart - kTicksFrom1601To1970) / 1e7);
#else
  struct timespec ts;
  clock_gettime(CLOCK_REALTIME, &ts);
  return Time(static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) / 1e9);
#endif
}

namespace {

std::tm LocalTime(double seconds) {
  std::time_t t = static_cast<std::time_t>(seconds);
  std::tm local_tm = {};
#if defined(_WIN32)
  if (localtime_s(&local_tm, &t) != 0)
    local_tm = {};
#else
  localtime_r(&t, &local_tm);
#endif
  return local_tm;
}

}  // namespace

std::wstring Time::ToLocalDateString() const {
  std::tm t = LocalTime(m_seconds);
  wchar_t buffer[16];
  std::wcsftime(buffer, 16, L"%Y%m%d", &t);
  return buffer;
}

std::string Time::ToLocalDateTimeString() const {
  std::tm t = LocalTime(m_seconds);
  char buffer[32];
  std::strftime(buffer, sizeof(buffer), "%Y-%m-%d %H:%M:%S", &t);
  return buffer;
}

}  // namespace base
