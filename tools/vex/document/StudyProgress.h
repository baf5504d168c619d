#pragma once

#include <chrono>
#include <string>

namespace vex2::tool {

/// How many plates of a study are done, in one line on the terminal. Nothing where standard error
/// is no terminal, nor while it goes fast.
class StudyProgress {
 public:
  explicit StudyProgress(std::size_t total);
  ~StudyProgress();
  StudyProgress(const StudyProgress&) = delete;
  StudyProgress& operator=(const StudyProgress&) = delete;

  /// The plate of that file is next.
  void Show(const std::string& file);

 private:
  std::size_t total_;
  std::size_t done_ = 0;
  bool onTerminal_;
  bool drawn_ = false;
  std::chrono::steady_clock::time_point begun_;
};

}  // namespace vex2::tool
