#include <chrono>
#include <iostream>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>

#include "lab/Text.h"
#include "lab/json/FrameJson.h"
#include "lab/json/JsonOutput.h"
#include "lab/live/LivePage.h"
#include "lab/record/RunFollower.h"
#include "tools/vex/Interrupts.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/command/VersionText.h"
#include "tools/vex/files/Output.h"
#include "tools/vex/screen/FollowScreen.h"

namespace vex2::tool {

namespace {

class FollowCommand final : public Command {
 public:
  FollowCommand()
      : Command({"follow", "Show a run while it is being recorded.",
                 "vex follow run.vex\nvex follow run.vex --ndjson | my-program\n"
                 "vex follow run.vex --serve 8080"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document; it need not exist yet").Require().Show("");
    const Option ndjson =
        options.AddFlag("--ndjson", ndjson_, "Print JSON: one object per frame, one per line");
    Option from = options.Add("--from", first_, "Begin with this frame; the default is 0");
    from.Show("N").AllowRange(0U, std::numeric_limits<std::uint32_t>::max());
    options.Add("--serve", port_, "Show the report page live; default: a free port")
        .Show("[PORT]")
        .MayBeAlone()
        .Exclude(ndjson)
        .Exclude(from);
    options.PutLast(
        "Prints each committed frame once, in order, and ends when the run is complete.\n"
        "The command only reads, and the recorder never waits for it. If the run is\n"
        "interrupted and resumed, the command continues. With --serve, browsers on this\n"
        "machine can open the printed address to see the run, until Ctrl-C.");
  }

  ExitCode Run() override {
    Interrupts interrupts;
    RunFollower follower(file_, first_.value_or(0));
    if (port_) return serve(follower, interrupts);
    FollowScreen screen(file_);
    bool saidThatItWaits = false;
    while (!interrupts.Pending()) {
      if (const auto frame = follower.Next(kPatience)) {
        show(*frame, follower, screen);
        continue;
      }
      if (!ndjson_) screen.CatchUp(follower);
      if (follower.State() == FollowState::kDone) {
        if (!ndjson_) screen.End(follower);
        return ExitCode::kDone;
      }
      if (follower.State() == FollowState::kWaiting && !saidThatItWaits) {
        PrintLine(Printable(file_) + ": waiting for the document");
        saidThatItWaits = true;
      }
    }
    screen.Leave();
    return stop(follower);
  }

 private:
  // An interrupt is noticed within this time.
  static constexpr std::chrono::milliseconds kPatience{250};

  ExitCode stop(const RunFollower& follower) const {
    PrintLine(Printable(file_) + ": no longer followed; the next frame is " +
              std::to_string(follower.NextFrame()));
    return ExitCode::kInterrupted;
  }

  std::uint16_t portNumber() const {
    if (port_->empty()) return 0;  // any free port
    const auto port = NumberIn<std::uint16_t>(*port_);
    if (port && *port != 0) return *port;
    throw Error(ErrorCode::kInvalidValue, "--serve",
                "'" + *port_ + "' is no port; write a number from 1 to 65535, or none, after FILE");
  }

  // Serves the page even after the run is complete, because a viewer may still need it.
  ExitCode serve(RunFollower& follower, Interrupts& interrupts) const {
    LivePage page(file_, portNumber(), ProgramText());
    say("shown at " + page.Address() + " until Ctrl-C");
    bool saidThatItIsDone = false;
    while (!interrupts.Pending()) {
      const auto end = std::chrono::steady_clock::now() + kPatience;
      while (std::chrono::steady_clock::now() < end && follower.Next(kPatience)) continue;
      page.Refresh(follower);
      if (follower.State() != FollowState::kDone) continue;
      if (!saidThatItIsDone) {
        say("the run is complete, " + Counted(follower.CommittedFrames(), "frame"));
      }
      saidThatItIsDone = true;
      interrupts.Wait(std::chrono::duration<double>(kPatience).count());
    }
    return saidThatItIsDone ? ExitCode::kDone : stop(follower);
  }

  void say(const std::string& words) const {
    std::cout << Printable(file_) << ": " << words << '\n' << std::flush;
    if (!std::cout) FinishStream(std::cout, "standard output");
  }

  void show(const Frame& frame, const RunFollower& follower, FollowScreen& screen) const {
    if (!ndjson_) return screen.Show(frame, follower);
    PrintJson(std::cout, DescribeFollowed(frame, follower));
    std::cout.flush();
    if (!std::cout) FinishStream(std::cout, "standard output");
  }

  std::string file_;
  std::optional<std::uint32_t> first_;
  std::optional<std::string> port_;
  bool ndjson_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeFollowCommand() {
  return std::make_unique<FollowCommand>();
}

}  // namespace vex2::tool
