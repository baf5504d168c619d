#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace vex2::tool {

/// How far long work is, in one line of the terminal that is written again and again; where the
/// terminal cannot do that, in a line every ten seconds. Nothing where standard error is no
/// terminal, nor before the work has taken so long that one would ask.
class ProgressLine {
 public:
  enum class AtEnd { kErase, kKeep };

  ProgressLine(std::chrono::milliseconds patience, AtEnd atEnd);
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  /// Whether `Show` would show anything; what it shows need not be made otherwise.
  bool IsShown() const;
  /// `text` is UTF-8 without control characters, and cut to the terminal's width.
  void Show(std::string_view text);

 private:
  void showLine(std::string_view text);

  std::chrono::milliseconds patience_;
  AtEnd atEnd_;
  bool onTerminal_;
  bool canRewrite_;
  bool drawn_ = false;
  std::string last_;   // what was to be shown last, where lines cannot be written again
  std::string shown_;  // what was
  std::chrono::steady_clock::time_point lastLine_;
  std::chrono::steady_clock::time_point begun_ = std::chrono::steady_clock::now();
};

}  // namespace vex2::tool
