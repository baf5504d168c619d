#include "tools/vex/show/FollowScreen.h"

#include <array>
#include <cstdio>
#include <iostream>

#include "tools/vex/Errors.h"
#include "tools/vex/files/Output.h"
#include "tools/vex/text/Terminal.h"
#include "tools/vex/text/Text.h"

namespace vex2::tool {

namespace {

std::string numberText(const char* format, double number) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), format, number);
  return text.data();
}

std::string placeText(const FramePosition& position) {
  std::string text;
  if (position.stage) text += *position.stage == Stage::kMelting ? ", melt" : ", amplification";
  if (position.cycle) text += ", cycle " + std::to_string(*position.cycle);
  if (position.temperature) text += numberText(", %.2f °C", *position.temperature);
  if (position.time) text += numberText(", %.0f s", *position.time);
  return text;
}

}  // namespace

void FollowScreen::Show(const Frame& frame, const RunFollower& follower) {
  if (Terminal::Error().IsTerminal() && Terminal::Out().IsTerminal()) {
    progress_.Show(
        {.framesDone = frame.index + 1, .framesTotal = follower.PlannedFrames(), .lastCommit = {}});
    return;
  }
  std::cout << "frame " << frame.index << placeText(frame.position) << '\n' << std::flush;
  if (!std::cout) FinishStream(std::cout, "standard output");
}

void FollowScreen::End(const RunFollower& follower) const {
  std::cout << Printable(file_) << ": the run is complete, "
            << Counted(follower.CommittedFrames(), "frame") << '\n';
}

}  // namespace vex2::tool
