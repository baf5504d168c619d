#pragma once

#include <cstdint>
#include <string>

namespace vex2::test {

/// Whether sweeps visit every point, as in `scripts/test --full`; otherwise they visit a quick
/// sample. Set by the environment variable VEX2_FULL_SWEEPS.
bool FullSweeps();

/// The number of points, kills, states or frames to try: `full` in a full sweep, otherwise `quick`.
inline int InFullSweeps(int full, int quick) {
  return FullSweeps() ? full : quick;
}

/// The result of a fault sweep: one line of the table in docs/reliability.md.
struct SweepResult {
  std::string promise;  ///< the row of the table, e.g. "the process is killed"
  std::string sweep;    ///< what was done, e.g. "SIGKILL at each system call of a 45-frame run"
  std::uint64_t points = 0;  ///< points at which a fault was injected
  std::uint64_t states = 0;  ///< files or results that were examined afterwards
  std::uint64_t bad = 0;     ///< states that broke the promise
  /// States that the promise does not cover, e.g. frames whose number of wells is unknown.
  std::uint64_t leftOut = 0;
};

/// Appends the result as a line of JSON, with whether it was a full sweep, to the file named by the
/// environment variable VEX2_SWEEP_RESULTS; does nothing if that is not set. This only keeps
/// counts; the expectations of the test decide whether it passes.
void ReportSweep(const SweepResult& result);

/// Reports whether a state of a sweep fails an expectation. `HasFailure` cannot be used, because it
/// stays true after the first failure.
class NewFailures {
 public:
  /// Whether an expectation of the current test failed since the construction or the last call.
  bool Any();

 private:
  static int count();

  int seen_ = count();
};

}  // namespace vex2::test
