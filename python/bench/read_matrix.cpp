// Prints the processor time, in seconds, of opening a document and reading all its readings: the
// least of 25 runs, after one that fills the caches.
#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>

#include "lab/model/RunReader.h"

int main(int count, char** arguments) {
  if (count != 2) return 2;
  std::array<double, 25> taken{};
  static_cast<void>(vex2::lab::RunReader(arguments[1]).Readings());
  for (double& seconds : taken) {
    const std::clock_t start = std::clock();
    const vex2::lab::Readings readings = vex2::lab::RunReader(arguments[1]).Readings();
    const auto passed = static_cast<double>(std::clock() - start);
    seconds = readings.Values().empty() ? 0 : passed / CLOCKS_PER_SEC;
  }
  std::printf("%.9f\n", *std::min_element(taken.begin(), taken.end()));
}
