#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace vex2::tool {

/// Shows the progress of long work on standard error: in one line of the terminal that is rewritten
/// or, if the terminal cannot rewrite lines, in a new line every ten seconds. Shows nothing if
/// standard error is not a terminal, or before the work has taken `patience`.
class ProgressLine {
 public:
  enum class AtEnd { kErase, kKeep };

  ProgressLine(std::chrono::milliseconds patience, AtEnd atEnd);
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  /// Whether `Show` would show anything. If not, the caller need not make the text.
  bool IsShown() const;
  /// Shows `text`, which is UTF-8 without control characters. It is cut to the width of the
  /// terminal.
  void Show(std::string_view text);

 private:
  void showLine(std::string_view text);

  std::chrono::milliseconds patience_;
  AtEnd atEnd_;
  bool onTerminal_;
  bool canRewrite_;
  bool drawn_ = false;
  std::string last_;   // the latest text, if lines cannot be rewritten
  std::string shown_;  // the last text that was printed
  std::chrono::steady_clock::time_point lastLine_;
  std::chrono::steady_clock::time_point begun_ = std::chrono::steady_clock::now();
};

}  // namespace vex2::tool
