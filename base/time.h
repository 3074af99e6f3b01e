#ifndef BASE_TIME_H_
#define BASE_TIME_H_

#include <string>

namespace base {

// Wall-clock time as seconds since 1970-01-01 UTC, with fractions.
class Time {
 public:
  static Time Now();
  static Time FromDoubleT(double seconds) { return Time(seconds); }
  [[nodiscard]] double ToDoubleT() const { return m_seconds; }

  // Local time as "YYYYMMDD" and "YYYY-MM-DD HH:MM:SS" texts.
  std::wstring ToLocalDateString() const;
  std::string ToLocalDateTimeString() const;

 private:
  explicit Time(double seconds) : m_seconds(seconds) {}
  double m_seconds = 0.0;
};

}  // namespace base

#endif  // BASE_TIME_H_
