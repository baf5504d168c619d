#include <csignal>

#include "tools/vex/command/CommandLine.h"

int main(int argumentCount, char** arguments) {
  // If a file would exceed the size limit of the process, let the write fail, so that it is
  // reported like any other error, instead of ending the process.
  std::signal(SIGXFSZ, SIG_IGN);
  return vex2::tool::RunCommandLine(argumentCount, arguments);
}
