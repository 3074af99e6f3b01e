#include "base/command_line.h"

#include <fstream>
#include <iterator>
#include <string>

#include "base/utf_string_conversions.h"

namespace base {

std::wstring GetCommandLineW() {
  std::ifstream in("/proc/self/cmdline", std::ios::binary);
  std::string raw((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  std::wstring line;
  size_t start = 0;
  while (start < raw.size()) {
    size_t end = raw.find('\0', start);
    if (end == std::string::npos)
      end = raw.size();
    if (!line.empty())
      line.push_back(L' ');
    line += QuoteCommandLineArgument(UTF8ToWide(std::string_view(raw).substr(start, end - start)));
    start = end + 1;
  }
  return line;
}

}  // namespace base
