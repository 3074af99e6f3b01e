#include "base/code_page.h"

#include <windows.h>

namespace base {

namespace {

uint32_t Convertible(uint32_t code_page) {
  return IsKnownCodePage(code_page) ? code_page : kCodePageWestern;
}

}  // namespace

bool IsKnownCodePage(uint32_t code_page) {
  return code_page == kCodePageUTF8 || IsValidCodePage(code_page);
}

std::wstring CodePageToWide(std::string_view bytes, uint32_t code_page) {
  if (bytes.empty())
    return std::wstring();
  const UINT page = Convertible(code_page);
  const int size = static_cast<int>(bytes.size());
  // Without MB_ERR_INVALID_CHARS the system replaces what the code page does
  // not assign, as the profile functions read such a file.
  int length = MultiByteToWideChar(page, 0, bytes.data(), size, nullptr, 0);
  if (length <= 0)
    return std::wstring();
  std::wstring text(static_cast<size_t>(length), L'\0');
  MultiByteToWideChar(page, 0, bytes.data(), size, text.data(), length);
  return text;
}

std::string WideToCodePage(std::wstring_view text, uint32_t code_page) {
  if (text.empty())
    return std::string();
  const UINT page = Convertible(code_page);
  const int size = static_cast<int>(text.size());
  // UTF-8 takes no default character; every other code page writes '?'.
  const char* fallback = page == kCodePageUTF8 ? nullptr : "?";
  int length = WideCharToMultiByte(page, 0, text.data(), size, nullptr, 0, fallback, nullptr);
  if (length <= 0)
    return std::string();
  std::string bytes(static_cast<size_t>(length), '\0');
  WideCharToMultiByte(page, 0, text.data(), size, bytes.data(), length, fallback, nullptr);
  return bytes;
}

}  // namespace base
