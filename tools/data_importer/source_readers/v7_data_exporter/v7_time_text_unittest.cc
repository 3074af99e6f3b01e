#include "tools/data_importer/source_readers/v7_data_exporter/v7_time_text.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>

#include "base/environment.h"
#include "base/utf_string_conversions.h"

namespace data_importer {

namespace {

// Pins the process's time zone for one test and restores it afterwards.
class ScopedTimeZone {
 public:
  explicit ScopedTimeZone(const char* zone) {
    if (const char* old = std::getenv("TZ"))
      m_saved = old;
    m_had = std::getenv("TZ") != nullptr;
    EXPECT_TRUE(base::SetEnvironmentString("TZ", base::UTF8ToWide(zone)));
    Reset();
  }
  ~ScopedTimeZone() {
    // Restoring is best effort: a later test pins its own zone.
    if (m_had)
      (void)base::SetEnvironmentString("TZ", base::UTF8ToWide(m_saved));
    else
      (void)base::UnsetEnvironmentString("TZ");
    Reset();
  }

 private:
  static void Reset() {
#if defined(_WIN32)
    _tzset();
#else
    tzset();
#endif
  }

  std::string m_saved;
  bool m_had = false;
};

TEST(V7TimeTextTest, PatternsAndOpenCases) {
  ScopedTimeZone zone("CST-8");  // UTC+8 all year, as generation 7's users mostly were
  const int64_t kDay = 86400;
  const int64_t k20240315 = 1710460800 - 8 * 3600;  // 2024-03-15 00:00 local
  const int64_t k101112 = 10 * 3600 + 11 * 60 + 12;
  struct Case {
    const char* text;
    int64_t expected;
  } cases[] = {
      // Long forms (11 to 20 characters).
      {"2024-03-15 10:11:12", k20240315 + k101112},
      {"2024-3-5 1:2:3", k20240315 - 10 * kDay + 3723},
      {"2024/03/15 10:11:12", k20240315 + k101112},
      {"20240315 101112", k20240315 + k101112},               // exactly 15, no separator
      {"2024-03-15 10:11", k20240315 + 10 * 3600 + 11 * 60},  // missing second reads 0
      {"2024-03/15 10:11:12", 0},                             // "-" wins: "/" stops the scan early
      // Short forms (1 to 10 characters).
      {"2024-03-15", k20240315},
      {"2024/3/15", k20240315},
      {"20240315", k20240315},
      {"2024-02-30", k20240315 - 14 * kDay},  // normalised like mktime does: March 1st
      // Nothing to take.
      {"", 0},
      {"2024-03-15 10:11:12.5", 0},  // 21 characters
      {"202403151011", 0},           // 12 characters, no separator, not 15
      {"20240315 1011125", 0},       // 16 characters
      {"yesterday", 0},
      {"2024-", 0},
      {"-2147483648-1-1 0:0:0", 0},  // 21 characters
      {"-2147483648-1-1", 0},        // year far out of range
  };
  for (const Case& c : cases)
    EXPECT_EQ(c.expected, ParseV7TimeText(c.text)) << '"' << c.text << '"';

  // The conversion is the local one: the same text one zone further east is
  // an hour earlier.
  {
    ScopedTimeZone east("JST-9");
    EXPECT_EQ(k20240315 - 3600, ParseV7TimeText("2024-03-15"));
  }

  // Outside 1970-01-01 00:00:00 to 3000-12-31 23:59:59 UTC the answer is -1,
  // the local midnight that starts 1970 here included (it is 16:00 UTC on
  // the day before).
  {
    ScopedTimeZone utc("UTC0");
    EXPECT_EQ(-1, ParseV7TimeText("1969-12-31"));
    EXPECT_EQ(-1, ParseV7TimeText("1969-12-31 23:59:59"));
    EXPECT_EQ(0, ParseV7TimeText("1970-01-01 00:00:00"));
    EXPECT_EQ(32535215999, ParseV7TimeText("3000-12-31 23:59:59"));
    EXPECT_EQ(-1, ParseV7TimeText("3001-01-01"));
  }
  EXPECT_EQ(-1, ParseV7TimeText("1970-01-01"));
  EXPECT_EQ(28800, ParseV7TimeText("1970-01-01 16:00:00"));

  // A NUL inside the text ends the scan; the length still counts it.
  EXPECT_EQ(k20240315, ParseV7TimeText(std::string_view("2024-03-15\0 10:11:12", 20)));
}

}  // namespace

}  // namespace data_importer
