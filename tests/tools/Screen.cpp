#include "tests/tools/Screen.h"

#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <system_error>

namespace vex2::test {

namespace {

/// Sets environment variables while this object exists.
class Environment {
 public:
  explicit Environment(const std::map<std::string, std::string>& variables) {
    for (const auto& [name, value] : variables) {
      const char* before = std::getenv(name.c_str());
      before_[name] = before != nullptr ? std::optional<std::string>(before) : std::nullopt;
      ::setenv(name.c_str(), value.c_str(), 1);
    }
  }
  ~Environment() {
    for (const auto& [name, value] : before_) {
      value ? ::setenv(name.c_str(), value->c_str(), 1) : ::unsetenv(name.c_str());
    }
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  std::map<std::string, std::optional<std::string>> before_;
};

CommandResult runOnTerminal(unsigned short columns, VexProcess::Arguments arguments) {
  std::string command = VEX2_COMMAND;
  std::vector<char*> words = {command.data()};
  for (std::string& word : arguments) words.push_back(word.data());
  words.push_back(nullptr);
  winsize size{};
  size.ws_row = 50;
  size.ws_col = columns;
  int terminal = -1;
  const pid_t process = ::forkpty(&terminal, nullptr, nullptr, &size);
  if (process < 0) throw std::system_error(errno, std::generic_category(), "forkpty");
  if (process == 0) {
    ::execv(command.c_str(), words.data());
    ::_exit(127);
  }
  CommandResult result;
  char buffer[4096];
  // When the last program on a terminal ends, the read fails.
  for (ssize_t count = 0; (count = ::read(terminal, buffer, sizeof buffer)) > 0;) {
    result.output.append(buffer, static_cast<std::size_t>(count));
  }
  int status = 0;
  ::waitpid(process, &status, 0);
  ::close(terminal);
  if (WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
  for (std::size_t at = 0; (at = result.output.find("\r\n", at)) != std::string::npos;) {
    result.output.erase(at, 1);
  }
  return result;
}

}  // namespace

CommandResult RunVexOn(const Screen& screen, const VexProcess::Arguments& arguments) {
  const Environment environment(screen.environment);
  return screen.columns > 0 ? runOnTerminal(screen.columns, arguments) : RunVex(arguments);
}

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

}  // namespace vex2::test
