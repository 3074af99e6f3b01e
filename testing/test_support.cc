#include "testing/test_support.h"

#include <stdlib.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "base/utf_string_conversions.h"

namespace testing_support {

ScopedTempDir::ScopedTempDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "vantu_test_XXXXXX").string();
  char* made = mkdtemp(pattern.data());
  path_ = base::FilePath::FromUTF8Unsafe(made ? made : pattern);
}

ScopedTempDir::~ScopedTempDir() {
  std::error_code ec;
  // Tests make files read-only on purpose; restore write access first.
  for (auto it = std::filesystem::recursive_directory_iterator(path_.AsUTF8Unsafe(), ec);
       !ec && it != std::filesystem::recursive_directory_iterator(); it.increment(ec)) {
    std::filesystem::permissions(it->path(), std::filesystem::perms::owner_all,
                                 std::filesystem::perm_options::add, ec);
  }
  std::filesystem::remove_all(path_.AsUTF8Unsafe(), ec);
}

ScopedEnv::~ScopedEnv() {
  for (const auto& [name, value] : saved_) {
    if (value)
      setenv(name.c_str(), value->c_str(), 1);
    else
      unsetenv(name.c_str());
  }
}

void ScopedEnv::Set(const std::string& name, const std::optional<std::string>& value) {
  if (!saved_.count(name)) {
    const char* old = getenv(name.c_str());
    saved_[name] = old ? std::optional<std::string>(old) : std::nullopt;
  }
  if (value)
    setenv(name.c_str(), value->c_str(), 1);
  else
    unsetenv(name.c_str());
}

int RunCommand(const std::string& command, const std::string& input, std::string* output) {
  std::string in_file = (std::filesystem::temp_directory_path() /
                         ("vantu_cmd_in_" + std::to_string(getpid()))).string();
  {
    std::ofstream in(in_file, std::ios::binary);
    in << input;
  }
  std::string full = "(" + command + ") < '" + in_file + "' 2>&1";
  FILE* pipe = popen(full.c_str(), "r");
  if (!pipe)
    return -1;
  std::string out;
  char buffer[4096];
  size_t n;
  while ((n = fread(buffer, 1, sizeof(buffer), pipe)) > 0)
    out.append(buffer, n);
  int status = pclose(pipe);
  std::remove(in_file.c_str());
  if (output)
    *output = out;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string ReadBytes(const base::FilePath& path) {
  std::ifstream in(path.AsUTF8Unsafe(), std::ios::binary);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

void WriteBytes(const base::FilePath& path, const std::string& bytes) {
  std::ofstream out(path.AsUTF8Unsafe(), std::ios::binary | std::ios::trunc);
  out << bytes;
}

void DamageDatabasePage(const base::FilePath& path, int page, size_t offset, size_t length) {
  std::string bytes = ReadBytes(path);
  size_t at = static_cast<size_t>(page - 1) * 4096 + offset;
  ASSERT_LT(at + length, bytes.size());
  for (size_t i = 0; i < length; ++i)
    bytes[at + i] = static_cast<char>(0xA5 ^ i);
  WriteBytes(path, bytes);
}

void ForgetFreePages(const base::FilePath& path) {
  std::string bytes = ReadBytes(path);
  ASSERT_GE(bytes.size(), 40u);
  bytes.replace(32, 8, std::string(8, '\0'));
  WriteBytes(path, bytes);
}

std::string UTF16Bytes(std::wstring_view text, bool big_endian) {
  std::string bytes;
  for (char16_t unit : base::WideToUTF16(text)) {
    const char low = static_cast<char>(unit & 0xFF);
    const char high = static_cast<char>(unit >> 8);
    bytes += big_endian ? std::string{high, low} : std::string{low, high};
  }
  return bytes;
}

std::wstring NumberedHash(int n, wchar_t fill) {
  const std::wstring digits = std::to_wstring(n);
  return std::wstring(32 - digits.size(), fill) + digits;
}

}  // namespace testing_support
