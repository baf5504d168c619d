// A program that uses only the installed library for laboratories: records a run, resumes it and
// reads it.
#include <cstdio>

#include "lab/Error.h"
#include "lab/model/RunReader.h"
#include "lab/record/RunRecorder.h"

namespace lab = vex2::lab;

int main(int count, char** arguments) {
  if (count < 2) return 2;
  lab::RecordingPlan plan;
  plan.plate.wells = {{.number = 1, .name = {}, .sample = "A", .targets = {}}};
  plan.scale = lab::ReadingScale(1000);
  {
    lab::RunRecorder recorder(arguments[1], plan);
    recorder.Append({.cycle = 1, .wells = {{.well = 1, .values = {1.5}}}});
  }
  lab::RunRecorder recorder(arguments[1], plan, {.resume = true});
  try {
    recorder.Append(lab::MeasuredFrame{});
  } catch (const lab::Error& error) {  // its type is known across the library's border
    std::printf("%zu frame; %s\n", recorder.RecordedFrames(), error.what());
    recorder.Finish();
    const lab::RunReader run(arguments[1]);
    const lab::Well* well = run.Plate().Find("A1");
    const bool isRead = run.IsWhole() && well != nullptr && well->sample == "A" &&
                        run.Readings().Fluorescence(0, 0) == 1.5;
    return isRead && recorder.FrameCount() == 1 && error.Code() == lab::ErrorCode::kInvalidValue
               ? 0
               : 1;
  }
  return 1;
}
