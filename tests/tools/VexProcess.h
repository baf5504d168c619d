#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "tests/support/TempFolder.h"

namespace vex2::test {

/// What a finished command left behind.
struct CommandResult {
  int exitCode = -1;   ///< -1 when a signal ended it
  int endSignal = 0;   ///< that signal, or 0
  std::string output;  ///< what it wrote to standard output
  std::string errors;  ///< and to standard error
};

/// A `vex` of its own, running beside the test. Killed when it is still there at the end.
class VexProcess {
 public:
  using Arguments = std::vector<std::string>;

  struct Surroundings {
    std::string input;           ///< what it finds on standard input
    std::string inputPath = {};  ///< or the file, as a named pipe, that stands there
    unsigned long fileSize = 0;  ///< bytes that a file can have; 0 is no limit
  };

  explicit VexProcess(const Arguments& arguments) : VexProcess(arguments, Surroundings()) {}
  VexProcess(const Arguments& arguments, const Surroundings& surroundings);
  ~VexProcess();
  VexProcess(const VexProcess&) = delete;
  VexProcess& operator=(const VexProcess&) = delete;

  void Signal(int signal) const;
  bool IsRunning();
  /// Waits for its end.
  CommandResult Wait();

 private:
  TempFolder folder_;
  pid_t process_ = -1;
  int status_ = 0;
};

/// Runs the command to its end.
CommandResult RunVex(const VexProcess::Arguments& arguments,
                     const VexProcess::Surroundings& surroundings = {});

}  // namespace vex2::test
