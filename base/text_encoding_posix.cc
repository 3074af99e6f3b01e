#include "base/text_encoding.h"

#include <climits>
#include <cstdint>
#include <cstring>

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

bool IsContinuation(unsigned char byte) {
  return byte >= 0x80 && byte <= 0xBF;
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

// Follows the recorded conversion, which Windows' own tests confirm for every
// kind of bad sequence inside the text. A sequence cut short by the end of the
// input becomes one U+FFFD and takes the rest of the input with it; that part
// was recorded only on the reference implementation.
std::u16string DecodeUTF8AsWindows(const char* input, int length) {
  std::u16string out;
  if (!input || length == 0)
    return out;
  const auto* bytes = reinterpret_cast<const unsigned char*>(input);
  size_t size = length < 0 ? std::strlen(input) + 1 : static_cast<size_t>(length);
  out.reserve(size);
  size_t i = 0;
  while (i < size) {
    const unsigned char lead = bytes[i];
    if (lead < 0x80) {
      out.push_back(lead);
      ++i;
      continue;
    }
    size_t needed;
    uint32_t value;
    if (lead >= 0xC2 && lead <= 0xDF) {
      needed = 2;
      value = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
      needed = 3;
      value = lead & 0x0F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
      needed = 4;
      value = lead & 0x07;
    } else {
      out.push_back(0xFFFD);
      ++i;
      continue;
    }
    if (size - i < needed) {
      out.push_back(0xFFFD);
      break;
    }
    // The second byte may rule out overlong forms, surrogates and values
    // beyond U+10FFFF: then the two bytes make one replacement.
    const unsigned char second = bytes[i + 1];
    if ((lead == 0xE0 && second >= 0x80 && second <= 0x9F) ||
        (lead == 0xED && second >= 0xA0 && second <= 0xBF) ||
        (lead == 0xF0 && second >= 0x80 && second <= 0x8F) ||
        (lead == 0xF4 && second >= 0x90 && second <= 0xBF)) {
      out.push_back(0xFFFD);
      i += 2;
      continue;
    }
    size_t taken = 1;
    while (taken < needed && IsContinuation(bytes[i + taken])) {
      value = (value << 6) | (bytes[i + taken] & 0x3F);
      ++taken;
    }
    i += taken;
    if (taken < needed) {
      out.push_back(0xFFFD);
      continue;
    }
    if (value >= 0x10000) {
      value -= 0x10000;
      out.push_back(static_cast<char16_t>(0xD800 + (value >> 10)));
      out.push_back(static_cast<char16_t>(0xDC00 + (value & 0x3FF)));
    } else {
      out.push_back(static_cast<char16_t>(value));
    }
  }
  return out;
}

}  // namespace base
