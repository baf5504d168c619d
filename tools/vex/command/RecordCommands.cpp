#include <cstdint>
#include <functional>
#include <iostream>
#include <limits>
#include <optional>
#include <sstream>

#include "tools/vex/command/Command.h"
#include "tools/vex/command/CsvInput.h"
#include "tools/vex/document/Output.h"
#include "tools/vex/document/OutputFiles.h"
#include "tools/vex/run/InterruptedRun.h"
#include "tools/vex/run/MeasuredRun.h"
#include "tools/vex/run/RecordProgress.h"
#include "tools/vex/run/Recorder.h"
#include "tools/vex/run/SimulatedRun.h"
#include "tools/vex/setup/WellsFile.h"

namespace vex2::tool {

namespace {

constexpr double kLongestPace = 86400;

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

  /// `beforehand` is called when the recording can begin.
  ExitCode record(
      const RunPlan& plan, const std::function<void()>& beforehand = [] {}) {
    std::size_t done = 0;
    const auto outcome = [&] {
      RecordProgress progress(options_.path);
      Recorder recorder(plan, options_, [&](const RecordState& state) {
        done = state.framesDone;
        progress.Show(state);
      });
      recorder.Claim();
      beforehand();
      return runTellingWhatIsSafe(recorder, done, plan.frames.size());
    }();
    if (outcome == Recorder::Outcome::kWasDone) {
      std::cout << Printable(options_.path) << ": the run is complete, nothing is left to record\n";
    }
    if (outcome != Recorder::Outcome::kInterrupted) return ExitCode::kDone;
    PrintLine(Printable(options_.path) + ": interrupted after " + std::to_string(done) + " of " +
              std::to_string(plan.frames.size()) +
              " frames; the same command with --resume goes on");
    return ExitCode::kInterrupted;
  }

  // What the system refuses in the midst of a run, as a disk that is full, is no loss.
  static Recorder::Outcome runTellingWhatIsSafe(Recorder& recorder, const std::size_t& done,
                                                std::size_t all) {
    try {
      return recorder.Run();
    } catch (const Error& error) {
      if (error.Code() != ExitCode::kSystem || done == 0) throw;
      throw Error(ExitCode::kSystem,
                  std::string(error.what()) + "; " + std::to_string(done) + " of " +
                      std::to_string(all) +
                      " frames are safe, and the same command with --resume goes "
                      "on");
    }
  }

  RecordOptions options_;
};

class RecordCommand final : public RecordingCommand {
 public:
  RecordCommand()
      : RecordingCommand(
            {"record", "Play measured readings into a document, as an instrument does.",
             "vex record run.vex --readings readings.csv --wells wells.csv\n"
             "vex record run.vex --readings readings.csv --wells wells.csv --resume"}) {}

  void AddOptions(Options& options) override {
    addDocument(options);
    options.Add("--readings", files_.readings, "well,stage,cycle,time_s,temperature_c,fluorescence")
        .Show("FILE.csv")
        .Require();
    options.Add("--wells", files_.wells, "well,sample,target,task,quantity,reporter; - is stdin")
        .Show("FILE.csv")
        .Require();
    options.Add("--scale", files_.scale, "Factor of readings; else the largest to fit 16 bits")
        .Show("N")
        .AllowRange(std::uint32_t{1}, kLargestScale);
    input_.AddOptions(options);
    options.Add("--wells-columns", wellsNames_, "The same of the file of the wells")
        .Show(CsvInput::kColumnsShown);
    addRecordOptions(options);
  }

  ExitCode Run() override {
    if (files_.readings == "-" && files_.wells == "-") {
      throw Error(ExitCode::kUsage, "only one of --readings and --wells can be standard input");
    }
    files_.readingsFormat = input_.Format(ReadingsFileColumns());
    files_.wellsFormat = input_.Format(WellsFileColumns(), wellsNames_, "--wells-columns");
    OutputFiles files(options_.force);
    files.Read(files_.readings).Read(files_.wells);
    files.Write(options_.path, OutputFiles::Kind::kRecording).Claim();
    return record(LoadMeasuredRun(files_));
  }

 private:
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
    addRecordOptions(options);
  }

  ExitCode Run() override {
    const RunPlan plan = SimulateRun(parameters());
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
