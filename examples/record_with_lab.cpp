// Records a run with the library for laboratories. If this program is killed at any moment and
// started again, it continues with the first frame that is not in the document.
//
//     record_with_lab RUN.vex

#include <cstdio>

#include "lab/Error.h"
#include "lab/record/RunRecorder.h"

namespace lab = vex2::lab;

// Stands in for the instrument: returns the frame of a cycle, from 0.
static lab::MeasuredFrame measure(std::size_t cycle, std::span<const std::uint16_t> wells) {
  const auto number = static_cast<double>(cycle);
  lab::MeasuredFrame frame{.cycle = static_cast<std::uint16_t>(cycle + 1), .wells = {}};
  for (const std::uint16_t well : wells) {
    frame.wells.push_back(
        {.well = well, .temperature = 60.0, .time = 45 * number, .values = {1.5 + 0.01 * number}});
  }
  return frame;
}

int main(int count, char** arguments) try {
  if (count != 2) return std::fputs("usage: record_with_lab RUN.vex\n", stderr), 2;
  lab::RecordingPlan plan;  // a plate of 96 wells, of which two are used
  plan.plate.wells = {{.number = 1, .name = {}, .sample = "control", .targets = {}},
                      {.number = 2, .name = {}, .sample = "patient 7", .targets = {}}};
  plan.scale = lab::ReadingScale(1000);  // readings are kept in steps of 1/1000
  plan.frameCount = 40;

  lab::RunRecorder recorder(arguments[1], plan, {.resume = true});
  while (recorder.FrameCount() < plan.frameCount) {
    recorder.Append(measure(recorder.FrameCount(), recorder.Wells()));  // on the disk
    std::printf("%zu\n", recorder.FrameCount());
    std::fflush(stdout);
  }
  recorder.Finish();
  return 0;
} catch (const lab::Error& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
