#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "lab/record/Recorder.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"

namespace vex2::tool {

/// What the commands that record a run have in common: where to, how fast, and what to do with a
/// document that exists.
class RecordingCommand : public Command {
 public:
  using Command::Command;

 protected:
  void addDocument(Options& options);
  void addRunOptions(Options& options);
  void addRecordOptions(Options& options);

  /// What --started and --assay say. Throws an error when they say nothing that can be meant.
  bool startsNow() const { return started_ == "now"; }
  std::optional<RunStart> started() const;
  std::string assay() const;

  /// Records the run. `beforehand` is called when the recording can begin.
  ExitCode record(
      const RunPlan& plan, const std::function<void()>& beforehand = [] {});

  ExitCode tellOutcome(Recorder::Outcome outcome, std::size_t done,
                       std::optional<std::size_t> total) const;
  /// Runs `run`, which counts the frames that are on the disk in `done`. When the system refuses
  /// within the run, the error says how many frames are safe.
  Recorder::Outcome tellingWhatIsSafe(const std::size_t& done, std::optional<std::size_t> total,
                                      const std::function<Recorder::Outcome()>& run) const;

  RecordOptions options_;

 private:
  std::string safeFrames(std::size_t done, std::optional<std::size_t> total) const;

  std::optional<std::string> started_;
  std::optional<std::string> assay_;
};

}  // namespace vex2::tool
