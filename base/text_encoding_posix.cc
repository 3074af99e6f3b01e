#include "base/text_encoding.h"

#include <cstdint>

namespace base {

namespace {

// Groups of IsTextUnicode results.
constexpr int kUnicodeMask = 0x000F;
constexpr int kReverseMask = 0x00F0;
constexpr int kNotUnicodeMask = 0x0F00;
constexpr int kNotAsciiMask = 0xF000;

// Only the first 256 units of a buffer are examined.
constexpr int kMaxExaminedUnits = 256;

bool IsControlUnit(uint16_t unit) {
  return unit == 0x000D || unit == 0x000A || unit == 0x0009 || unit == 0x0020 || unit == 0x3000;
}

bool IsReverseControlUnit(uint16_t unit) {
  return unit == 0x0D00 || unit == 0x0A00 || unit == 0x0900 || unit == 0x2000;
}

}  // namespace

// The statistics here are the simple ones the recorded results show: no
// REVERSE_ASCII16 / REVERSE_STATISTICS / ILLEGAL_CHARS / DBCS_LEADBYTE. Windows
// sets REVERSE_STATISTICS and REVERSE_ASCII16 as well for byte-swapped text
// (the answer stays false) and may answer true for short even-length ASCII
// sentences and BOM-less pure-CJK text; its analysis is not documented, so the
// recorded rules are kept. A zero unit counts as a control both ways (which
// makes the answer false): callers that pad their buffers with zeros must pass
// the real data length.
bool IsTextUnicode(const void* buffer, int length, int* flags) {
  const auto* bytes = static_cast<const unsigned char*>(buffer);
  if (!bytes || length < 2) {
    if (flags)
      *flags = 0;
    return false;
  }
  const int asked = flags ? *flags : ~0;
  int found = 0;
  if (length & 1)
    found |= IS_TEXT_UNICODE_ODD_LENGTH;
  if (bytes[length - 1] == 0)
    --length;
  int units = length / 2;
  if (units > kMaxExaminedUnits)
    units = kMaxExaminedUnits;

  auto unit_at = [bytes](int i) -> uint16_t {
    return static_cast<uint16_t>(bytes[2 * i] | (bytes[2 * i + 1] << 8));
  };

  if (units > 0) {
    if (unit_at(0) == 0xFEFF)
      found |= IS_TEXT_UNICODE_SIGNATURE;
    if (unit_at(0) == 0xFFFE)
      found |= IS_TEXT_UNICODE_REVERSE_SIGNATURE;
  }
  if (asked & IS_TEXT_UNICODE_STATISTICS) {
    int small = 0;
    for (int i = 0; i < units; ++i) {
      if (unit_at(i) <= 0x00FF)
        ++small;
    }
    if (small > units / 2)
      found |= IS_TEXT_UNICODE_STATISTICS;
  }
  if (asked & IS_TEXT_UNICODE_NULL_BYTES) {
    for (int i = 0; i < units; ++i) {
      if (bytes[2 * i] == 0 || bytes[2 * i + 1] == 0) {
        found |= IS_TEXT_UNICODE_NULL_BYTES;
        break;
      }
    }
  }
  if (asked & (IS_TEXT_UNICODE_CONTROLS | IS_TEXT_UNICODE_REVERSE_CONTROLS)) {
    for (int i = 0; i < units; ++i) {
      const uint16_t unit = unit_at(i);
      if (unit == 0 || IsControlUnit(unit))
        found |= IS_TEXT_UNICODE_CONTROLS;
      if (unit == 0 || IsReverseControlUnit(unit))
        found |= IS_TEXT_UNICODE_REVERSE_CONTROLS;
    }
  }

  found &= asked;
  if (flags)
    *flags = found;
  if (found & (kReverseMask | kNotUnicodeMask))
    return false;
  if (found & kNotAsciiMask)
    return true;
  return (found & kUnicodeMask) != 0;
}

}  // namespace base
