#include "base/command_line.h"

#include <vector>

#include "base/utf_string_conversions.h"

namespace base {

namespace {

// Splits a command line as the Windows rules do: blanks separate arguments,
// double quotes group, 2n backslashes before a quote give n backslashes and
// the quote toggles grouping, 2n+1 give n backslashes and a literal quote,
// other backslashes are literal.
std::vector<std::wstring> SplitArguments(const std::wstring& line) {
  std::vector<std::wstring> args;
  size_t i = 0;
  const size_t n = line.size();
  while (i < n) {
    while (i < n && (line[i] == L' ' || line[i] == L'\t'))
      ++i;
    if (i >= n)
      break;
    std::wstring arg;
    bool quoted = false;
    while (i < n && (quoted || (line[i] != L' ' && line[i] != L'\t'))) {
      if (line[i] == L'\\') {
        size_t slashes = 0;
        while (i < n && line[i] == L'\\') {
          ++slashes;
          ++i;
        }
        if (i < n && line[i] == L'"') {
          arg.append(slashes / 2, L'\\');
          if (slashes % 2) {
            arg.push_back(L'"');
            ++i;
          }
        } else {
          arg.append(slashes, L'\\');
        }
      } else if (line[i] == L'"') {
        quoted = !quoted;
        ++i;
      } else {
        arg.push_back(line[i++]);
      }
    }
    args.push_back(arg);
  }
  return args;
}

}  // namespace

void CommandLine::Init(int argc, const char* const* argv) {}

CommandLine CommandLine::FromString(const std::wstring& command_line) {
  CommandLine result;
  std::vector<std::wstring> args = SplitArguments(command_line);
  for (size_t i = 1; i < args.size(); ++i) {
    const std::wstring& arg = args[i];
    size_t start;
    if (arg.rfind(L"--", 0) == 0)
      start = 2;
    else if (arg.rfind(L"-", 0) == 0)
      start = 1;
    else
      continue;
    size_t equals = arg.find(L'=', start);
    std::wstring name =
        arg.substr(start, equals == std::wstring::npos ? std::wstring::npos : equals - start);
    if (name.empty())
      continue;
    std::wstring value = equals == std::wstring::npos ? std::wstring() : arg.substr(equals + 1);
    result.m_switches[WideToUTF8(name)] = value;
  }
  return result;
}

bool CommandLine::HasSwitch(const std::string& name) const {
  return m_switches.count(name) != 0;
}

std::wstring CommandLine::GetSwitchValue(const std::string& name) const {
  auto it = m_switches.find(name);
  return it == m_switches.end() ? std::wstring() : it->second;
}

// Quotes one argument so that SplitArguments gives it back unchanged.
std::wstring QuoteCommandLineArgument(const std::wstring& arg) {
  if (!arg.empty() && arg.find_first_of(L" \t\"") == std::wstring::npos)
    return arg;
  std::wstring quoted = L"\"";
  size_t slashes = 0;
  for (wchar_t c : arg) {
    if (c == L'\\') {
      ++slashes;
    } else if (c == L'"') {
      quoted.append(slashes + 1, L'\\');
      slashes = 0;
    } else {
      slashes = 0;
    }
    quoted.push_back(c);
  }
  quoted.append(slashes, L'\\');
  quoted.push_back(L'"');
  return quoted;
}

}  // namespace base
