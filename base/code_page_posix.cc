#include "base/code_page.h"

#include <errno.h>
#include <iconv.h>

#include <string>

namespace base {

namespace {

// One conversion descriptor for the length of a conversion.
class ScopedIconv {
 public:
  ScopedIconv(const std::string& to, const std::string& from)
      : m_cd(iconv_open(to.c_str(), from.c_str())) {}
  ~ScopedIconv() {
    if (IsValid()) {
      // Closing a descriptor that converted in memory reports nothing that
      // concerns the text already converted.
      (void)iconv_close(m_cd);
    }
  }
  ScopedIconv(const ScopedIconv&) = delete;
  ScopedIconv& operator=(const ScopedIconv&) = delete;

  [[nodiscard]] bool IsValid() const { return m_cd != reinterpret_cast<iconv_t>(-1); }
  iconv_t get() const { return m_cd; }

 private:
  iconv_t m_cd;
};

std::string CharsetName(uint32_t code_page) {
  return code_page == kCodePageUTF8 ? "UTF-8" : "CP" + std::to_string(code_page);
}

uint32_t Convertible(uint32_t code_page) {
  return IsKnownCodePage(code_page) ? code_page : kCodePageWestern;
}

// The C1 controls that stand for the bytes code page 1252 leaves unassigned.
bool IsUnassigned1252(uint32_t c) {
  return c == 0x81 || c == 0x8D || c == 0x8F || c == 0x90 || c == 0x9D;
}

}  // namespace

bool IsKnownCodePage(uint32_t code_page) {
  if (code_page == 0)
    return false;
  ScopedIconv cd("WCHAR_T", CharsetName(code_page));
  return cd.IsValid();
}

std::wstring CodePageToWide(std::string_view bytes, uint32_t code_page) {
  code_page = Convertible(code_page);
  ScopedIconv cd("WCHAR_T", CharsetName(code_page));
  std::wstring text;
  if (!cd.IsValid())
    return text;
  text.reserve(bytes.size());
  char* in = const_cast<char*>(bytes.data());
  size_t in_left = bytes.size();
  wchar_t buffer[256];
  while (in_left > 0) {
    char* out = reinterpret_cast<char*>(buffer);
    size_t out_left = sizeof(buffer);
    size_t result = iconv(cd.get(), &in, &in_left, &out, &out_left);
    const int error = errno;
    text.append(buffer, (sizeof(buffer) - out_left) / sizeof(wchar_t));
    if (result != static_cast<size_t>(-1) || error == E2BIG)
      continue;
    // An unassigned byte or a sequence cut off at the end: one byte is
    // replaced and the conversion goes on after it.
    const unsigned char byte = static_cast<unsigned char>(*in);
    text.push_back(code_page == kCodePageWestern && IsUnassigned1252(byte)
                       ? static_cast<wchar_t>(byte)
                       : L'\uFFFD');
    ++in;
    --in_left;
  }
  return text;
}

std::string WideToCodePage(std::wstring_view text, uint32_t code_page) {
  code_page = Convertible(code_page);
  ScopedIconv cd(CharsetName(code_page), "WCHAR_T");
  std::string bytes;
  if (!cd.IsValid())
    return bytes;
  bytes.reserve(text.size());
  char* in = reinterpret_cast<char*>(const_cast<wchar_t*>(text.data()));
  size_t in_left = text.size() * sizeof(wchar_t);
  char buffer[1024];
  while (in_left > 0) {
    char* out = buffer;
    size_t out_left = sizeof(buffer);
    size_t result = iconv(cd.get(), &in, &in_left, &out, &out_left);
    const int error = errno;
    bytes.append(buffer, sizeof(buffer) - out_left);
    if (result != static_cast<size_t>(-1) || error == E2BIG)
      continue;
    const auto c = static_cast<uint32_t>(*reinterpret_cast<const wchar_t*>(in));
    bytes.push_back(code_page == kCodePageWestern && IsUnassigned1252(c) ? static_cast<char>(c)
                                                                         : '?');
    in += sizeof(wchar_t);
    in_left -= sizeof(wchar_t);
  }
  // Shift states of stateful code pages end with the text.
  char* out = buffer;
  size_t out_left = sizeof(buffer);
  if (iconv(cd.get(), nullptr, nullptr, &out, &out_left) != static_cast<size_t>(-1))
    bytes.append(buffer, sizeof(buffer) - out_left);
  return bytes;
}

}  // namespace base
