// Reads one frame directly from a file. The time does not depend on the size of the document. This
// also works while the run is still being recorded.
//
//     read_frame RUN.vex FRAME

#include <cstdio>
#include <cstdlib>

#include "vex2/manager/Vex2FileManager.h"

int main(int count, char** arguments) {
  if (count != 3) {
    std::fputs("usage: read_frame RUN.vex FRAME\n", stderr);
    return 2;
  }
  const char* path = arguments[1];
  const int index = std::atoi(arguments[2]);

  Vex2FileManager document;
  int frames = 0;
  if (const int status = document.GetDataFrameCount(path, frames, DataRAWa); status != 0) {
    std::fprintf(stderr, "%s: cannot be read (%d)\n", path, status);
    return 1;
  }
  // Reading a frame beyond the count succeeds and leaves `frame` unchanged: check the count.
  if (index < 0 || index >= frames) {
    std::fprintf(stderr, "%s: has %d frames, from 0\n", path, frames);
    return 1;
  }
  Vex2FrameData frame;
  if (const int status = document.ReadDataFrame(path, index, &frame, DataRAWa); status != 0) {
    std::fprintf(stderr, "%s: frame %d cannot be read (%d)\n", path, index, status);
    return 1;
  }
  for (int well = 0; well < frame.wellCount; ++well) {
    std::printf("%d%c", frame.records[well].data[0], well % 12 == 11 ? '\n' : '\t');
  }
  return 0;
}
