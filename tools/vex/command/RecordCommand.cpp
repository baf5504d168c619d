#include <fmt/core.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <sstream>

#include "lab/Text.h"
#include "lab/csv/CsvReader.h"
#include "lab/csv/WellsFile.h"
#include "lab/model/RunLog.h"
#include "lab/record/InterruptedRun.h"
#include "lab/record/LiveRun.h"
#include "lab/record/MeasuredRun.h"
#include "tools/vex/Interrupts.h"
#include "tools/vex/command/RecordingCommand.h"
#include "tools/vex/files/OutputFiles.h"
#include "tools/vex/options/CsvOptions.h"
#include "tools/vex/options/ExactOption.h"
#include "tools/vex/screen/RecordingProgress.h"

namespace vex2::tool {

namespace {

constexpr std::uint32_t kMostFrames = 1'000'000;

// Reports the numbers that the document stores rounded.
void tellRounding(const std::string& file, const Rounding& rounding, const ReadingScale& scale) {
  const auto tell = [&](const RoundedNumbers& rounded, std::string_view one, std::string_view many,
                        double step) {
    if (rounded.count == 0) return;
    PrintLine(
        fmt::format("{}: {}", Printable(file), RoundedText(rounded, one, many, PlainText(step))));
  };
  tell(rounding.readings, "reading", "readings", scale.Step());
  tell(rounding.times, "time", "times", 0.001);
  tell(rounding.temperatures, "temperature", "temperatures", 0.01);
}

class RecordCommand final : public RecordingCommand {
 public:
  RecordCommand()
      : RecordingCommand(
            {"record", "Record measured readings to a document, as an instrument does.",
             "vex record run.vex --readings readings.csv --wells wells.csv\n"
             "vex record run.vex --readings readings.csv --wells wells.csv --resume\n"
             "instrument | vex record run.vex --readings - --wells wells.csv --frames 40"}) {}

  void AddOptions(Options& options) override {
    addDocument(options);
    options.Add("--readings", files_.readings, "well,stage,cycle,time_s,temperature_c,fluorescence")
        .Show("FILE.csv")
        .Require();
    options.Add("--wells", files_.wells, "well,sample,target,task,quantity,reporter; - is stdin")
        .Show("FILE.csv")
        .Require();
    options.Add("--scale", scale_, "Factor for readings: 1000 or 2/3; default: chosen").Show("N");
    options.Add("--offset", offset_, "Subtract this from readings first; needed below 0").Show("X");
    options.Add("--frames", frames_, "Frames to record from --readings -; default: all")
        .Show("N")
        .AllowRange(1U, kMostFrames);
    options.Add("--channels", channels_, "Names of all channels; default: as they appear")
        .Show("NAME,NAME...");
    options.AddFlag("--exact", files_.isExact,
                    "Refuse readings and quantities that would be rounded");
    input_.AddOptions(options);
    options.Add("--wells-columns", wellsNames_, "Names of columns in the file of --wells")
        .Show(CsvOptions::kColumnsShown);
    addRunOptions(options);
    addRecordOptions(options);
  }

  ExitCode Run() override {
    if (files_.readings == "-" && files_.wells == "-") {
      throw Error(ErrorCode::kUsage, "only one of --readings and --wells can be standard input");
    }
    files_.readingsFormat = input_.Format(ReadingsFileColumns());
    files_.wellsFormat = input_.Format(WellsFileColumns(), wellsNames_, "--wells-columns");
    takeValues();
    if (options_.resume) takeRecordedValues();
    OutputFiles files(options_.force);
    files.Read(files_.readings).Read(files_.wells);
    files.Write(options_.path, OutputFiles::Kind::kRecording).Claim();
    if (files_.readings == "-") return recordLive();
    if (frames_) throw Error(ErrorCode::kUsage, "--frames is for --readings - alone");
    const MeasuredRun run = LoadMeasuredRun(files_);
    tellQuantities(run.quantities);
    tellRounding(CsvName(files_.readings), run.rounding, run.plan.scale);
    return record(run.plan);
  }

