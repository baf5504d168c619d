// Checks a document and repairs what is safe to repair. If errors remain, recovers what is whole.
//
//     recover_lab RUN.vex RECOVERED.vex

#include <cinttypes>
#include <cstdio>

#include "lab/Error.h"
#include "lab/check/Check.h"
#include "lab/check/Repair.h"
#include "lab/recover/Recover.h"

namespace lab = vex2::lab;

// Prints the errors of the document, and returns whether there are none.
static bool isSound(const char* path) {
  const lab::Findings findings = lab::Check(path);
  for (const lab::Finding& finding : findings.list) {
    if (finding.severity == lab::Severity::kNote) continue;
    std::printf("byte %" PRIu64 ": %s\n", finding.offset, finding.problem.c_str());
  }
  return findings.Count(lab::Severity::kError) == 0;
}

int main(int count, char** arguments) try {
  if (count != 3) return std::fputs("usage: recover_lab RUN.vex RECOVERED.vex\n", stderr), 2;
  isSound(arguments[1]);
  const lab::RepairReport repair = lab::Repair(arguments[1]);  // a backup is made first
  if (repair.isRepaired) std::printf("repaired; backup: %s\n", repair.backup.c_str());
  if (isSound(arguments[1])) return 0;

  const lab::RecoverReport report = lab::Recover(arguments[1], arguments[2], {.replace = true});
  std::printf("recovered %" PRIu64 " frames, lost %" PRIu64 " bytes\n", report.frames,
              report.lostBytes);
  return report.IsWhole() ? 0 : 1;
} catch (const lab::Error& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
