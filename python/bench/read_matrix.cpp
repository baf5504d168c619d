// Prints how many seconds it takes to open a document and read all its readings: the median of
// nine, after one that warms the caches.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

#include "lab/model/RunReader.h"

int main(int count, char** arguments) {
  if (count != 2) return 2;
  std::array<double, 9> taken{};
  static_cast<void>(vex2::lab::RunReader(arguments[1]).Readings());
  for (double& seconds : taken) {
    const auto start = std::chrono::steady_clock::now();
    const vex2::lab::Readings readings = vex2::lab::RunReader(arguments[1]).Readings();
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
    seconds = readings.Values().empty() ? 0 : passed.count();
  }
  std::nth_element(taken.begin(), taken.begin() + 4, taken.end());
  std::printf("%.9f\n", taken[4]);
}
