#include "base/time.h"

#include <sys/time.h>

#include <ctime>

namespace base {

Time Time::Now() {
  struct timespec ts;
  clock_gettime(CLOCK_REALTIME, &ts);
  return Time(static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) / 1e9);
}

namespace {

std::tm LocalTime(double seconds) {
  std::time_t t = static_cast<std::time_t>(seconds);
  std::tm local_tm = {};
  localtime_r(&t, &local_tm);
  return local_tm;
}

}  // namespace

std::wstring Time::ToLocalDateString() const {
  std::tm t = LocalTime(seconds_);
  wchar_t buffer[16];
  std::wcsftime(buffer, 16, L"%Y%m%d", &t);
  return buffer;
}

std::string Time::ToLocalDateTimeString() const {
  std::tm t = LocalTime(seconds_);
  char buffer[32];
  std::strftime(buffer, sizeof(buffer), "%Y-%m-%d %H:%M:%S", &t);
  return buffer;
}

}  // namespace base
