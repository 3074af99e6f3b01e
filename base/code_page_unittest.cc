#include "base/code_page.h"

#include <gtest/gtest.h>

#include <string>

namespace base {
namespace {

TEST(CodePageTest, ChineseAndWesternText) {
  // "D:\歌词" and "Café" as a Chinese Windows writes them.
  const std::string lyrics = "D:\\\xB8\xE8\xB4\xCA";
  const std::string cafe = "Caf\xA8\xA6";
  EXPECT_EQ(L"D:\\\u6b4c\u8bcd", CodePageToWide(lyrics, kCodePageSimplifiedChinese));
  EXPECT_EQ(L"Caf\u00e9", CodePageToWide(cafe, kCodePageSimplifiedChinese));
  EXPECT_EQ(lyrics, WideToCodePage(L"D:\\\u6b4c\u8bcd", kCodePageSimplifiedChinese));
  // The same bytes in the Western code page are other letters.
  EXPECT_EQ(L"D:\\\u00b8\u00e8\u00b4\u00ca", CodePageToWide(lyrics, kCodePageWestern));
  EXPECT_EQ("Caf\xE9 \x80", WideToCodePage(L"Caf\u00e9 \u20ac", kCodePageWestern));
  EXPECT_EQ(L"\u7a3b\u9999", CodePageToWide("\xE7\xA8\xBB\xE9\xA6\x99", kCodePageUTF8));
}

TEST(CodePageTest, BytesWithoutCharacterAndCharactersWithoutBytes) {
  // Every byte of the Western code page survives a round trip, the five it
  // leaves unassigned included.
  std::string all;
  for (int b = 1; b < 256; ++b)
    all.push_back(static_cast<char>(b));
  std::wstring wide = CodePageToWide(all, kCodePageWestern);
  ASSERT_EQ(all.size(), wide.size());
  EXPECT_EQ(L'\u0081', wide[0x80]);
  EXPECT_EQ(L'\u20ac', wide[0x7F]);
  EXPECT_EQ(all, WideToCodePage(wide, kCodePageWestern));

  // A lead byte without its trail byte (inside the text and at its end)
  // becomes U+FFFD and the text goes on.
  EXPECT_EQ(L"a\ufffd b\ufffd", CodePageToWide("a\xB8 b\xB8", kCodePageSimplifiedChinese));
  // Characters without bytes become '?', one each, beyond the basic plane
  // too.
  EXPECT_EQ("x?y\xD6\xD0?",
            WideToCodePage(L"x\u0628y\u4e2d\U0001F3B5", kCodePageSimplifiedChinese));
  EXPECT_EQ("??", WideToCodePage(L"\u0416\U0001F3B5", kCodePageWestern));
}

TEST(CodePageTest, UnknownCodePagesReadAsWestern) {
  EXPECT_TRUE(IsKnownCodePage(936));
  EXPECT_TRUE(IsKnownCodePage(1252));
  EXPECT_TRUE(IsKnownCodePage(65001));
  EXPECT_FALSE(IsKnownCodePage(0));
  EXPECT_FALSE(IsKnownCodePage(4242));
  EXPECT_EQ(L"Caf\u00e9", CodePageToWide("Caf\xE9", 4242));
  EXPECT_EQ("Caf\xE9", WideToCodePage(L"Caf\u00e9", 4242));
}

}  // namespace
}  // namespace base
