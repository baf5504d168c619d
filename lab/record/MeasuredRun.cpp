#include "lab/record/MeasuredRun.h"

#include <algorithm>
#include <utility>

#include "lab/Error.h"
#include "lab/csv/CsvReader.h"
#include "lab/csv/WellsFile.h"
#include "lab/model/RunLog.h"
#include "lab/record/ScaleChoice.h"

namespace vex2::lab {

namespace {

ReadingScale scaleFor(const MeasuredRunFiles& files, const std::vector<ReadingRow>& rows) {
  if (const auto given = GivenScale(files)) return *given;
  std::vector<double> readings;
  for (const ReadingRow& row : rows) {
    if (row.fluorescence) readings.push_back(*row.fluorescence);
  }
  return ChooseScale(std::move(readings), files.offset);
}

std::uint32_t timeOf(const std::vector<RunReading>& frame) {
  return std::min_element(
             frame.begin(), frame.end(),
             [](const RunReading& left, const RunReading& right) { return left.time < right.time; })
      ->time;
}

}  // namespace

std::optional<ReadingScale> GivenScale(const MeasuredRunFiles& files) {
  if (!files.scale) return std::nullopt;
  return files.scale->WithOffset(files.offset.value_or(DecimalNumber{}));
}

RunPlan PlanMeasuredRun(const MeasuredRunFiles& files, RoundedNumbers& quantities) {
  RunPlan plan;
  FloatReader reader(files.isExact);
  plan.contents = LoadWells(files.wells, reader, files.wellsFormat);
  quantities = reader.Rounded();
  plan.plate = plan.contents.plate;
  plan.wells = plan.contents.Wells();
  plan.channels = files.channels;
  plan.started = files.started;
  plan.assay = files.assay;
  plan.comment = "Played back from measured readings";
  plan.origin = std::string(kMeasuredSource) + "\n";
  return plan;
}

MeasuredRun LoadMeasuredRun(const MeasuredRunFiles& files) {
  const std::string name = CsvName(files.readings);
  MeasuredRun run;
  run.plan = PlanMeasuredRun(files, run.quantities);
  RunPlan& plan = run.plan;
  std::vector<ReadingRow> rows;
  ReadReadingRows({.path = files.readings,
                   .format = files.readingsFormat,
                   .findsChannels = files.channels.empty(),
                   .keepsWaiting = {}},
                  plan, [&](const ReadingRow& row) { rows.push_back(row); });
  if (rows.empty()) throw Error(ErrorCode::kDocument, name, "holds no readings");
  plan.scale = scaleFor(files, rows);
  FrameCollector collector(plan, name);
  for (const ReadingRow& row : rows) collector.Add(row);
  FrameEncoder encoder(plan, name, files.isExact);
  for (const auto& [key, frame] : collector.Frames()) {
    if (!frame.IsComplete()) collector.RefuseIncomplete(frame);
    plan.frames.push_back(encoder.Encode(frame));
  }
  SortFrames(plan);
  run.rounding = encoder.Rounded();
  return run;
}

void SortFrames(RunPlan& plan) {
  std::stable_sort(plan.frames.begin(), plan.frames.end(), [](const auto& left, const auto& right) {
    return timeOf(left) < timeOf(right);
  });
}

}  // namespace vex2::lab
