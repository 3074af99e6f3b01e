#ifndef BASE_COMMAND_LINE_H_
#define BASE_COMMAND_LINE_H_

#include <map>
#include <string>

namespace base {

// The raw command line of this process, like GetCommandLineW: on Linux the
// arguments of /proc/self/cmdline, each quoted when it holds a blank or a
// quote, joined by single spaces. Empty when it cannot be read.
std::wstring GetCommandLineW();

// |arg| quoted (when it holds a blank or a quote, or is empty) so that
// CommandLine::FromString splits it back unchanged.
std::wstring QuoteCommandLineArgument(const std::wstring& arg);

// A parsed command line. Only switches are kept: an argument written
// "--name=value" or "-name=value" gives switch "name" with that value; one
// without "=" has an empty value. Names are case-sensitive; a later switch of
// the same name replaces an earlier one. Every other argument (and the
// program name) is ignored.
class CommandLine {
 public:
  using SwitchMap = std::map<std::string, std::wstring>;

  // The base library's process-wide initialisation; kept for the entry
  // point's call order. Parsing never depends on it.
  static void Init(int argc, const char* const* argv);

  // Splits |command_line| into arguments the way the Windows command-line
  // rules do (blanks separate, double quotes group, a backslash escapes a
  // quote) and parses them as above.
  static CommandLine FromString(const std::wstring& command_line);

  const SwitchMap& GetSwitches() const { return m_switches; }
  [[nodiscard]] bool HasSwitch(const std::string& name) const;
  // The switch's value, or empty when absent.
  std::wstring GetSwitchValue(const std::string& name) const;

 private:
  SwitchMap m_switches;
};

}  // namespace base

#endif  // BASE_COMMAND_LINE_H_
