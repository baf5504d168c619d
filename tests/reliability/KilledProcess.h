#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <new>

namespace vex2::test {

/// A number that a process shares with those that it forks.
class SharedCount {
 public:
  SharedCount()
      : count_(new (::mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE,
                           MAP_SHARED | MAP_ANONYMOUS, -1, 0)) std::atomic<int>(0)) {}
  ~SharedCount() { ::munmap(count_, sizeof *count_); }
  SharedCount(const SharedCount&) = delete;
  SharedCount& operator=(const SharedCount&) = delete;

  std::atomic<int>& operator*() { return *count_; }

 private:
  std::atomic<int>* count_;
};

/// Runs `work` in a process of its own. Whether it was killed; it fails the test when it ended in
/// any other way than by that or with 0, which `work` answers when all is well.
inline bool IsKilled(const std::function<int()>& work) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(work());
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  const bool killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
  EXPECT_TRUE(killed || (WIFEXITED(status) && WEXITSTATUS(status) == 0)) << status;
  return killed;
}

}  // namespace vex2::test
