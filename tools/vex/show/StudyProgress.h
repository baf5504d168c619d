#pragma once

#include <string>

#include "tools/vex/text/ProgressLine.h"

namespace vex2::tool {

/// How many plates of a study are done, in one line on the terminal.
class StudyProgress {
 public:
  explicit StudyProgress(std::size_t total);

  /// The plate of that file is next.
  void Show(const std::string& file);

 private:
  std::size_t total_;
  std::size_t done_ = 0;
  ProgressLine line_;
};

}  // namespace vex2::tool
