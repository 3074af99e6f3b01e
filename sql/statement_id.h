#ifndef SQL_STATEMENT_ID_H_
#define SQL_STATEMENT_ID_H_

#include <cstring>

namespace sql {

// Identity of a cached statement: the source file and line that prepare it.
// Two call sites never share a cached statement.
class StatementID {
 public:
  StatementID(const char* source, int line) : source_(source), line_(line) {}

  bool operator<(const StatementID& other) const {
    if (line_ != other.line_)
      return line_ < other.line_;
    return std::strcmp(source_, other.source_) < 0;
  }

 private:
  const char* source_;
  int line_;
};

}  // namespace sql

#define SQL_FROM_HERE sql::StatementID(__FILE__, __LINE__)

#endif  // SQL_STATEMENT_ID_H_
