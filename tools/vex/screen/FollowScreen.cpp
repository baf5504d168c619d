#include "tools/vex/screen/FollowScreen.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iostream>

#include "lab/Text.h"
#include "tools/vex/Errors.h"
#include "tools/vex/Lab.h"
#include "tools/vex/Terminal.h"
#include "tools/vex/files/Output.h"
#include "tools/vex/screen/SceneLines.h"

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

bool isScreen() {
  return Terminal::Error().IsTerminal() && Terminal::Out().IsTerminal();
}

constexpr auto kBetweenPictures = std::chrono::milliseconds(200);  // between two pictures
constexpr const char* kEraseAll = "\x1b[H\x1b[2J";

}  // namespace

void FollowScreen::Show(const Frame& frame, const RunFollower& follower) {
  if (isScreen()) {
    curves_.Add(frame);
    isStale_ = true;
    if (Clock::now() - drawn_ >= kBetweenPictures) draw(follower);
    progress_->Show(
        {.framesDone = frame.index + 1, .framesTotal = follower.PlannedFrames(), .lastCommit = {}});
    return;
  }
  std::cout << "frame " << frame.index << placeText(frame.position) << '\n' << std::flush;
  if (!std::cout) FinishStream(std::cout, "standard output");
}

// Draws the curves above the progress line, which stays unchanged.
void FollowScreen::draw(const RunFollower& follower) {
  drawn_ = Clock::now();
  isStale_ = false;
  if (!Terminal::Out().CanRewriteLines() || !follower.Run()) return;
  CellSize size = ScreenSize();
  const Scene scene = curves_.Build(*follower.Run(), follower.Channels());
  const std::vector<std::string> picture =
      scene.series.empty() ? std::vector<std::string>() : LinesOf(scene, size);
  // On a screen that is too small, lines would scroll off the top, where they cannot be
  // overwritten.
  if (picture.empty() || picture.size() > size.height) return;
  const bool isOther = width_ != size.width || height_ != size.height;
  if (isOther && lines_ > 0) {
    std::cout << kEraseAll;
    lines_ = 0;
  }
  std::cout << '\r';
  if (lines_ > 0) std::cout << "\x1b[" << lines_ << 'A';
  for (const std::string& line : picture) std::cout << line << Terminal::kEraseToEnd << '\n';
  for (std::size_t i = picture.size(); i < lines_; ++i) std::cout << Terminal::kEraseToEnd << '\n';
  std::cout << std::flush;
  lines_ = std::max(lines_, picture.size());
  width_ = size.width;
  height_ = size.height;
}

void FollowScreen::CatchUp(const RunFollower& follower) {
  if (isStale_) draw(follower);
}

void FollowScreen::End(const RunFollower& follower) {
  CatchUp(follower);
  Leave();
  std::cout << Printable(file_) << ": the run is complete, "
            << Counted(follower.CommittedFrames(), "frame") << '\n';
}

}  // namespace vex2::tool
