#ifndef BASE_STATUS_H_
#define BASE_STATUS_H_

#include <string>
#include <utility>

namespace base {

// The outcome of an operation that either succeeds or fails for a reason
// worth telling: OK, or an error with a message for the log and the report.
// Cheap to copy; a result that is dropped is a compile-time warning.
class [[nodiscard]] Status {
 public:
  // OK.
  Status() = default;

  static Status OK() { return Status(); }
  static Status Error(std::wstring message) { return Status(std::move(message)); }

  bool ok() const { return m_ok; }
  // Why it failed; empty when ok().
  const std::wstring& message() const { return m_message; }

 private:
  explicit Status(std::wstring message) : m_message(std::move(message)), m_ok(false) {}

  std::wstring m_message;
  bool m_ok = true;
};

}  // namespace base

#endif  // BASE_STATUS_H_
