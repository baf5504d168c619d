#include "tests/support/Sweep.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <utility>

namespace vex2::test {
namespace {

std::string variable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

std::string jsonText(const std::string& text) {
  std::string quoted = "\"";
  for (const char character : text) {
    if (character == '"' || character == '\\') quoted += '\\';
    quoted += character;
  }
  return quoted + "\"";
}

}  // namespace

bool FullSweeps() {
  return !variable("VEX2_FULL_SWEEPS").empty();
}

void ReportSweep(const SweepResult& result) {
  const std::string path = variable("VEX2_SWEEP_RESULTS");
  if (path.empty()) return;
  std::ostringstream line;
  line << "{\"promise\": " << jsonText(result.promise) << ", \"sweep\": " << jsonText(result.sweep)
       << ", \"points\": " << result.points << ", \"states\": " << result.states
       << ", \"bad\": " << result.bad << ", \"leftOut\": " << result.leftOut
       << ", \"full\": " << (FullSweeps() ? "true" : "false") << "}\n";
  // Append with a single write, because tests report in parallel.
  std::ofstream(path, std::ios::app) << line.str() << std::flush;
}

bool NewFailures::Any() {
  const int failures = count();
  return std::exchange(seen_, failures) != failures;
}

int NewFailures::count() {
  const auto* test = testing::UnitTest::GetInstance()->current_test_info();
  if (test == nullptr) return 0;
  int failures = 0;
  for (int i = 0; i < test->result()->total_part_count(); ++i) {
    if (test->result()->GetTestPartResult(i).failed()) ++failures;
  }
  return failures;
}

}  // namespace vex2::test
