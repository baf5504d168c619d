#include "tools/vex/screen/ProgressLine.h"

#include <iostream>

#include "tools/vex/Terminal.h"

namespace vex2::tool {

namespace {

constexpr std::chrono::seconds kPauseOfLines{10};

}  // namespace

ProgressLine::ProgressLine(std::chrono::milliseconds patience, AtEnd atEnd)
    : patience_(patience),
      atEnd_(atEnd),
      onTerminal_(Terminal::Error().IsTerminal()),
      canRewrite_(Terminal::Error().CanRewriteLines()) {}

ProgressLine::~ProgressLine() {
  if (!drawn_) return;
  if (!canRewrite_) {
    if (atEnd_ == AtEnd::kKeep && last_ != shown_) std::cerr << last_ << std::endl;
    return;
  }
  if (atEnd_ == AtEnd::kKeep) {
    std::cerr << std::endl;
  } else {
    std::cerr << '\r' << Terminal::kEraseToEnd << std::flush;
  }
}

bool ProgressLine::IsShown() const {
  return onTerminal_ && std::chrono::steady_clock::now() - begun_ >= patience_;
}

void ProgressLine::Show(std::string_view text) {
  if (!IsShown()) return;
  drawn_ = true;
  if (!canRewrite_) return showLine(text);
  std::cerr << '\r' << Terminal::Error().CutTo(text, Terminal::Error().Width() - 1)
            << Terminal::kEraseToEnd << std::flush;
}

void ProgressLine::showLine(std::string_view text) {
  last_ = text;
  const auto now = std::chrono::steady_clock::now();
  if (now - lastLine_ < kPauseOfLines) return;
  lastLine_ = now;
  shown_ = last_;
  std::cerr << last_ << std::endl;
}

}  // namespace vex2::tool
