#include "base/string_util.h"

#include <gtest/gtest.h>

#include "base/utf_string_conversions.h"

namespace base {
namespace {

// Only A-Z fold: the neighbours of the letter ranges ('@', '[', '`', '{')
// and letters beyond ASCII keep their identity, whatever the locale.
TEST(StringUtilTest, CaseFoldingIsAsciiOnly) {
  EXPECT_EQ(L"dbcheck@[`{\u00c9\u0130", ToLowerASCII(L"DBCheck@[`{\u00c9\u0130"));
  EXPECT_TRUE(EqualsCaseInsensitiveASCII(std::wstring_view(L"ImportEnd"), L"IMPORTEND"));
  EXPECT_FALSE(EqualsCaseInsensitiveASCII(std::wstring_view(L"@"), L"`"));
  EXPECT_FALSE(EqualsCaseInsensitiveASCII(std::wstring_view(L"[a]"), L"{A}"));
  EXPECT_FALSE(EqualsCaseInsensitiveASCII(std::wstring_view(L"\u00e9"), L"\u00c9"));
  EXPECT_FALSE(EqualsCaseInsensitiveASCII(std::wstring_view(L"Key"), L"Keys"));
  EXPECT_TRUE(EqualsCaseInsensitiveASCII(std::string_view("SortID"), "sortid"));
  EXPECT_FALSE(EqualsCaseInsensitiveASCII(std::string_view("\xC3\xA9"), "\xC3\x89"));
  EXPECT_FALSE(EqualsCaseInsensitiveASCII(std::string_view("Id"), "Ids"));
}

// Byte pairs in the order asked for; an odd last byte is dropped and a lone
// surrogate is kept as it is (the caller decides what it becomes).
TEST(StringUtilTest, UTF16UnitsFromBytes) {
  const std::string little("A\0\xE9\0\x3D\xD8\x7A", 7);
  EXPECT_EQ(std::u16string(u"A\u00e9") + static_cast<char16_t>(0xD83D),
            UTF16UnitsFromBytes(little, false));
  const std::string big("\0A\x20\xAC\xD8\x3D\xDE\x00", 8);
  std::u16string units = UTF16UnitsFromBytes(big, true);
  EXPECT_EQ(u"A\u20ac\U0001F600", units);
  EXPECT_EQ(L"A\u20ac\U0001F600", UTF16ToWide(units));
  EXPECT_TRUE(UTF16UnitsFromBytes(std::string("\xFF"), false).empty());
}

}  // namespace
}  // namespace base
