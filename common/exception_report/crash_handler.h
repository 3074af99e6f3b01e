#ifndef COMMON_EXCEPTION_REPORT_CRASH_HANDLER_H_
#define COMMON_EXCEPTION_REPORT_CRASH_HANDLER_H_

#include "base/file_path.h"

namespace exception_report {

// Installs the crash handler for the life of the object. The importer runs
// inside someone else's process, so the handler is installed when the entry
// point starts and the previous handlers are restored when it returns.
//
// On POSIX the fatal signals (SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT) write
// a crash record into |crash_folder| (created when the first record is
// written), then the signal takes its course under the previous disposition.
// The record holds the time, the signal, the executable's folder, the build
// id of the module holding this handler, the load map (each loaded module's
// load address, path and build id, as loaded when the handler was
// installed) and the backtrace of the faulting thread; a frame's address
// minus its module's load address is what addr2line takes.
// On Windows an unhandled-exception filter (SetUnhandledExceptionFilter)
// writes a text record (time, exception code and address, executable folder,
// the loaded modules with their base addresses and link time stamps) and a
// minidump (MiniDumpWriteDump) beside it into |crash_folder|, then hands the
// exception to the previous filter.
// Only one handler is active at a time: a second object while one exists
// does nothing. Installing never fails the caller and does not change
// the run's course; a record that cannot be written is skipped.
class ScopedCrashHandler {
 public:
  ScopedCrashHandler(const base::FilePath& exe_folder, const base::FilePath& crash_folder);
  ~ScopedCrashHandler();
  ScopedCrashHandler(const ScopedCrashHandler&) = delete;
  ScopedCrashHandler& operator=(const ScopedCrashHandler&) = delete;

 private:
  bool m_installed = false;
};

}  // namespace exception_report

#endif  // COMMON_EXCEPTION_REPORT_CRASH_HANDLER_H_
