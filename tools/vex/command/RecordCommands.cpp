#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <iostream>
#include <optional>
#include <sstream>

#include "lab/exchange/CsvReader.h"
#include "lab/exchange/WellsFile.h"
#include "lab/model/AssayTypes.h"
#include "lab/model/RunLog.h"
#include "lab/record/InterruptedRun.h"
#include "lab/record/LiveRun.h"
#include "lab/record/MeasuredRun.h"
#include "lab/record/Recorder.h"
#include "lab/record/SimulatedRun.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/command/CsvInput.h"
#include "tools/vex/command/Exactness.h"
#include "tools/vex/files/Interrupts.h"
#include "tools/vex/files/Output.h"
#include "tools/vex/files/OutputFiles.h"
#include "tools/vex/show/RecordProgress.h"
#include "tools/vex/text/Text.h"

namespace vex2::tool {

namespace {

constexpr double kLongestPace = 86400;
constexpr std::uint32_t kMostFrames = 1'000'000;

// What commands that record have in common: where to, how fast, and what to do with what is there.
class RecordingCommand : public Command {
 public:
  using Command::Command;

 protected:
  void addRecordOptions(Options& options) {
    options.Add("--pace", options_.pace, "Seconds from one frame to the next; 0: no pause")
        .Show("SECONDS")
        .AllowRange(0.0, kLongestPace);
    const Option resume = options.AddFlag("--resume", options_.resume,
                                          "Go on after the last frame that the document holds");
    options.AddFlag("--force", options_.force, "Overwrite existing files").Exclude(resume);
  }

  void addDocument(Options& options) {
    options.Add("RUN", options_.path, "The document to record to").Show("FILE.vex").Require();
  }

  void addRunOptions(Options& options) {
    options.Add("--started", started_, "When the run began, as below; else unknown").Show("TIME");
    options.Add("--assay", assay_, "The kind of run, a code as below; else AbsQ").Show("CODE");
    options.PutFirst(PlateAssayTable());
    options.PutFirst(
        "TIME is a date and time with its zone, 2026-11-22T08:00:00Z, or now where\n"
        "nothing was measured before.");
  }

  bool startsNow() const { return started_ == "now"; }

  std::optional<RunStart> started() const {
    if (!started_) return std::nullopt;
    if (startsNow()) return RunStart::Now();
    const auto start = RunStart::Parse(*started_);
    if (start) return start;
    throw Error(ErrorCode::kUsage, "--started " + *started_ +
                                       " is no date and time with a time zone, "
                                       "like 2026-11-22T08:00:00Z or 2026-11-22T09:00:00+01:00");
  }

  std::string assay() const {
    if (!assay_) return {};
    const auto code = PlateAssayCode(*assay_);
    if (code) return *code;
    throw Error(ErrorCode::kUsage,
                "--assay " + *assay_ + " is no assay; it is one of " + PlateAssayList());
  }

  /// `beforehand` is called when the recording can begin.
  ExitCode record(
      const RunPlan& plan, const std::function<void()>& beforehand = [] {}) {
    std::size_t done = 0;
    const auto outcome = [&] {
      RecordProgress progress(options_.path);
      std::optional<Interrupts> interrupts;
      options_.wait = [&](double seconds) { return interrupts->Wait(seconds); };
      Recorder recorder(plan, options_, [&](const RecordState& state) {
        done = state.framesDone;
        progress.Show(state);
      });
      recorder.Claim();
      tellReplaced();
      beforehand();
      interrupts.emplace();
      return tellingWhatIsSafe(done, plan.frames.size(), [&] { return recorder.Run(); });
    }();
    return tellOutcome(outcome, done, plan.frames.size());
  }

  /// Says which run --force gives up, before anything of it is gone.
  void tellReplaced() const {
    std::error_code error;
    if (!options_.force || !std::filesystem::exists(options_.path, error)) return;
    Vex2FileManager replaced;
    static_cast<void>(replaced.ReadFromFile(options_.path.c_str()));
    const int frames = replaced.GetDataFrameCount(DataRAWa);
    if (frames <= 0) return;
    PrintLine(Printable(options_.path) + ": replaces a run of " +
              Counted(static_cast<unsigned>(frames), "frame"));
  }

