#include <chrono>
#include <iostream>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>

#include "lab/exchange/DocumentJson.h"
#include "lab/exchange/JsonOutput.h"
#include "lab/record/RunFollower.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/files/Interrupts.h"
#include "tools/vex/files/Output.h"
#include "tools/vex/show/FollowScreen.h"

namespace vex2::tool {

namespace {

class FollowCommand final : public Command {
 public:
  FollowCommand()
      : Command({"follow", "Show a run while it is being recorded.",
                 "vex follow run.vex\nvex follow run.vex --ndjson | my-program"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document; it need not exist yet").Require().Show("");
    options.AddFlag("--ndjson", ndjson_, "For programs: an object a line for each frame");
    options.Add("--from", first_, "Begin with this frame; the default is 0")
        .Show("N")
        .AllowRange(0U, std::numeric_limits<std::uint32_t>::max());
    options.PutLast(
        "Prints each committed frame once, in order, and ends when the run is complete.\n"
        "It only reads: the recorder never waits for it. A run that is interrupted and\n"
        "resumed is followed on.");
  }

  ExitCode Run() override {
    Interrupts interrupts;
    RunFollower follower(file_, first_.value_or(0));
    FollowScreen screen(file_);
    bool saidThatItWaits = false;
    while (!interrupts.Pending()) {
      if (const auto frame = follower.Next(kPatience)) {
        show(*frame, follower, screen);
        continue;
      }
      if (follower.State() == FollowState::kDone) {
        if (!ndjson_) screen.End(follower);
        return ExitCode::kDone;
      }
      if (follower.State() == FollowState::kWaiting && !saidThatItWaits) {
        PrintLine(Printable(file_) + ": waiting for the document");
        saidThatItWaits = true;
      }
    }
    PrintLine(Printable(file_) + ": no longer followed; the next frame is " +
              std::to_string(follower.NextFrame()));
    return ExitCode::kInterrupted;
  }

 private:
  // How soon an interrupt is noticed.
  static constexpr std::chrono::milliseconds kPatience{250};

  void show(const Frame& frame, const RunFollower& follower, FollowScreen& screen) const {
    if (!ndjson_) return screen.Show(frame, follower);
    PrintJson(std::cout, DescribeFollowed(frame, follower));
    std::cout.flush();
    if (!std::cout) FinishStream(std::cout, "standard output");
  }

  std::string file_;
  std::optional<std::uint32_t> first_;
  bool ndjson_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeFollowCommand() {
  return std::make_unique<FollowCommand>();
}

}  // namespace vex2::tool
