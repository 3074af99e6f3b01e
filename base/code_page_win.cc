#include "base/code_page.h"

#include <windows.h>

namespace base {

namespace {

constexpr wchar_t kReplacement = L'\xFFFD';

uint32_t Convertible(uint32_t code_page) {
  return IsKnownCodePage(code_page) ? code_page : kCodePageWestern;
}

// Converts |bytes| when every sequence in it is a character of |page|;
// false otherwise.
bool ConvertStrictly(UINT page, const char* bytes, int size, std::wstring* text) {
  int length = MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, bytes, size, nullptr, 0);
  if (length <= 0)
    return false;
  text->resize(static_cast<size_t>(length));
  return MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, bytes, size, text->data(), length) ==
         length;
}

}  // namespace

bool IsKnownCodePage(uint32_t code_page) {
  return code_page == kCodePageUTF8 || IsValidCodePage(code_page);
}

std::wstring CodePageToWide(std::string_view bytes, uint32_t code_page) {
  std::wstring text;
  if (bytes.empty())
    return text;
  const UINT page = Convertible(code_page);
  if (ConvertStrictly(page, bytes.data(), static_cast<int>(bytes.size()), &text))
    return text;

  // Something in the text is no character of the code page. The system's own
  // replacement differs between code pages and versions (a lead byte can
  // swallow the byte after it), so the text is taken one character at a time
  // instead: a byte sequence without a character becomes U+FFFD and the next
  // byte starts afresh, which is what the other builds read too.
  text.clear();
  if (page == kCodePageUTF8) {
    int length =
        MultiByteToWideChar(page, 0, bytes.data(), static_cast<int>(bytes.size()), nullptr, 0);
    text.resize(static_cast<size_t>(length > 0 ? length : 0));
    if (length > 0)
      MultiByteToWideChar(page, 0, bytes.data(), static_cast<int>(bytes.size()), text.data(),
                          length);
    return text;
  }
  CPINFO info = {};
  const bool double_byte = GetCPInfo(page, &info) && info.MaxCharSize == 2;
  std::wstring piece;
  for (size_t i = 0; i < bytes.size();) {
    const BYTE lead = static_cast<BYTE>(bytes[i]);
    if (double_byte && IsDBCSLeadByteEx(page, lead) && i + 1 < bytes.size() &&
        ConvertStrictly(page, bytes.data() + i, 2, &piece)) {
      text += piece;
      i += 2;
      continue;
    }
    if ((!double_byte || !IsDBCSLeadByteEx(page, lead)) &&
        ConvertStrictly(page, bytes.data() + i, 1, &piece)) {
      text += piece;
    } else {
      text.push_back(kReplacement);
    }
    ++i;
  }
  return text;
}

std::string WideToCodePage(std::wstring_view text, uint32_t code_page) {
  std::string bytes;
  if (text.empty())
    return bytes;
  const UINT page = Convertible(code_page);
  const int size = static_cast<int>(text.size());
  if (page == kCodePageUTF8) {
    // UTF-8 holds every character and takes no default character.
    int length = WideCharToMultiByte(page, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    if (length <= 0)
      return bytes;
    bytes.resize(static_cast<size_t>(length));
    WideCharToMultiByte(page, 0, text.data(), size, bytes.data(), length, nullptr, nullptr);
    return bytes;
  }

  // A character the code page cannot hold becomes one '?'. The system writes
  // one per UTF-16 unit, so a character beyond the basic plane (two units)
  // is converted on its own and written as a single '?'.
  BOOL used_default = FALSE;
  int length = WideCharToMultiByte(page, 0, text.data(), size, nullptr, 0, "?", &used_default);
  if (length > 0 && !used_default) {
    bytes.resize(static_cast<size_t>(length));
    WideCharToMultiByte(page, 0, text.data(), size, bytes.data(), length, "?", nullptr);
    return bytes;
  }
  char buffer[16];
  for (size_t i = 0; i < text.size();) {
    const bool pair =
        i + 1 < text.size() && IS_HIGH_SURROGATE(text[i]) && IS_LOW_SURROGATE(text[i + 1]);
    const int units = pair ? 2 : 1;
    used_default = FALSE;
    int n = WideCharToMultiByte(page, 0, text.data() + i, units, buffer, sizeof(buffer), "?",
                                &used_default);
    if (n <= 0 || used_default)
      bytes.push_back('?');
    else
      bytes.append(buffer, static_cast<size_t>(n));
    i += static_cast<size_t>(units);
  }
  return bytes;
}

}  // namespace base