  ExitCode tellOutcome(Recorder::Outcome outcome, std::size_t done,
                       std::optional<std::size_t> total) const {
    if (outcome == Recorder::Outcome::kWasDone) {
      std::cout << Printable(options_.path) << ": the run is complete, nothing is left to record\n";
    }
    if (outcome != Recorder::Outcome::kInterrupted) return ExitCode::kDone;
    PrintLine(Printable(options_.path) + ": interrupted after " + std::to_string(done) +
              (total ? " of " + std::to_string(*total) : "") + " frames; " +
              (HoldsFrames(options_.path, done) ? "the same command with --resume goes on"
                                                : "the recorded frames are no longer in the file"));
    return ExitCode::kInterrupted;
  }

  // What the system refuses in the midst of a run, as a disk that is full, is no loss.
  template <typename Run>
  Recorder::Outcome tellingWhatIsSafe(const std::size_t& done, std::optional<std::size_t> all,
                                      const Run& run) const {
    try {
      return run();
    } catch (const Error& error) {
      if (error.Class() != ErrorClass::kSystem || done == 0) throw;
      throw Error(ErrorCode::kSystem, std::string(error.what()) + "; " + safeFrames(done, all));
    }
  }

  // The document may have been removed or emptied meanwhile, and then nothing can go on with it.
  std::string safeFrames(std::size_t done, std::optional<std::size_t> all) const {
    if (!HoldsFrames(options_.path, done)) return "the recorded frames are no longer in the file";
    return (all ? std::to_string(done) + " of " + Counted(*all, "frame") : Counted(done, "frame")) +
           (all || done != 1 ? " are" : " is") +
           " safe, and the same command with --resume goes on";
  }

  RecordOptions options_;

 private:
  std::optional<std::string> started_;
  std::optional<std::string> assay_;
};

// What the document does not hold as it was measured.
void tellRounding(const std::string& file, const Rounding& rounding, const ReadingScale& scale) {
  const auto tell = [&](const RoundedNumbers& rounded, std::string_view one, std::string_view many,
                        double step) {
    if (rounded.count == 0) return;
    PrintLine(Printable(file) + ": " + RoundedText(rounded, one, many, PlainText(step)));
  };
  tell(rounding.readings, "reading", "readings", scale.Step());
  tell(rounding.times, "time", "times", 0.001);
  tell(rounding.temperatures, "temperature", "temperatures", 0.01);
}

class RecordCommand final : public RecordingCommand {
 public:
  RecordCommand()
      : RecordingCommand(
            {"record", "Play measured readings into a document, as an instrument does.",
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
    options.Add("--scale", scale_, "Factor of readings, as 1000 or 2/3; else least loss").Show("N");
    options.Add("--offset", offset_, "What is taken from readings first; needed below 0").Show("X");
    options.Add("--frames", frames_, "Frames that --readings - will send; else to its end")
        .Show("N")
        .AllowRange(1U, kMostFrames);
    options.Add("--channels", channels_, "Names of the channels; else as they come")
        .Show("NAME,NAME...");
    options.AddFlag("--exact", files_.isExact,
                    "Refuse readings and quantities that would be rounded");
    input_.AddOptions(options);
    options.Add("--wells-columns", wellsNames_, "The same of the file of the wells")
        .Show(CsvInput::kColumnsShown);
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
    // What was measured before has another start.
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

  // A run that is gone on with is the one in the document, whatever is not said again.
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
    Exactness::Tell(CsvName(files_.wells), rounded, "quantity", "quantities");
  }

  ExitCode recordLive() {
    if (options_.pace > 0) {
      throw Error(ErrorCode::kUsage, "--pace is for a file; standard input has its own pace");
    }
    const std::string input = CsvName(files_.readings);
    LiveOptions live;
    if (frames_) live.frames = *frames_;
    live.onRounded = [&](const Rounding&, const ReadingScale& scale) {
      PrintLine(input + ": readings, times or temperatures are rounded; the scale of readings is " +
                scale.ScaleText());
    };
    std::size_t done = 0;
    RecordProgress progress(options_.path);
    Interrupts interrupts;
    options_.wait = [&](double seconds) { return interrupts.Wait(seconds); };
    LiveRun run(files_, live, options_, [&](const RecordState& state) {
      done = state.framesDone;
      progress.Show(state);
    });
    tellQuantities(run.RoundedQuantities());
    tellReplaced();
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
    throw Error(ErrorCode::kUsage, option + " " + value + ": it takes " + takes);
  }

  std::optional<std::string> scale_;
  std::optional<std::string> offset_;
  std::optional<std::string> channels_;
  std::optional<std::uint32_t> frames_;
  MeasuredRunFiles files_;
  CsvInput input_;
  std::string wellsNames_;
};

class SimulateCommand final : public RecordingCommand {
 public:
  SimulateCommand()
      : RecordingCommand({"simulate",
                          "Record a simulated dilution series, the same for the same seed.",
                          "vex simulate run.vex\n"
                          "vex simulate run.vex --wells 384 --cycles 45 --melt 70 --seed 7"}) {}

