#ifndef BASE_STRING_NUMBER_CONVERSIONS_H_
#define BASE_STRING_NUMBER_CONVERSIONS_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace base {

// Decimal text of a number ("-3", "100").
std::wstring IntToWString(int value);
std::wstring Int64ToWString(int64_t value);
std::string IntToString(int value);

// Whole-text decimal conversion with an optional sign. Answers false when the
// text is empty, holds anything else or does not fit; |*out| then holds the
// best effort (0 for no digits), as the player's base library does.
[[nodiscard]] bool StringToInt(std::wstring_view text, int* out);
[[nodiscard]] bool StringToInt(std::string_view text, int* out);

// The C runtime's _wtoi: skips leading blanks, takes an optional sign and
// the leading digits, ignores the rest; 0 when no digit comes first.
// Out-of-range values are clamped to the int range.
[[nodiscard]] int WToI(std::wstring_view text);

}  // namespace base

#endif  // BASE_STRING_NUMBER_CONVERSIONS_H_
