#include "base/text_encoding.h"

#include <climits>
#include <cstring>

namespace base {

namespace {

bool IsContinuation(unsigned char byte) {
  return byte >= 0x80 && byte <= 0xBF;
}

}  // namespace

ByteOrderMark DetectByteOrderMark(std::string_view bytes) {
  if (bytes.substr(0, 3) == "\xEF\xBB\xBF")
    return ByteOrderMark::kUtf8;
  if (bytes.substr(0, 2) == "\xFF\xFE")
    return ByteOrderMark::kUtf16Le;
  if (bytes.substr(0, 2) == "\xFE\xFF")
    return ByteOrderMark::kUtf16Be;
  return ByteOrderMark::kNone;
}

size_t ByteOrderMarkLength(ByteOrderMark mark) {
  switch (mark) {
    case ByteOrderMark::kUtf8:
      return 3;
    case ByteOrderMark::kUtf16Le:
    case ByteOrderMark::kUtf16Be:
      return 2;
    case ByteOrderMark::kNone:
      break;
  }
  return 0;
}

bool IsUnmarkedUtf16Settings(std::string_view bytes) {
  const bool ascii_then_zero = bytes.size() >= 2 && bytes[0] != 0 &&
                               static_cast<unsigned char>(bytes[0]) < 0x80 && bytes[1] == 0;
  return ascii_then_zero && bytes.size() % 2 == 0 && bytes.size() <= INT_MAX &&
         IsTextUnicode(bytes.data(), static_cast<int>(bytes.size()), nullptr);
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
