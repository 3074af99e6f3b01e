// Feeds arbitrary bytes to the profile-string functions as an INI file: reads
// the sections and keys, then writes, replaces and deletes values in it.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "base/code_page.h"
#include "base/environment.h"
#include "base/file_util.h"
#include "fuzz/fuzz_scratch.h"
#include "base/profile_string.h"

namespace {

// A multi-byte code page: its lead and trail bytes are the harder case.
constexpr uint32_t kCodePage = base::kCodePageSimplifiedChinese;
base::FilePath g_file;
}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
  (void)base::SetEnvironmentString("VANTU_LOG_LEVEL", L"5");  // fails only without memory
  g_file = FuzzScratchPath("vantu-profile-fuzz.ini");
  // The scratch file goes with the process.
  std::atexit([] { (void)base::DeleteFile(g_file); });
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!base::WriteFile(g_file, std::string(reinterpret_cast<const char*>(data), size)))
    return 0;
  const std::wstring& file = g_file.value();
  const wchar_t* path = file.c_str();
  for (const std::wstring& section : base::GetPrivateProfileSections(file, kCodePage)) {
    for (const std::wstring& key : base::GetPrivateProfileKeys(section, file, kCodePage))
      base::GetPrivateProfileStringW(section, key, L"#", file, kCodePage);
  }
  base::GetPrivateProfileStringW(L"DBCheck", L"ImportEnd", L"", file, kCodePage);
  // The writes may fail on a hostile file; the read-back below only follows
  // a write that nothing can stop.
  (void)base::WritePrivateProfileStringW(L"DBCheck", L"ImportProgress", L"50", path, kCodePage);
  (void)base::WritePrivateProfileStringW(L" DBCheck ", L"ImportState", L"", path, kCodePage);
  (void)base::WritePrivateProfileStringW(L"New", L"key", L"\u7a3b\u9999 value", path, kCodePage);
  (void)base::WritePrivateProfileStringW(L"DBCheck", L"ImportProgress", nullptr, path, kCodePage);
  (void)base::WritePrivateProfileStringW(L"New", nullptr, nullptr, path, kCodePage);
  // A value just written must read back, in every file whose encoding the
  // writes cannot change: one with a byte-order mark, or one without NUL
  // bytes (8-bit text). An unmarked file with NUL bytes is taken for UTF-16
  // or for 8-bit text by its content, as the system's text detection does,
  // and a write that changes the content may change the verdict.
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const bool marked = bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF") ||
                      bytes.starts_with("\xEF\xBB\xBF");
  if ((marked || bytes.find('\0') == std::string_view::npos) &&
      base::GetPrivateProfileStringW(L"DBCheck", L"ImportState", L"#", file, kCodePage) != L"")
    __builtin_trap();
  return 0;
}
