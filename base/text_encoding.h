#ifndef BASE_TEXT_ENCODING_H_
#define BASE_TEXT_ENCODING_H_

#include <cstddef>
#include <cstdint>
#include <string>

namespace base {

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
