#include "base/text_encoding.h"

#include <climits>
#include <cstring>

namespace base {

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

}  // namespace base
