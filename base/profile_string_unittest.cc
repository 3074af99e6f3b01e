#include "base/profile_string.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

#include <nlohmann/json.hpp>

#include "base/code_page.h"
#include "base/file_util.h"
#include "base/utf_string_conversions.h"
#include "testing/test_support.h"

namespace base {
namespace {

const char kScenarios[] = VANTU_SOURCE_DIR "/testing/data/win32/ini";

// Null in the recorded calls stands for a null pointer.
std::optional<std::wstring> Argument(const nlohmann::json& value) {
  if (value.is_null())
    return std::nullopt;
  return UTF8ToWide(value.get<std::string>());
}

const wchar_t* Pointer(const std::optional<std::wstring>& value) {
  return value ? value->c_str() : nullptr;
}

// Replays every recorded scenario: the writes answer what Windows answered,
// and reading the file afterwards gives the values, empty values, missing
// keys and key and section lists that Windows read. (File bytes are not
// compared: the recording rewrote whole files, while the writer edits in
// place.)
TEST(ProfileStringTest, ReplaysRecordedScenarios) {
  std::vector<FilePath> folders;
  for (const auto& entry : std::filesystem::directory_iterator(kScenarios))
    folders.push_back(FilePath::FromUTF8Unsafe(entry.path().string()));
  ASSERT_GE(folders.size(), 30u);
  for (const FilePath& folder : folders) {
    SCOPED_TRACE(folder.BaseName().AsUTF8Unsafe());
    // New text in a new file is written as UTF-8, not in the ANSI code page
    // the recording used: non-Western text must survive (see the writer).
    if (folder.BaseName().value().find(L"-create-nonascii-ansi") != std::wstring::npos ||
        folder.BaseName().value().find(L"-create-best-fit-ansi") != std::wstring::npos)
      continue;
    testing_support::ScopedTempDir temp;
    FilePath ini = temp.path().Append(L"test.ini");
    if (PathExists(folder.Append(L"input.bin"))) {
      ASSERT_TRUE(CopyFile(folder.Append(L"input.bin"), ini));
    }
    std::string text;
    ASSERT_TRUE(ReadFileToString(folder.Append(L"calls.json"), &text));
    nlohmann::json calls = nlohmann::json::parse(text);
    for (const auto& call : calls["calls"]) {
      auto section = Argument(call["section"]);
      auto key = Argument(call["key"]);
      auto value = Argument(call["value"]);
      EXPECT_EQ(call["ret"].get<bool>(),
                WritePrivateProfileStringW(Pointer(section), Pointer(key), Pointer(value),
                                           ini.value().c_str(), kCodePageWestern))
          << call.dump();
    }
    EXPECT_EQ(calls["expected_exists"].get<bool>(), PathExists(ini));
    if (!ReadFileToString(folder.Append(L"reads.json"), &text))
      continue;
    for (const auto& read : nlohmann::json::parse(text)) {
      std::wstring fallback = UTF8ToWide(read["default"].get<std::string>());
      if (read["section"].is_null()) {
        std::vector<std::wstring> expected;
        for (const auto& name : read["list"])
          expected.push_back(UTF8ToWide(name.get<std::string>()));
        EXPECT_EQ(expected, GetPrivateProfileSections(ini.value(), kCodePageWestern))
            << read.dump();
      } else if (read["key"].is_null()) {
        // Windows answers the default for a section without keys.
        std::vector<std::wstring> expected;
        for (const auto& name : read["list"])
          expected.push_back(UTF8ToWide(name.get<std::string>()));
        if (expected == std::vector<std::wstring>{fallback})
          expected.clear();
        EXPECT_EQ(expected, GetPrivateProfileKeys(UTF8ToWide(read["section"].get<std::string>()),
                                                  ini.value(), kCodePageWestern))
            << read.dump();
      } else {
        EXPECT_EQ(UTF8ToWide(read["value"].get<std::string>()),
                  GetPrivateProfileStringW(UTF8ToWide(read["section"].get<std::string>()),
                                           UTF8ToWide(read["key"].get<std::string>()), fallback,
                                           ini.value(), kCodePageWestern))
            << read.dump();
      }
    }
  }
}

// Windows edits the file in place: untouched lines keep their bytes and
// line ends, a new key lands after the last line of its section, and a
// UTF-16 file stays UTF-16.
TEST(ProfileStringTest, EditsInPlace) {
  testing_support::ScopedTempDir temp;
  FilePath ini = temp.path().Append(L"Vantu.ini");
  ASSERT_TRUE(WriteFile(ini, "; kept\n[Other]\nA = 1\n\n[DBCheck]\nImportProgress=5\n"));
  EXPECT_TRUE(WritePrivateProfileStringW(L"dbcheck", L"importprogress", L"10", ini.value().c_str(),
                                         kCodePageWestern));
  EXPECT_TRUE(WritePrivateProfileStringW(L"DBCheck", L"ImportEnd", L"", ini.value().c_str(),
                                         kCodePageWestern));
  EXPECT_TRUE(
      WritePrivateProfileStringW(L"New", L"K", L"v", ini.value().c_str(), kCodePageWestern));
  std::string bytes;
  EXPECT_TRUE(ReadFileToString(ini, &bytes));
  EXPECT_EQ(
      "; kept\n[Other]\nA = 1\n\n[DBCheck]\nImportProgress=10\r\nImportEnd=\r\n[New]\r\nK=v\r\n",
      bytes);

  FilePath wide = temp.path().Append(L"wide.ini");
  std::u16string content = u"\uFEFF[DBCheck]\r\nImportState=\u00e9\r\n";
  EXPECT_TRUE(WriteFile(
      wide, std::string(reinterpret_cast<const char*>(content.data()), content.size() * 2)));
  EXPECT_TRUE(WritePrivateProfileStringW(L"DBCheck", L"ImportEnd", L"1", wide.value().c_str(),
                                         kCodePageWestern));
  EXPECT_TRUE(ReadFileToString(wide, &bytes));
  std::u16string expected = content + u"ImportEnd=1\r\n";
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(expected.data()), expected.size() * 2),
            bytes);
  EXPECT_EQ(L"\u00e9", GetPrivateProfileStringW(L"DBCheck", L"ImportState", L"", wide.value(),
                                                kCodePageWestern));
}

