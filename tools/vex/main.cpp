#include <csignal>

#include "tools/vex/command/CommandLine.h"

int main(int argumentCount, char** arguments) {
  // A file that may not grow is an error of its write, told as others are, and not the end.
  std::signal(SIGXFSZ, SIG_IGN);
  return vex2::tool::RunCommandLine(argumentCount, arguments);
}
