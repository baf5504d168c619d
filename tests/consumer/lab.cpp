// A program that uses only the installed library `vex2::lab`: it records a run, resumes, reads,
// edits, checks, repairs and recovers it.
#include <cstdio>
#include <fstream>
#include <string>

#include "lab/Error.h"
#include "lab/check/Check.h"
#include "lab/check/Repair.h"
#include "lab/compare/Diff.h"
#include "lab/import/Import.h"
#include "lab/model/DocumentEditor.h"
#include "lab/model/RunReader.h"
#include "lab/rdml/RdmlExport.h"
#include "lab/record/RunRecorder.h"
#include "lab/recover/Recover.h"

namespace lab = vex2::lab;

static bool canKeep(const std::string& path) {
  const std::string recovered = path + ".recovered";
  lab::DocumentEditor editor(path);
  editor.Well("A2").sample = "B";
  editor.Set("comment", std::string("edited"));
  editor.Save();
  return lab::RunReader(path).Plate().Find("A2")->sample == "B" &&
         lab::Check(path).Count(lab::Severity::kError) == 0 &&
         lab::Repair(path, {.dryRun = true}).plan.IsEmpty() &&
         lab::Recover(path, recovered, {.replace = true}).frames == 1;
}

static bool canExchange(const std::string& path) {
  {
    std::ofstream out(path + ".rdml", std::ios::binary);
    lab::ExportRdml(path, out, {.embedsDocument = false});
  }
  lab::Import(path + ".rdml", path + ".imported", {.replace = true});
  return lab::Diff(path, path + ".imported", {.setup = false, .records = false}).empty();
}

int main(int count, char** arguments) {
  if (count < 2) return 2;
  lab::RecordingPlan plan;
  plan.plate.wells = {{.number = 1, .name = {}, .sample = "A", .targets = {}}};
  plan.scale = lab::ReadingScale(1000);
  {
    lab::RunRecorder recorder(arguments[1], plan);
    recorder.Append({.cycle = 1, .wells = {{.well = 1, .values = {1.5}}}});
  }
  bool isRight = false;
  {
    lab::RunRecorder recorder(arguments[1], plan, {.resume = true});
    try {
      recorder.Append(lab::MeasuredFrame{.cycle = 2, .wells = {}});  // the frame has no readings
    } catch (
        const lab::Error& error) {  // the program can catch an exception that the library throws
      std::printf("%zu frame; %s\n", recorder.RecordedFrames(), error.what());
      recorder.Finish();
      const lab::RunReader run(arguments[1]);
      const lab::Well* well = run.Plate().Find("A1");
      const bool isRead = run.IsWhole() && well != nullptr && well->sample == "A" &&
                          run.Readings().Fluorescence(0, 0) == 1.5;
      isRight =
          isRead && recorder.FrameCount() == 1 && error.Code() == lab::ErrorCode::kInvalidValue;
    }
  }
  return isRight && canKeep(arguments[1]) && canExchange(arguments[1]) ? 0 : 1;
}
