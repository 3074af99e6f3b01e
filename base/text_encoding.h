#ifndef BASE_TEXT_ENCODING_H_
#define BASE_TEXT_ENCODING_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace base {

// The byte-order mark that text bytes start with, and its length in bytes.
// The readers of text files share these tests and each applies them in its
// own order.
enum class ByteOrderMark { kNone, kUtf8, kUtf16Le, kUtf16Be };
[[nodiscard]] ByteOrderMark DetectByteOrderMark(std::string_view bytes);
[[nodiscard]] size_t ByteOrderMarkLength(ByteOrderMark mark);

// Whether |bytes| without a byte-order mark are UTF-16LE text of a settings
// file: IsTextUnicode accepts them, their length is even, and they open as
// such a file's text does, with an ASCII character (a '[', a ';', a key's
// first letter or a blank) followed by a zero byte. IsTextUnicode alone
// would take an 8-bit file holding NUL bytes for UTF-16 once its length is
// even.
[[nodiscard]] bool IsUnmarkedUtf16Settings(std::string_view bytes);

// Flags of IsTextUnicode, with the Windows values.
enum TextUnicodeFlags : int {
  IS_TEXT_UNICODE_ASCII16 = 0x0001,
  IS_TEXT_UNICODE_REVERSE_ASCII16 = 0x0010,
  IS_TEXT_UNICODE_STATISTICS = 0x0002,
  IS_TEXT_UNICODE_REVERSE_STATISTICS = 0x0020,
  IS_TEXT_UNICODE_CONTROLS = 0x0004,
  IS_TEXT_UNICODE_REVERSE_CONTROLS = 0x0040,
  IS_TEXT_UNICODE_SIGNATURE = 0x0008,
  IS_TEXT_UNICODE_REVERSE_SIGNATURE = 0x0080,
  IS_TEXT_UNICODE_ILLEGAL_CHARS = 0x0100,
  IS_TEXT_UNICODE_ODD_LENGTH = 0x0200,
  IS_TEXT_UNICODE_DBCS_LEADBYTE = 0x0400,
  IS_TEXT_UNICODE_NULL_BYTES = 0x1000,
};

// Win32 IsTextUnicode: whether |length| bytes at |buffer| look like UTF-16LE
// text. |flags| may be null (all tests run) or hold the tests to run; on
// return it holds the flags found among those asked for.
[[nodiscard]] bool IsTextUnicode(const void* buffer, int length, int* flags);

// Win32 MultiByteToWideChar(CP_UTF8, 0, ...): decodes |length| bytes of UTF-8
// into UTF-16 code units, replacing invalid input with U+FFFD exactly as
// Windows does. |length| -1 means up to and including the first NUL.
std::u16string DecodeUTF8AsWindows(const char* bytes, int length);

}  // namespace base

#endif  // BASE_TEXT_ENCODING_H_
