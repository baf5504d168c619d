#include <cstdint>
#include <optional>
#include <sstream>
#include <string>

#include "lab/csv/WellsFile.h"
#include "lab/model/RunLog.h"
#include "lab/record/InterruptedRun.h"
#include "lab/record/SimulatedRun.h"
#include "tools/vex/command/RecordingCommand.h"
#include "tools/vex/files/Output.h"
#include "tools/vex/files/OutputFiles.h"

namespace vex2::tool {

namespace {

class SimulateCommand final : public RecordingCommand {
 public:
  SimulateCommand()
      : RecordingCommand({"simulate",
                          "Record a simulated dilution series; equal seeds give equal runs.",
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
    options.Add("--seed", seed_, "Number that selects the simulated run; 1 by default");
    options.Add("--readings-out", readingsOut_, "Also write the readings to this CSV file")
        .Show("FILE.csv");
    options.Add("--wells-out", wellsOut_, "Also write the content of the wells to this CSV file")
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
      // With --resume, the tables of the interrupted command may already exist.
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
    std::string path;  ///< empty if the table was not asked for
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

  // When a run is resumed, options that are not given again take their values from the document.
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

std::unique_ptr<Command> MakeSimulateCommand() {
  return std::make_unique<SimulateCommand>();
}

}  // namespace vex2::tool
