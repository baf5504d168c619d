#pragma once

#include <cstdint>
#include <string>

namespace vex2::test {

/// Whether sweeps visit every point that they can, as `scripts/test --full` wants it; otherwise
/// they take a sample that is quick. Set by the environment variable VEX2_FULL_SWEEPS.
bool FullSweeps();

/// `full` in a full sweep, else `quick`: how many points, kills, states or frames to try.
inline int InFullSweeps(int full, int quick) {
  return FullSweeps() ? full : quick;
}

/// What a sweep of faults has met: a line of the table in docs/reliability.md.
struct SweepResult {
  std::string promise;  ///< the table's row, e.g. "the process is killed"
  std::string sweep;    ///< what was done, e.g. "SIGKILL at each system call of a 45-frame run"
  std::uint64_t points = 0;  ///< places where a fault was put
  std::uint64_t states = 0;  ///< files, or answers, that were looked at afterwards
  std::uint64_t bad = 0;     ///< of these, the ones that broke the promise
  /// What the promise leaves out, e.g. frames of which nothing tells how many wells they are of.
  std::uint64_t leftOut = 0;
};

/// Adds the result to the file that the environment variable VEX2_SWEEP_RESULTS names, as a line
/// of JSON, with whether it was a full sweep; does nothing when it is not set. The test itself says
/// whether it passed: this only keeps the count.
void ReportSweep(const SweepResult& result);

/// Tells which states of a sweep are bad where expectations look at them. Unlike `HasFailure` it
/// does not count every state behind the first bad one.
class NewFailures {
 public:
  /// Whether an expectation of the current test has failed since this was made or last asked.
  bool Any();

 private:
  static int count();

  int seen_ = count();
};

}  // namespace vex2::test