 private:
  void takeValues() {
    // Readings in a file were measured earlier, so their run cannot start now.
    if (startsNow() && files_.readings != "-") {
      throw Error(ErrorCode::kUsage,
                  "--started now is for --readings - alone; give the run's own "
                  "start, like 2026-11-22T08:00:00Z");
    }
    files_.started = started();
    files_.assay = assay();
    if (offset_) {
      files_.offset = ReadingScale::ParseOffset(*offset_);
      if (!files_.offset) refuse("--offset", *offset_, "a number of at most 15 digits");
    }
    if (scale_) {
      files_.scale = ReadingScale::Parse(*scale_);
      if (!files_.scale) refuse("--scale", *scale_, "a number above 0, or a fraction like 2/3");
    }
    files_.channels = channelNames();
  }

  // When a run is resumed, options that are not given again take their values from the document.
  void takeRecordedValues() {
    std::error_code error;
    if (!std::filesystem::exists(options_.path, error)) return;
    const auto log = RunLog::Find(RecordedLog(options_.path));
    if (!log) return;
    if (!files_.scale) files_.scale = log->scale;
    if (!files_.offset) files_.offset = log->scale.Offset();
    if (files_.channels.empty()) files_.channels = log->channels;
    if (!files_.started || startsNow()) files_.started = log->started;
    if (files_.assay.empty()) files_.assay = RecordedAssay(options_.path);
    if (!frames_ && files_.readings == "-" && log->frames) {
      frames_ = static_cast<std::uint32_t>(*log->frames);
    }
  }

  void tellQuantities(const RoundedNumbers& rounded) const {
    ExactOption::Tell(CsvName(files_.wells), rounded, "quantity", "quantities");
  }

  ExitCode recordLive() {
    if (options_.pace > 0) {
      throw Error(ErrorCode::kUsage, "--pace is for a file; standard input has its own pace");
    }
    const std::string input = CsvName(files_.readings);
    LiveOptions live;
    if (frames_) live.frames = *frames_;
    live.onRounded = [&](const Rounding&, const ReadingScale& scale) {
      PrintLine(fmt::format(
          "{}: readings, times or temperatures are rounded; the scale of readings is {}", input,
          scale.ScaleText()));
    };
    std::size_t done = 0;
    RecordingProgress progress(options_.path);
    Interrupts interrupts;
    options_.wait = [&](double seconds) { return interrupts.Wait(seconds); };
    LiveRun run(files_, live, options_, [&](const RecordState& state) {
      done = state.framesDone;
      progress.Show(state);
    });
    tellQuantities(run.RoundedQuantities());
    PrintIfAny(ReplacedText(options_.path, options_.force));
    const auto outcome = tellingWhatIsSafe(done, live.frames, [&] { return run.Record(); });
    if (run.HasBegun()) tellRounding(input, run.Rounded(), run.Plan().scale);
    return tellOutcome(outcome, done, FrameTotal(run.Plan()));
  }

  std::vector<std::string> channelNames() const {
    std::vector<std::string> names;
    if (!channels_) return names;
    std::istringstream list(*channels_ + ",");
    for (std::string name; std::getline(list, name, ',');) {
      const auto stored = ToLatin1(name);
      const bool isTwice = stored && std::find(names.begin(), names.end(), *stored) != names.end();
      if (!stored || stored->empty() || isTwice || names.size() == kMostChannels) {
        refuse("--channels", *channels_, "up to 16 different names with commas between them");
      }
      names.push_back(*stored);
    }
    return names;
  }

  [[noreturn]] static void refuse(const std::string& option, const std::string& value,
                                  const std::string& takes) {
    throw Error(ErrorCode::kUsage, fmt::format("{} {}: it takes {}", option, value, takes));
  }

  std::optional<std::string> scale_;
  std::optional<std::string> offset_;
  std::optional<std::string> channels_;
  std::optional<std::uint32_t> frames_;
  MeasuredRunFiles files_;
  CsvOptions input_;
  std::string wellsNames_;
};

}  // namespace

std::unique_ptr<Command> MakeRecordCommand() {
  return std::make_unique<RecordCommand>();
}

}  // namespace vex2::tool
