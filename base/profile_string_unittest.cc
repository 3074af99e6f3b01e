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
#if !defined(_WIN32)
    // New text in a new file is written as UTF-8, not in the ANSI code page
    // the recording used: non-Western text must survive (see the writer).
    // The Windows build makes the system's calls, which write the code page.
    if (folder.BaseName().value().find(L"-create-nonascii-ansi") != std::wstring::npos ||
        folder.BaseName().value().find(L"-create-best-fit-ansi") != std::wstring::npos)
      continue;
#endif
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

}  // namespace
}  // namespace base
