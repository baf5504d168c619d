// Prints what a document contains about its run, and the readings of one well.
//
//     read_with_lab RUN.vex WELL

#include <cstdio>
#include <cstdlib>

#include "lab/Error.h"
#include "lab/model/RunReader.h"

namespace lab = vex2::lab;

static void printWell(const lab::RunReader& run, std::uint16_t number) {
  const lab::Readings readings = run.Readings();  // reads all frames: keep the result
  const auto well = readings.FindWell(number);
  if (!well) return;
  for (std::size_t frame = 0; frame < readings.FrameCount(); ++frame) {
    const auto value = readings.Fluorescence(frame, *well);
    if (value) {
      std::printf("frame %zu: %.3f\n", frame, *value);
    } else {  // missing, or the run was recorded by another program
      std::printf("frame %zu: stored %d\n", frame, readings.At(frame, *well, 0));
    }
  }
}

int main(int count, char** arguments) try {
  if (count != 3) return std::fputs("usage: read_with_lab RUN.vex WELL\n", stderr), 2;
  const lab::RunReader run(arguments[1]);
  for (const lab::FileFault& fault : run.Faults()) {  // what could not be read
    std::fprintf(stderr, "offset %llu: %s\n", static_cast<unsigned long long>(fault.offset),
                 fault.what.c_str());
  }
  std::printf("%s, %llu frames\n", run.AssayCode().c_str(),
              static_cast<unsigned long long>(run.FrameCount()));
  for (const lab::Well& well : run.Plate().wells) {
    if (!well.sample.empty()) std::printf("%s: %s\n", well.name.c_str(), well.sample.c_str());
  }
  printWell(run, static_cast<std::uint16_t>(std::atoi(arguments[2])));
  return 0;
} catch (const lab::Error& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
