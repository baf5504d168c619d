#include "tools/vex/command/RecordingCommand.h"

#include <fmt/core.h>

#include <filesystem>
#include <iostream>

#include "lab/Text.h"
#include "lab/model/AssayTypes.h"
#include "lab/record/InterruptedRun.h"
#include "tools/vex/Interrupts.h"
#include "tools/vex/files/OutputFiles.h"
#include "tools/vex/screen/RecordingProgress.h"

namespace vex2::tool {

namespace {

constexpr double kLongestPace = 86400;
constexpr const char* kFramesGone = "the recorded frames are no longer in the file";

}  // namespace

void RecordingCommand::addDocument(Options& options) {
  options.Add("RUN", options_.path, "The document to record to").Show("FILE.vex").Require();
}

void RecordingCommand::addRunOptions(Options& options) {
  options.Add("--started", started_, "Start of the run, see TIME below; default: unknown")
      .Show("TIME");
  options.Add("--assay", assay_, "Kind of run, a code listed below; default AbsQ").Show("CODE");
  options.PutFirst(PlateAssayTable());
  options.PutFirst(
      "TIME is a date and time with a time zone, as in 2026-11-22T08:00:00Z, or 'now'\n"
      "if the readings are not measured yet.");
}

void RecordingCommand::addRecordOptions(Options& options) {
  options.Add("--pace", options_.pace, "Seconds from one frame to the next; 0: no pause")
      .Show("SECONDS")
      .AllowRange(0.0, kLongestPace);
  const Option resume =
      options.AddFlag("--resume", options_.resume, "Continue after the last frame in the document");
  options.AddFlag("--force", options_.force, "Overwrite existing files").Exclude(resume);
}

std::optional<RunStart> RecordingCommand::started() const {
  if (!started_) return std::nullopt;
  if (startsNow()) return RunStart::Now();
  const auto start = RunStart::Parse(*started_);
  if (start) return start;
  throw Error(ErrorCode::kUsage,
              fmt::format("--started {} is not a date and time with a time zone, like "
                          "2026-11-22T08:00:00Z or 2026-11-22T09:00:00+01:00",
                          *started_));
}

std::string RecordingCommand::assay() const {
  if (!assay_) return {};
  const auto code = PlateAssayCode(*assay_);
  if (code) return *code;
  throw Error(ErrorCode::kUsage,
              fmt::format("--assay {} is not an assay; use one of {}", *assay_, PlateAssayList()));
}

ExitCode RecordingCommand::record(const RunPlan& plan, const std::function<void()>& beforehand) {
  std::size_t done = 0;
  const auto outcome = [&] {
    RecordingProgress progress(options_.path);
    std::optional<Interrupts> interrupts;
    options_.wait = [&](double seconds) { return interrupts->Wait(seconds); };
    Recorder recorder(plan, options_, [&](const RecordState& state) {
      done = state.framesDone;
      progress.Show(state);
    });
    recorder.Claim();
    PrintIfAny(ReplacedText(options_.path, options_.force));
    beforehand();
    interrupts.emplace();
    return tellingWhatIsSafe(done, plan.frames.size(), [&] { return recorder.Run(); });
  }();
  return tellOutcome(outcome, done, plan.frames.size());
}

ExitCode RecordingCommand::tellOutcome(Recorder::Outcome outcome, std::size_t done,
                                       std::optional<std::size_t> total) const {
  if (outcome == Recorder::Outcome::kWasDone) {
    std::cout << Printable(options_.path) << ": the run is complete, nothing is left to record\n";
  }
  if (outcome != Recorder::Outcome::kInterrupted) return ExitCode::kDone;
  PrintLine(fmt::format("{}: interrupted after {} frames; {}", Printable(options_.path),
                        total ? fmt::format("{} of {}", done, *total) : std::to_string(done),
                        HoldsFrames(options_.path, done)
                            ? "use the same command with --resume to continue"
                            : kFramesGone));
  return ExitCode::kInterrupted;
}

// If the disk becomes full during a run, for example, no committed frame is lost; the error says
// so.
Recorder::Outcome RecordingCommand::tellingWhatIsSafe(
    const std::size_t& done, std::optional<std::size_t> total,
    const std::function<Recorder::Outcome()>& run) const {
  try {
    return run();
  } catch (const Error& error) {
    if (error.Class() != ErrorClass::kSystem || done == 0) throw;
    throw Error(error.Code(), error.File(),
                fmt::format("{}; {}", error.Message(), safeFrames(done, total)), error.Offset());
  }
}

// The document may have been removed or emptied during the run; then the run cannot be resumed.
std::string RecordingCommand::safeFrames(std::size_t done, std::optional<std::size_t> all) const {
  if (!HoldsFrames(options_.path, done)) return kFramesGone;
  return fmt::format("{} safe; use the same command with --resume to continue",
                     all ? fmt::format("{} of {} are", done, Counted(*all, "frame"))
                         : Counted(done, "frame is", "frames are"));
}

}  // namespace vex2::tool