  void AddOptions(Options& options) override {
    addDocument(options);
    options.Add("--wells", wells_, "Wells of the plate: 96 (the default) or 384")
        .AllowOnly({96U, 384U});
    options.Add("--cycles", cycles_, "Amplification cycles; 40 by default")
        .AllowRange(1U, kMostSteps);
    options.Add("--melt", meltSteps_, "Readings of a melting stage at the end; 0 by default")
        .AllowRange(0U, kMostSteps);
    options.Add("--seed", seed_, "Another number is another run; 1 by default");
    options.Add("--readings-out", readingsOut_, "Write the readings also to this CSV file")
        .Show("FILE.csv");
    options.Add("--wells-out", wellsOut_, "Write what the wells hold to this CSV file")
        .Show("FILE.csv");
    addRunOptions(options);
    addRecordOptions(options);
  }

  ExitCode Run() override {
    RunPlan plan = SimulateRun(parameters());
    plan.started = started();
    plan.assay = assay();
    if (options_.resume) takeRecordedValues(plan);
    Table readings = {readingsOut_, readingsText(plan)};
    Table wells = {wellsOut_, wellsText(plan)};
    OutputFiles files(options_.force);
    files.Write(options_.path, OutputFiles::Kind::kRecording);
    for (Table* table : {&readings, &wells}) {
      files.Write(table->path, OutputFiles::Kind::kTable);
      // The same command with --resume goes on, and finds its tables there.
      table->isThere = options_.resume && files.IsThere(table->path, table->text);
    }
    files.Claim();
    return record(plan, [&] {
      write(readings);
      write(wells);
    });
  }

 private:
  struct Table {
    std::string path;  ///< empty where none was asked for
    std::string text;
    bool isThere = false;
  };

  static std::string readingsText(const RunPlan& plan) {
    std::ostringstream text;
    WriteReadings(plan, text);
    return text.str();
  }

  static std::string wellsText(const RunPlan& plan) {
    std::ostringstream text;
    WriteWells(plan.contents, text);
    return text.str();
  }

  static void write(const Table& table) {
    if (table.path.empty() || table.isThere) return;
    Output output(table.path);
    output.Stream() << table.text;
    output.Finish();
  }

  void takeRecordedValues(RunPlan& plan) const {
    const auto log = RunLog::Find(RecordedLog(options_.path));
    if (!log) return;
    if (!plan.started || startsNow()) plan.started = log->started;
    if (plan.assay.empty()) plan.assay = RecordedAssay(options_.path);
  }

  // A run that is gone on with is the one in the document, whatever is not said again.
  SimulationParameters parameters() const {
    SimulationParameters result;
    if (options_.resume) ReadParameters(RecordedLog(options_.path), result);
    const auto take = [](const std::optional<std::uint32_t>& given, std::uint32_t& value) {
      if (given) value = *given;
    };
    take(wells_, result.wells);
    take(cycles_, result.cycles);
    take(meltSteps_, result.meltSteps);
    take(seed_, result.seed);
    return result;
  }

  std::optional<std::uint32_t> wells_;
  std::optional<std::uint32_t> cycles_;
  std::optional<std::uint32_t> meltSteps_;
  std::optional<std::uint32_t> seed_;
  std::string readingsOut_;
  std::string wellsOut_;
};

}  // namespace

std::unique_ptr<Command> MakeRecordCommand() {
  return std::make_unique<RecordCommand>();
}

std::unique_ptr<Command> MakeSimulateCommand() {
  return std::make_unique<SimulateCommand>();
}

}  // namespace vex2::tool
