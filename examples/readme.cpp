// Prints the raw readings of well 1 (A1), frame by frame.
#include <cstdint>
#include <cstdio>

#include "vex2/manager/Vex2FileManager.h"

int main(int count, char** arguments) {
  Vex2FileManager document;
  if (count < 2 || document.ReadFromFile(arguments[1]) != 0) return 1;
  if (!document.IsWhole()) {  // `document` has what could be read; a save backs the file up
    std::fprintf(stderr, "%s: read in part: offset %ju: %s\n", arguments[1],
                 std::uintmax_t{document.GetReadFault().offset}, document.GetReadFault().reason);
  }
  for (int frame = 0; frame < document.GetDataFrameCount(DataRAWa); ++frame) {
    Vex2WellRecord well;
    if (!document.GetAcqDataWellRecord(&well, frame, 1, DataRAWa)) return 1;
    std::printf("frame %d: %d\n", frame, well.data[0]);
  }
}
