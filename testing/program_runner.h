#ifndef TESTING_PROGRAM_RUNNER_H_
#define TESTING_PROGRAM_RUNNER_H_

#include <map>
#include <string>
#include <vector>

#include "base/file_path.h"

namespace testing_support {

// How a test starts a program of the build: the variables it takes away
// from and adds to the test's environment, and whether the program's
// standard error goes with its standard output.
struct ProgramEnvironment {
  std::vector<std::string> unset;
  std::map<std::string, std::string> set;
  bool with_errors = true;
};

// One argument of a command line, quoted for the system's own parser (single
// quotes for the POSIX shell, double quotes for the Windows command line).
std::string QuoteArgument(const std::string& argument);
std::string QuoteArgument(const base::FilePath& path);

// Runs |program| with |arguments| (already quoted, see QuoteArgument) and no
// standard input; returns its exit status (-1 when it could not start) and
// keeps its output in |*output|. On Windows the program is started directly
// (CreateProcessW with its own environment block), with no command
// interpreter between, and line ends in the output come back as "\n".
int RunProgram(const base::FilePath& program,
               const std::string& arguments,
               const ProgramEnvironment& environment,
               std::string* output);

}  // namespace testing_support

#endif  // TESTING_PROGRAM_RUNNER_H_
