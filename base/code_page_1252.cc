#include "base/code_page_1252.h"

namespace base {

namespace {

constexpr char16_t kHigh[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

}  // namespace

wchar_t Cp1252ToWide(unsigned char byte) {
  return byte >= 0x80 && byte < 0xA0 ? static_cast<wchar_t>(kHigh[byte - 0x80]) : byte;
}

std::wstring Cp1252ToWide(std::string_view bytes) {
  std::wstring text;
  text.reserve(bytes.size());
  for (char byte : bytes)
    text.push_back(Cp1252ToWide(static_cast<unsigned char>(byte)));
  return text;
}

unsigned char WideToCp1252(wchar_t c) {
  if (c < 0x80 || (c >= 0xA0 && c <= 0xFF))
    return static_cast<unsigned char>(c);
  for (int i = 0; i < 32; ++i) {
    if (static_cast<wchar_t>(kHigh[i]) == c)
      return static_cast<unsigned char>(0x80 + i);
  }
  return '?';
}

}  // namespace base
