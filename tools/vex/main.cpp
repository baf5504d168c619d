#include "tools/vex/CommandLine.h"

int main(int argumentCount, char** arguments) {
  return vex2::tool::RunCommandLine(argumentCount, arguments);
}