// Two cases beyond the recorded behaviour. A UTF-16LE file without a
// byte-order mark, as the system's text detection takes it, is read and
// extended as UTF-16LE and written back without a mark (read as 8-bit text
// it would gain 8-bit lines in the middle of UTF-16). A deletion trims its
// names as reads and writes do.
TEST(ProfileStringTest, UnmarkedUtf16AndTrimmedDeletes) {
  testing_support::ScopedTempDir temp;
  FilePath ini = temp.path().Append(L"Vantu.ini");
  std::u16string content = u"[Settings]\r\nSkin=\u7a3b\u9999\r\nVolume=5\r\n";
  auto bytes_of = [](const std::u16string& text) {
    return std::string(reinterpret_cast<const char*>(text.data()), text.size() * 2);
  };
  ASSERT_TRUE(WriteFile(ini, bytes_of(content)));
  EXPECT_EQ(L"\u7a3b\u9999",
            GetPrivateProfileStringW(L"Settings", L"Skin", L"", ini.value(), kCodePageWestern));
  EXPECT_TRUE(WritePrivateProfileStringW(L"Settings", L"Lyric", L"\u00e9", ini.value().c_str(),
                                         kCodePageWestern));
  EXPECT_TRUE(WritePrivateProfileStringW(L" Settings ", L"\tVolume ", nullptr, ini.value().c_str(),
                                         kCodePageWestern));
  std::string bytes;
  EXPECT_TRUE(ReadFileToString(ini, &bytes));
  EXPECT_EQ(bytes_of(u"[Settings]\r\nSkin=\u7a3b\u9999\r\nLyric=\u00e9\r\n"), bytes);

  // A section deleted by a blank-padded name.
  EXPECT_TRUE(WritePrivateProfileStringW(L"  settings", nullptr, nullptr, ini.value().c_str(),
                                         kCodePageWestern));
  EXPECT_TRUE(ReadFileToString(ini, &bytes));
  EXPECT_EQ("", bytes);

  // 8-bit text stays 8-bit: ASCII is not mistaken for UTF-16.
  ASSERT_TRUE(WriteFile(ini, "[A]\r\nkey=value\r\n"));
  EXPECT_TRUE(WritePrivateProfileStringW(L"A", L"b", L"c", ini.value().c_str(), kCodePageWestern));
  EXPECT_TRUE(ReadFileToString(ini, &bytes));
  EXPECT_EQ("[A]\r\nkey=value\r\nb=c\r\n", bytes);
}

// An existing 8-bit file that is not UTF-8 was written in the user's code
// page: it is read and extended in the code page the caller names, its
// other lines untouched, whether the code page has one byte per character
// or two.
TEST(ProfileStringTest, EightBitFilesInTheCallersCodePage) {
  testing_support::ScopedTempDir temp;
  FilePath ini = temp.path().Append(L"test.ini");
  const std::string own = "[A]\r\nSkin=\xC4\xAC\xC8\xCF\r\n";  // 默认 in code page 936
  ASSERT_TRUE(WriteFile(ini, own));
  EXPECT_EQ(L"\u9ed8\u8ba4",
            GetPrivateProfileStringW(L"A", L"Skin", L"", ini.value(), kCodePageSimplifiedChinese));
  EXPECT_TRUE(WritePrivateProfileStringW(L"A", L"Path", L"D:\\\u6b4c\u8bcd \u0628",
                                         ini.value().c_str(), kCodePageSimplifiedChinese));
  EXPECT_EQ(own + "Path=D:\\\xB8\xE8\xB4\xCA ?\r\n", testing_support::ReadBytes(ini));
  EXPECT_EQ(L"D:\\\u6b4c\u8bcd ?",
            GetPrivateProfileStringW(L"A", L"Path", L"", ini.value(), kCodePageSimplifiedChinese));
  EXPECT_EQ((std::vector<std::wstring>{L"Skin", L"Path"}),
            GetPrivateProfileKeys(L"A", ini.value(), kCodePageSimplifiedChinese));

  // The Western code page reads the same file as other letters.
  EXPECT_EQ(L"\u00c4\u00ac\u00c8\u00cf",
            GetPrivateProfileStringW(L"A", L"Skin", L"", ini.value(), kCodePageWestern));
}

}  // namespace
}  // namespace base
