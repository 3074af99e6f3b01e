// Feeds arbitrary text to the command-line parser: the bytes are taken as
// UTF-16LE code units, as the process command line arrives on Windows.

#include <cstddef>
#include <cstdint>
#include <string>

#include "base/command_line.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::wstring text;
  for (size_t i = 0; i + 1 < size; i += 2)
    text.push_back(static_cast<wchar_t>(data[i] | (data[i + 1] << 8)));
  base::CommandLine line = base::CommandLine::FromString(text);
  base::CommandLine::SwitchMap switches = line.GetSwitches();
  auto source = switches.find("i");
  if (source != switches.end() && source->second.size() > text.size())
    __builtin_trap();  // a switch value cannot be longer than the line
  return 0;
}
