// probe: does one operation on a document, so that its cost can be counted from outside.

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>

#include "bench/Documents.h"
#include "vex2/manager/Vex2FileManager.h"

namespace {

int read(Vex2FileManager& manager, const char* path) {
  if (manager.ReadFromFile(path) != 0 || manager.GetAllComponentCount() < 0) return 1;
  return 0;
}

int run(std::string_view command, const char* path, const char* argument) {
  if (command == "run") {
    vex2::bench::MakeRun(path, 384, std::atoi(argument));
  } else if (command == "nested") {
    vex2::bench::MakeNested(path, std::atoi(argument));
  } else if (command == "records") {
    std::printf("%d\n", vex2::bench::SmallRecordsPerList());
  } else if (command == "setups") {
    vex2::bench::MakeSetups(path, std::atoi(argument));
  } else if (command == "setup-records") {
    std::printf("%d\n", vex2::bench::RecordsPerSetup());
  } else if (command == "study") {
    constexpr int kFrames = 40;
    vex2::bench::MakeStudy(path, std::atoi(argument), kFrames);
  } else if (command == "convert") {
    Vex2FileManager manager;
    Vex2PlateSetup setup;
    if (read(manager, path) != 0 || manager.GetPlateSetupInfo(&setup) != 0) return 1;
    Vex2FileManager other;
    return other.ReplacePlateSetup(&setup) == 0 ? 0 : 1;
  } else if (command == "read") {
    Vex2FileManager manager;
    return read(manager, path);
  } else if (command == "copy") {
    Vex2FileManager manager;
    return read(manager, path) == 0 && manager.SaveToFile(argument) == 0 ? 0 : 1;
  } else {
    return 2;
  }
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 3) {
    std::fputs(
        "usage: vex2_bench_probe run|nested|records|setups|setup-records|study|convert|read|copy "
        "FILE "
        "[N|OUT]\n",
        stderr);
    return 2;
  }
  try {
    return run(arguments[1], arguments[2], count > 3 ? arguments[3] : "0");
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
