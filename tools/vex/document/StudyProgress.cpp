#include "tools/vex/document/StudyProgress.h"

#include <iostream>

#include "tools/vex/Errors.h"
#include "tools/vex/text/Terminal.h"
#include "tools/vex/text/Text.h"

namespace vex2::tool {

namespace {

constexpr auto kPatience = std::chrono::milliseconds(200);

}  // namespace

StudyProgress::StudyProgress(std::size_t total)
    : total_(total),
      onTerminal_(Terminal::Error().IsTerminal()),
      begun_(std::chrono::steady_clock::now()) {}

StudyProgress::~StudyProgress() {
  if (drawn_) std::cerr << "\r\x1b[K" << std::flush;
}

void StudyProgress::Show(const std::string& file) {
  ++done_;
  if (!onTerminal_ || std::chrono::steady_clock::now() - begun_ < kPatience) return;
  drawn_ = true;
  const std::string line =
      "plate " + std::to_string(done_) + " of " + std::to_string(total_) + ": " + Printable(file);
  std::cerr << '\r' + CutTo(line, Terminal::Error().Width() - 1) + "\x1b[K" << std::flush;
}

}  // namespace vex2::tool
