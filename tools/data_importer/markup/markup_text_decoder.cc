#include "tools/data_importer/markup/markup_text_decoder.h"

#include <climits>
#include <cstdio>
#include <vector>

#include "base/file_util.h"
#include "base/text_encoding.h"
#include "base/utf_string_conversions.h"

namespace data_importer {

namespace markup {

namespace {

// Bytes after the data, so that the text is NUL-terminated in either width.
constexpr size_t kPadding = 4;

// The text ends at the first NUL unit.
std::wstring UnitsToText(const unsigned char* bytes, size_t size, bool big_endian) {
  std::u16string units = base::UTF16UnitsFromBytes(
      std::string_view(reinterpret_cast<const char*>(bytes), size), big_endian);
  const size_t nul = units.find(u'\0');
  if (nul != std::u16string::npos)
    units.resize(nul);
  return base::UTF16ToWide(units);
}

std::wstring UTF8ToText(const char* bytes) {
  std::wstring text = base::UTF16ToWide(base::DecodeUTF8AsWindows(bytes, -1));
  const size_t nul = text.find(L'\0');
  if (nul != std::wstring::npos)
    text.resize(nul);
  return text;
}

}  // namespace

std::wstring DecodeMarkupBytes(const std::string& bytes) {
  const size_t size = bytes.size();
  if (size == 0)
    return std::wstring();
  std::vector<unsigned char> buffer(bytes.begin(), bytes.end());
  buffer.resize(size + kPadding, 0);
  const unsigned char* data = buffer.data();

  // The detection sees the real data only: the zero padding would make it
  // refuse every short UTF-16 text.
  const int detect_length = size > INT_MAX ? INT_MAX : static_cast<int>(size);
  // The system's text detection first, then the byte-order marks; anything
  // else, an 8-bit file in a local code page included, is read as UTF-8.
  const base::ByteOrderMark mark = base::DetectByteOrderMark(bytes);
  if (base::IsTextUnicode(data, detect_length, nullptr)) {
    const size_t skip = mark == base::ByteOrderMark::kUtf16Le ? 2 : 0;
    return UnitsToText(data + skip, size - skip, false);
  }
  if (mark == base::ByteOrderMark::kUtf8)
    return UTF8ToText(reinterpret_cast<const char*>(data + 3));
  if (mark == base::ByteOrderMark::kUtf16Be)
    return UnitsToText(data + 2, size - 2 + (size & 1), true);
  return UTF8ToText(reinterpret_cast<const char*>(data));
}

bool ReadMarkupFile(const base::FilePath& path, std::wstring* text) {
  text->clear();
  std::string bytes;
  if (!base::ReadFileToString(path, &bytes) || bytes.empty())
    return false;
  *text = DecodeMarkupBytes(bytes);
  return true;
}

}  // namespace markup

}  // namespace data_importer
