#include "base/utf_string_conversions.h"

#include <iterator>

#include <utf8.h>

namespace base {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsValidCodePoint(char32_t c) {
  return c < 0xD800 || (c > 0xDFFF && c <= 0x10FFFF);
}

}  // namespace

// Writes the UTF-8 bytes of one valid code point at |p|; answers the end.
inline char* WriteCodePoint(char32_t c, char* p) {
  if (c < 0x80) {
    *p++ = static_cast<char>(c);
  } else if (c < 0x800) {
    *p++ = static_cast<char>(0xC0 | (c >> 6));
    *p++ = static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    *p++ = static_cast<char>(0xE0 | (c >> 12));
    *p++ = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    *p++ = static_cast<char>(0x80 | (c & 0x3F));
  } else {
    *p++ = static_cast<char>(0xF0 | (c >> 18));
    *p++ = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    *p++ = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    *p++ = static_cast<char>(0x80 | (c & 0x3F));
  }
  return p;
}

void AppendWideAsUTF8(std::wstring_view wide, std::string* out) {
  // Room for the longest encoding first (four bytes per unit at most), then
  // cut to the bytes written: one size check instead of one per byte.
  size_t start = out->size();
  out->resize(start + wide.size() * 4);
  char* begin = out->data() + start;
  char* p = begin;
  for (size_t i = 0; i < wide.size(); ++i) {
    char32_t c = static_cast<char32_t>(wide[i]);
    if (c < 0x80) {
      *p++ = static_cast<char>(c);
      continue;
    }
    if constexpr (sizeof(wchar_t) == 2) {
      if (c >= 0xD800 && c <= 0xDBFF && i + 1 < wide.size()) {
        char32_t low = static_cast<char32_t>(wide[i + 1]);
        if (low >= 0xDC00 && low <= 0xDFFF) {
          p = WriteCodePoint(0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00), p);
          ++i;
          continue;
        }
      }
    }
    p = WriteCodePoint(IsValidCodePoint(c) ? c : kReplacement, p);
  }
  out->resize(start + static_cast<size_t>(p - begin));
}

std::string WideToUTF8(std::wstring_view wide) {
  std::string out;
  out.reserve(wide.size());
  AppendWideAsUTF8(wide, &out);
  return out;
}

std::wstring UTF8ToWide(std::string_view utf8) {
  std::wstring out;
  out.reserve(utf8.size());
  std::string repaired;
  if (!utf8::is_valid(utf8.begin(), utf8.end())) {
    utf8::replace_invalid(utf8.begin(), utf8.end(), std::back_inserter(repaired));
    utf8 = repaired;
  }
  if constexpr (sizeof(wchar_t) == 4)
    utf8::unchecked::utf8to32(utf8.begin(), utf8.end(), std::back_inserter(out));
  else
    utf8::unchecked::utf8to16(utf8.begin(), utf8.end(), std::back_inserter(out));
  return out;
}

std::wstring UTF16ToWide(std::u16string_view utf16) {
  std::wstring out;
  out.reserve(utf16.size());
  for (size_t i = 0; i < utf16.size(); ++i) {
    char32_t c = utf16[i];
    if constexpr (sizeof(wchar_t) == 4) {
      if (c >= 0xD800 && c <= 0xDBFF && i + 1 < utf16.size() && utf16[i + 1] >= 0xDC00 &&
          utf16[i + 1] <= 0xDFFF) {
        c = 0x10000 + ((c - 0xD800) << 10) + (utf16[i + 1] - 0xDC00);
        ++i;
      } else if (c >= 0xD800 && c <= 0xDFFF) {
        c = kReplacement;
      }
    }
    out.push_back(static_cast<wchar_t>(c));
  }
  return out;
}

void AppendCodePoint(char32_t code_point, std::wstring* out) {
  if (!IsValidCodePoint(code_point))
    code_point = kReplacement;
  if (sizeof(wchar_t) == 2 && code_point >= 0x10000) {
    code_point -= 0x10000;
    out->push_back(static_cast<wchar_t>(0xD800 + (code_point >> 10)));
    out->push_back(static_cast<wchar_t>(0xDC00 + (code_point & 0x3FF)));
  } else {
    out->push_back(static_cast<wchar_t>(code_point));
  }
}

std::u16string WideToUTF16(std::wstring_view wide) {
  std::u16string out;
  out.reserve(wide.size());
  for (wchar_t w : wide) {
    char32_t c = static_cast<char32_t>(w);
    if (sizeof(wchar_t) == 4 && c >= 0x10000 && c <= 0x10FFFF) {
      c -= 0x10000;
      out.push_back(static_cast<char16_t>(0xD800 + (c >> 10)));
      out.push_back(static_cast<char16_t>(0xDC00 + (c & 0x3FF)));
    } else if (sizeof(wchar_t) == 4 && (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF))) {
      out.push_back(static_cast<char16_t>(kReplacement));
    } else {
      out.push_back(static_cast<char16_t>(c));
    }
  }
  return out;
}

std::u16string UTF16UnitsFromBytes(std::string_view bytes, bool big_endian) {
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const unsigned first = static_cast<unsigned char>(bytes[i]);
    const unsigned second = static_cast<unsigned char>(bytes[i + 1]);
    units.push_back(
        static_cast<char16_t>(big_endian ? (first << 8) | second : first | (second << 8)));
  }
  return units;
}

}  // namespace base
