#include "base/text_encoding.h"

#include <gtest/gtest.h>

#include <string>

#include <nlohmann/json.hpp>

#include "base/file_path.h"
#include "base/file_util.h"

namespace base {
namespace {

nlohmann::json LoadCorpus(const char* name) {
  std::string text;
  EXPECT_TRUE(ReadFileToString(
      FilePath::FromUTF8Unsafe(std::string(VANTU_SOURCE_DIR "/testing/data/win32/") + name),
      &text));
  return nlohmann::json::parse(text, nullptr, false);
}

std::string FromHex(const std::string& hex) {
  std::string bytes;
  for (size_t i = 0; i + 1 < hex.size(); i += 2)
    bytes.push_back(static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
  return bytes;
}

// "0068 0065" -> u"he".
std::u16string FromUnitList(const std::string& list) {
  std::u16string units;
  size_t pos = 0;
  while (pos < list.size()) {
    size_t end = list.find(' ', pos);
    if (end == std::string::npos)
      end = list.size();
    if (end > pos)
      units.push_back(static_cast<char16_t>(std::stoi(list.substr(pos, end - pos), nullptr, 16)));
    pos = end + 1;
  }
  return units;
}

int ParseFlags(const nlohmann::json& value) {
  return std::stoi(value.get<std::string>(), nullptr, 16);
}

// Every recorded buffer gives the recorded answer, with no flags pointer and
// with all tests asked for, and the recorded output flags; the same holds for
// the buffer followed by four zero bytes passed with the padded length.
TEST(TextEncodingTest, IsTextUnicodeMatchesRecordedResults) {
  nlohmann::json corpus = LoadCorpus("istextunicode.json");
  ASSERT_TRUE(corpus.is_object());
  const int flags_in = ParseFlags(corpus["flags_in"]);
  ASSERT_GE(corpus["cases"].size(), 20u);
  for (const auto& c : corpus["cases"]) {
    SCOPED_TRACE(c["name"].get<std::string>());
    std::string bytes = FromHex(c["bytes"].get<std::string>());
    const int length = c["length"].get<int>();
    ASSERT_EQ(static_cast<size_t>(length), bytes.size());

    EXPECT_EQ(c["result_null_flags"].get<bool>(), IsTextUnicode(bytes.data(), length, nullptr));
    int flags = flags_in;
    EXPECT_EQ(c["result_all_flags"].get<bool>(), IsTextUnicode(bytes.data(), length, &flags));
    EXPECT_EQ(ParseFlags(c["flags_out"]), flags);

    const auto& padded = c["padded"];
    std::string padded_bytes = bytes + std::string(4, '\0');
    const int padded_length = padded["length"].get<int>();
    ASSERT_EQ(static_cast<size_t>(padded_length), padded_bytes.size());
    EXPECT_EQ(padded["result_null_flags"].get<bool>(),
              IsTextUnicode(padded_bytes.data(), padded_length, nullptr));
    flags = flags_in;
    EXPECT_EQ(padded["result_all_flags"].get<bool>(),
              IsTextUnicode(padded_bytes.data(), padded_length, &flags));
    EXPECT_EQ(ParseFlags(padded["flags_out"]), flags);
  }
}

// Only the tests asked for are run and reported.
TEST(TextEncodingTest, IsTextUnicodeReportsOnlyRequestedTests) {
  const char text[] = " \0H\0i\0";  // UTF-16LE " Hi".
  int flags = IS_TEXT_UNICODE_CONTROLS;
  EXPECT_TRUE(IsTextUnicode(text, 6, &flags));
  EXPECT_EQ(IS_TEXT_UNICODE_CONTROLS, flags);
  flags = IS_TEXT_UNICODE_SIGNATURE;
  EXPECT_FALSE(IsTextUnicode(text, 6, &flags));
  EXPECT_EQ(0, flags);
  flags = IS_TEXT_UNICODE_STATISTICS;
  EXPECT_FALSE(IsTextUnicode(nullptr, 6, &flags));
  EXPECT_EQ(0, flags);
}

// Every recorded byte string decodes to the recorded units, both with its
// length and NUL-terminated with length -1.
TEST(TextEncodingTest, DecodeUTF8MatchesRecordedResults) {
  nlohmann::json corpus = LoadCorpus("utf8-decode.json");
  ASSERT_TRUE(corpus.is_object());
  ASSERT_GE(corpus["cases"].size(), 20u);
  for (const auto& c : corpus["cases"]) {
    SCOPED_TRACE(c["name"].get<std::string>());
    std::string bytes = FromHex(c["bytes"].get<std::string>());
    const int length = c["length"].get<int>();
    ASSERT_EQ(static_cast<size_t>(length), bytes.size());

    std::u16string decoded = DecodeUTF8AsWindows(bytes.data(), length);
    EXPECT_EQ(FromUnitList(c["units"].get<std::string>()), decoded);
    EXPECT_EQ(c["count"].get<size_t>(), decoded.size());

    std::string terminated = bytes + '\0';
    std::u16string decoded_terminated = DecodeUTF8AsWindows(terminated.c_str(), -1);
    EXPECT_EQ(FromUnitList(c["nul_terminated"]["units"].get<std::string>()), decoded_terminated);
    EXPECT_EQ(c["nul_terminated"]["count"].get<size_t>(), decoded_terminated.size());
  }
}

TEST(TextEncodingTest, DecodeUTF8EmptyInput) {
  EXPECT_TRUE(DecodeUTF8AsWindows("abc", 0).empty());
  EXPECT_TRUE(DecodeUTF8AsWindows(nullptr, 5).empty());
}

}  // namespace
}  // namespace base
