#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "tests/support/TempFolder.h"

namespace vex2::test {

/// The result of a finished command.
struct CommandResult {
  int exitCode = -1;   ///< -1 if a signal ended the command
  int endSignal = 0;   ///< that signal, or 0
  std::string output;  ///< what it wrote to standard output
  std::string errors;  ///< what it wrote to standard error
};

/// A `vex` process that runs beside the test. The destructor kills it if it is still running.
class VexProcess {
 public:
  using Arguments = std::vector<std::string>;

  struct Surroundings {
    std::string input;           ///< the content of standard input
    std::string inputPath = {};  ///< instead of `input`, the path of a file or named pipe
    unsigned long fileSize = 0;  ///< largest size of a file in bytes; 0 for no limit
  };

  explicit VexProcess(const Arguments& arguments) : VexProcess(arguments, Surroundings()) {}
  VexProcess(const Arguments& arguments, const Surroundings& surroundings);
  ~VexProcess();
  VexProcess(const VexProcess&) = delete;
  VexProcess& operator=(const VexProcess&) = delete;

  void Signal(int signal) const;
  bool IsRunning();
  /// Waits for the end of the command.
  CommandResult Wait();

 private:
  TempFolder folder_;
  pid_t process_ = -1;
  int status_ = 0;
};

/// Runs the command and waits for its end.
CommandResult RunVex(const VexProcess::Arguments& arguments,
                     const VexProcess::Surroundings& surroundings = {});

}  // namespace vex2::test
