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

/// A number that a process shares with those that it forks.
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

/// Runs `work` in a process of its own and answers how that ended, as waitpid tells it: 0 when
/// `work` answered 0.
inline int EndOfProcess(const std::function<int()>& work) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(work());
  int status = -1;
  EXPECT_TRUE(child > 0 && ::waitpid(child, &status, 0) == child) << std::strerror(errno);
  return status;
}

/// Whether the process of `work` was killed; it fails the test when it ended in any other way than
/// by that or with 0, which `work` answers when all is well.
inline bool IsKilled(const std::function<int()>& work) {
  const int status = EndOfProcess(work);
  const bool killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
  EXPECT_TRUE(killed || status == 0) << status;
  return killed;
}

}  // namespace vex2::test
