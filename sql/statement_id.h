#ifndef SQL_STATEMENT_ID_H_
#define SQL_STATEMENT_ID_H_

#include <cstring>

namespace sql {

// Identity of a cached statement: the source file and line that prepare it.
// Two call sites never share a cached statement.
class StatementID {
 public:
  StatementID(const char* source, int line) : m_source(source), m_line(line) {}

  bool operator<(const StatementID& other) const {
    if (m_line != other.m_line)
      return m_line < other.m_line;
    return std::strcmp(m_source, other.m_source) < 0;
  }

 private:
  const char* m_source;
  int m_line;
};

}  // namespace sql

#define SQL_FROM_HERE sql::StatementID(__FILE__, __LINE__)

#endif  // SQL_STATEMENT_ID_H_
