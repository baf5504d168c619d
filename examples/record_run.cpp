// Records a run as an instrument does: each frame is on the disk before the next is measured. If
// this program is killed at any moment, the document still opens and holds every frame whose commit
// returned.
//
//     record_run RUN.vex

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <numeric>
#include <vector>

#include "vex2/manager/Vex2FileManager.h"

namespace {

constexpr unsigned short kWells = 96;
constexpr int kFrames = 3;

// Stands in for the instrument: returns the well record of a well in a frame.
Vex2WellRecord measure(int frame, int well) {
  Vex2WellRecord record;
  record.leading[0] = 1;  // nonzero marks a filled record
  record.leading[1] = static_cast<unsigned short>(frame + 1);
  record.leading[4] = record.data[0] = static_cast<unsigned short>(100 * (frame + 1) + well);
  return record;
}

int record(const char* path) {
  Vex2FileManager run;  // a document for a 96-well plate

  // Save everything that is known before the run now, while there is no data block: later the data
  // block must stay the last record of the file.
  run.SetSampleVolume(25);
  unsigned char steps[] = {95, 60};
  ThermocycleProgram program;
  program.length = sizeof steps;
  program.Allocate();
  std::copy(std::begin(steps), std::end(steps), program.data);
  int status = run.ReplaceThermocycleProgram(&program);
  if (status == 0) status = run.SetAcquisitionStatus("PROG");
  if (status == 0) status = run.SaveToFile(path);
  if (status != 0) return status;

  // The header points to no data block yet, so the first commit writes the whole block.
  std::vector<unsigned short> wells(kWells);
  std::iota(wells.begin(), wells.end(), static_cast<unsigned short>(1));
  run.InitAcqDataWellNumberArray(wells.data(), kWells, DataRAWa);
  for (int frame = 0; frame < kFrames; ++frame) {
    for (const unsigned short well : wells) {
      const Vex2WellRecord reading = measure(frame, well);
      if (!run.SetAcqDataWellRecord(&reading, frame, well, DataRAWa)) return -1;
    }
    status = run.CommitAcqDataFrame(path, frame, DataRAWa);
    if (status != 0) return status;
  }

  // Patches the status in place; the rest of the document is not written again.
  return run.SetAcquisitionStatus(path, "DONE");
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::fputs("usage: record_run RUN.vex\n", stderr);
    return 2;
  }
  const int status = record(arguments[1]);
  if (status != 0) std::fprintf(stderr, "%s: failed with status %d\n", arguments[1], status);
  return status == 0 ? 0 : 1;
}
