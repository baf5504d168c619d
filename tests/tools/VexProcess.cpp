#include "tests/tools/VexProcess.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>

#include "tests/support/Files.h"

namespace vex2::test {

namespace {

/// Removes the variables for screens, so that the settings of the user do not affect the tests.
class PlainEnvironment : public testing::Environment {
 public:
  void SetUp() override {
    ::setenv("LC_ALL", "C.UTF-8", 1);
    ::setenv("TERM", "xterm", 1);
    ::unsetenv("COLUMNS");
    ::unsetenv("NO_COLOR");
  }
};

[[maybe_unused]] const auto* const kPlainEnvironment =
    testing::AddGlobalTestEnvironment(new PlainEnvironment);

[[noreturn]] void fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

void redirect(int target, const std::string& path, int flags) {
  const int file = ::open(path.c_str(), flags, 0600);
  if (file < 0 || ::dup2(file, target) < 0) ::_exit(126);
}

// Makes file permissions apply to the command even if root runs the tests.
void obeyPermissions() {
  for (const int right : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH}) {
    ::prctl(PR_CAPBSET_DROP, right, 0, 0, 0);
  }
}

std::string contentOf(const std::string& path) {
  const Bytes bytes = ReadBytes(path);
  return {bytes.begin(), bytes.end()};
}

}  // namespace

VexProcess::VexProcess(const Arguments& arguments, const Surroundings& surroundings) {
  WriteBytes(folder_ / "in", ToBytes(surroundings.input));
  WriteBytes(folder_ / "out", {});
  WriteBytes(folder_ / "err", {});
  std::vector<char*> words;
  std::string command = VEX2_COMMAND;
  words.push_back(command.data());
  Arguments copies = arguments;
  for (std::string& word : copies) words.push_back(word.data());
  words.push_back(nullptr);
  process_ = ::fork();
  if (process_ < 0) fail("fork");
  if (process_ > 0) return;
  redirect(STDIN_FILENO, surroundings.inputPath.empty() ? folder_ / "in" : surroundings.inputPath,
           O_RDONLY);
  redirect(STDOUT_FILENO, folder_ / "out", O_WRONLY);
  redirect(STDERR_FILENO, folder_ / "err", O_WRONLY);
  if (surroundings.fileSize != 0) {
    const rlimit limit{surroundings.fileSize, surroundings.fileSize};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  obeyPermissions();
  ::execv(command.c_str(), words.data());
  ::_exit(127);
}

VexProcess::~VexProcess() {
  if (!IsRunning()) return;
  Signal(SIGKILL);
  ::waitpid(process_, &status_, 0);
}

void VexProcess::Signal(int signal) const {
  if (process_ > 0) ::kill(process_, signal);
}

bool VexProcess::IsRunning() {
  if (process_ < 0) return false;
  if (::waitpid(process_, &status_, WNOHANG) == 0) return true;
  process_ = -1;
  return false;
}

CommandResult VexProcess::Wait() {
  if (process_ > 0 && ::waitpid(process_, &status_, 0) < 0) fail("waitpid");
  process_ = -1;
  CommandResult result;
  if (WIFEXITED(status_)) result.exitCode = WEXITSTATUS(status_);
  if (WIFSIGNALED(status_)) result.endSignal = WTERMSIG(status_);
  result.output = contentOf(folder_ / "out");
  result.errors = contentOf(folder_ / "err");
  return result;
}

CommandResult RunVex(const VexProcess::Arguments& arguments,
                     const VexProcess::Surroundings& surroundings) {
  return VexProcess(arguments, surroundings).Wait();
}

}  // namespace vex2::test
