#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <functional>
#include <new>

namespace vex2::test {

/// A number that a process shares with its child processes.
template <typename Number>
class SharedNumber {
 public:
  SharedNumber()
      : number_(new (::mmap(nullptr, sizeof(std::atomic<Number>), PROT_READ | PROT_WRITE,
                            MAP_SHARED | MAP_ANONYMOUS, -1, 0)) std::atomic<Number>(0)) {}
  ~SharedNumber() { ::munmap(number_, sizeof *number_); }
  SharedNumber(const SharedNumber&) = delete;
  SharedNumber& operator=(const SharedNumber&) = delete;

  std::atomic<Number>& operator*() { return *number_; }

 private:
  std::atomic<Number>* number_;
};
using SharedCount = SharedNumber<int>;

/// Runs `work` in a child process. Returns the status of waitpid, which is 0 if `work` returned 0.
inline int EndOfProcess(const std::function<int()>& work) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(work());
  int status = -1;
  EXPECT_TRUE(child > 0 && ::waitpid(child, &status, 0) == child) << std::strerror(errno);
  return status;
}

/// Runs `work` in a child process. Returns whether the process was killed. If it was not killed and
/// did not end with 0, the result of a successful `work`, the test fails.
inline bool IsKilled(const std::function<int()>& work) {
  const int status = EndOfProcess(work);
  const bool killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
  EXPECT_TRUE(killed || status == 0) << status;
  return killed;
}

}  // namespace vex2::test
