#include "tools/vex/text/ProgressLine.h"

#include <iostream>

#include "tools/vex/text/Terminal.h"
#include "tools/vex/text/Text.h"

namespace vex2::tool {

namespace {

constexpr std::string_view kEraseToEnd = "\x1b[K";

}  // namespace

ProgressLine::ProgressLine(std::chrono::milliseconds patience, AtEnd atEnd)
    : patience_(patience), atEnd_(atEnd), onTerminal_(Terminal::Error().IsTerminal()) {}

ProgressLine::~ProgressLine() {
  if (!drawn_) return;
  if (atEnd_ == AtEnd::kKeep) {
    std::cerr << std::endl;
  } else {
    std::cerr << '\r' << kEraseToEnd << std::flush;
  }
}

bool ProgressLine::IsShown() const {
  return onTerminal_ && std::chrono::steady_clock::now() - begun_ >= patience_;
}

void ProgressLine::Show(std::string_view text) {
  if (!IsShown()) return;
  drawn_ = true;
  std::cerr << '\r' << CutTo(text, Terminal::Error().Width() - 1) << kEraseToEnd << std::flush;
}

}  // namespace vex2::tool
