#include "base/windows_headers.h"

// <windows.h> names the IsTextUnicode flags as macros; the header below
// names them as constants of the same values.
#undef IS_TEXT_UNICODE_ASCII16
#undef IS_TEXT_UNICODE_REVERSE_ASCII16
#undef IS_TEXT_UNICODE_STATISTICS
#undef IS_TEXT_UNICODE_REVERSE_STATISTICS
#undef IS_TEXT_UNICODE_CONTROLS
#undef IS_TEXT_UNICODE_REVERSE_CONTROLS
#undef IS_TEXT_UNICODE_SIGNATURE
#undef IS_TEXT_UNICODE_REVERSE_SIGNATURE
#undef IS_TEXT_UNICODE_ILLEGAL_CHARS
#undef IS_TEXT_UNICODE_ODD_LENGTH
#undef IS_TEXT_UNICODE_DBCS_LEADBYTE
#undef IS_TEXT_UNICODE_NULL_BYTES

#include "base/text_encoding.h"

namespace base {

bool IsTextUnicode(const void* buffer, int length, int* flags) {
  // The system reads through a null buffer; nothing is no text.
  if (!buffer || length < 2) {
    if (flags)
      *flags = 0;
    return false;
  }
  return ::IsTextUnicode(buffer, length, flags) != FALSE;
}

std::u16string DecodeUTF8AsWindows(const char* bytes, int length) {
  if (!bytes || length == 0)
    return std::u16string();
  int units = MultiByteToWideChar(CP_UTF8, 0, bytes, length, nullptr, 0);
  if (units <= 0)
    return std::u16string();
  std::wstring text(static_cast<size_t>(units), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, bytes, length, text.data(), units);
  // wchar_t is a UTF-16 unit here.
  return std::u16string(text.begin(), text.end());
}

}  // namespace base
