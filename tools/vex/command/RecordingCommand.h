#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "lab/record/Recorder.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"

namespace vex2::tool {

/// The part that the commands that record a run share: the document, the speed, and what to do with
/// an existing document.
class RecordingCommand : public Command {
 public:
  using Command::Command;

 protected:
  void addDocument(Options& options);
  void addRunOptions(Options& options);
  void addRecordOptions(Options& options);

  /// The values of --started and --assay. `started` and `assay` throw an error if the value is
  /// invalid.
  bool startsNow() const { return started_ == "now"; }
  std::optional<RunStart> started() const;
  std::string assay() const;

  /// Records the run. Calls `beforehand` once the recording can begin.
  ExitCode record(
      const RunPlan& plan, const std::function<void()>& beforehand = [] {});

  ExitCode tellOutcome(Recorder::Outcome outcome, std::size_t done,
                       std::optional<std::size_t> total) const;
  /// Calls `run`, which counts the frames on the disk in `done`. If `run` throws a system error
  /// after the first frame, adds to the error how many frames are safe.
  Recorder::Outcome tellingWhatIsSafe(const std::size_t& done, std::optional<std::size_t> total,
                                      const std::function<Recorder::Outcome()>& run) const;

  RecordOptions options_;

 private:
  std::string safeFrames(std::size_t done, std::optional<std::size_t> total) const;

  std::optional<std::string> started_;
  std::optional<std::string> assay_;
};

}  // namespace vex2::tool
