// The program's --help and README's tables of options and exit statuses
// come from one table: what --help prints is what README says.

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "base/file_path.h"
#include "testing/program_runner.h"
#include "testing/test_support.h"

namespace {

using Rows = std::vector<std::pair<std::string, std::string>>;

std::string Trim(const std::string& text) {
  size_t begin = text.find_first_not_of(' ');
  if (begin == std::string::npos)
    return std::string();
  return text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

// The option and exit-status entries of --help: an entry starts on a line
// indented by two spaces, its text runs on over the lines indented further.
void ParseHelp(const std::string& help, Rows* options, Rows* statuses) {
  std::istringstream lines(help);
  Rows* rows = nullptr;
  for (std::string line; std::getline(lines, line);) {
    if (line == "Options:" || line == "Exit status:") {
      rows = line == "Options:" ? options : statuses;
      continue;
    }
    if (!rows || Trim(line).empty())
      continue;
    if (line.size() > 2 && line[2] != ' ') {
      size_t gap = line.find("  ", 2);
      rows->emplace_back(Trim(line.substr(2, gap == std::string::npos ? gap : gap - 2)),
                         gap == std::string::npos ? std::string() : Trim(line.substr(gap)));
    } else if (!rows->empty()) {
      std::string& text = rows->back().second;
      text += (text.empty() ? "" : " ") + Trim(line);
    }
  }
}

// The rows of README's table whose header line is |header|: first cell
// without its backticks and with "\|" read as "|", second cell.
Rows ReadmeTable(const std::string& readme, const std::string& header) {
  Rows rows;
  size_t at = readme.find(header + "\n|---|---|\n");
  if (at == std::string::npos)
    return rows;
  std::istringstream lines(readme.substr(at));
  std::string line;
  std::getline(lines, line);
  std::getline(lines, line);
  while (std::getline(lines, line) && line.rfind("| ", 0) == 0) {
    std::string cells;
    for (size_t i = 0; i < line.size(); ++i) {
      if (line[i] == '\\' && i + 1 < line.size() && line[i + 1] == '|') {
        cells += '\x01';  // an escaped bar inside a cell
        ++i;
      } else {
        cells += line[i];
      }
    }
    size_t middle = cells.find(" | ");
    std::string first = Trim(cells.substr(2, middle - 2));
    std::string second = Trim(cells.substr(middle + 3, cells.size() - middle - 5));
    for (std::string* cell : {&first, &second}) {
      for (char& c : *cell)
        c = c == '\x01' ? '|' : c;
    }
    if (first.size() > 1 && first.front() == '`' && first.back() == '`')
      first = first.substr(1, first.size() - 2);
    rows.emplace_back(first, second);
  }
  return rows;
}

TEST(HostHelpTest, ReadmeTablesAreWhatHelpPrints) {
  std::string help;
  testing_support::ProgramEnvironment environment;
  environment.with_errors = false;
  ASSERT_EQ(0, testing_support::RunProgram(
                   base::FilePath::FromUTF8Unsafe(VANTU_BINARY_DIR "/vantu-import"), "--help",
                   environment, &help));
  Rows options, statuses;
  ParseHelp(help, &options, &statuses);
  ASSERT_GE(options.size(), 10u) << help;
  ASSERT_EQ(6u, statuses.size()) << help;

  std::string readme = testing_support::ReadBytes(
      base::FilePath::FromUTF8Unsafe(VANTU_SOURCE_DIR).Append(L"README.md"));
  EXPECT_EQ(options, ReadmeTable(readme, "| Option | Meaning |"));
  EXPECT_EQ(statuses, ReadmeTable(readme, "| Exit status | Meaning |"));
  // Every line fits a terminal of 80 columns.
  std::istringstream lines(help);
  for (std::string line; std::getline(lines, line);)
    EXPECT_LE(line.size(), 79u) << line;
}

}  // namespace
