#include "tools/data_importer/source_readers/v7_data_exporter/v7_time_text.h"

#include <cstdio>
#include <ctime>
#include <string>

namespace data_importer {

int64_t ParseV7TimeText(std::string_view text) {
  const size_t length = text.size();
  if (length == 0 || length > 20)
    return 0;
  // sscanf needs a terminated string; a NUL inside the text simply ends the
  // scan early.
  const std::string terminated(text);
  const bool dash = text.find('-') != std::string_view::npos;
  const bool slash = text.find('/') != std::string_view::npos;

  const char* pattern = nullptr;
  if (length > 10) {
    if (dash)
      pattern = "%d-%d-%d %d:%d:%d";
    else if (slash)
      pattern = "%d/%d/%d %d:%d:%d";
    else if (length == 15)
      pattern = "%4d%2d%2d %2d%2d%2d";
    else
      return 0;
  } else {
    pattern = dash ? "%d-%d-%d" : slash ? "%d/%d/%d" : "%4d%2d%2d";
  }

  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
  int fields =
      std::sscanf(terminated.c_str(), pattern, &year, &month, &day, &hour, &minute, &second);
  if (fields < 3)
    return 0;
  // tm_year counts from 1900; a year near INT_MIN would overflow it.
  if (year < -1000000 || year > 1000000)
    return 0;

  std::tm parts = {};
  parts.tm_year = year - 1900;
  parts.tm_mon = month - 1;
  parts.tm_mday = day;
  parts.tm_hour = hour;
  parts.tm_min = minute;
  parts.tm_sec = second;
  parts.tm_isdst = -1;  // let the C library decide, as the local conversion does
#if defined(_WIN32)
  // The platform's own 64-bit conversion answers -1 outside its range.
  return static_cast<int64_t>(_mktime64(&parts));
#else
  const int64_t seconds = static_cast<int64_t>(std::mktime(&parts));
  // The 64-bit conversion of the player's platform covers 1970-01-01
  // 00:00:00 to 3000-12-31 23:59:59 UTC and answers -1 for anything else.
  constexpr int64_t kLastSecond = 32535215999;  // 3000-12-31 23:59:59 UTC
  return seconds < 0 || seconds > kLastSecond ? -1 : seconds;
#endif
}

}  // namespace data_importer
