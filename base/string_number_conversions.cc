#include "base/string_number_conversions.h"

#include <charconv>
#include <climits>
#include <cwctype>

namespace base {

std::wstring IntToWString(int value) {
  return std::to_wstring(value);
}

std::wstring Int64ToWString(int64_t value) {
  return std::to_wstring(value);
}

std::string IntToString(int value) {
  return std::to_string(value);
}

namespace {

template <typename Char>
bool ParseWhole(std::basic_string_view<Char> text, int* out) {
  *out = 0;
  if (text.empty())
    return false;
  size_t i = 0;
  bool negative = false;
  if (text[0] == '-' || text[0] == '+') {
    negative = text[0] == '-';
    i = 1;
  }
  if (i == text.size())
    return false;
  int64_t value = 0;
  for (; i < text.size(); ++i) {
    Char c = text[i];
    if (c < '0' || c > '9')
      return false;
    value = value * 10 + (c - '0');
    if (value > static_cast<int64_t>(INT_MAX) + 1) {
      *out = negative ? INT_MIN : INT_MAX;
      return false;
    }
    *out = static_cast<int>(negative ? -value : (value > INT_MAX ? INT_MAX : value));
  }
  if (!negative && value > INT_MAX)
    return false;
  return true;
}

}  // namespace

bool StringToInt(std::wstring_view text, int* out) {
  return ParseWhole(text, out);
}

bool StringToInt(std::string_view text, int* out) {
  return ParseWhole(text, out);
}

int WToI(std::wstring_view text) {
  size_t i = 0;
  while (i < text.size() && std::iswspace(static_cast<wint_t>(text[i])))
    ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == L'-' || text[i] == L'+')) {
    negative = text[i] == L'-';
    ++i;
  }
  int64_t value = 0;
  for (; i < text.size() && text[i] >= L'0' && text[i] <= L'9'; ++i) {
    value = value * 10 + (text[i] - L'0');
    if (value > static_cast<int64_t>(INT_MAX) + 1)
      break;
  }
  if (negative)
    value = -value;
  if (value > INT_MAX)
    return INT_MAX;
  if (value < INT_MIN)
    return INT_MIN;
  return static_cast<int>(value);
}

}  // namespace base
