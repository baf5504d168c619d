// Prints the quantification cycles of a run, its standard curves, and the findings about its
// quality.
//
//     analyse_with_lab RUN.vex

#include <cstdio>

#include "lab/Error.h"
#include "lab/analysis/Cq.h"
#include "lab/model/RunReader.h"

namespace lab = vex2::lab;

int main(int count, char** arguments) try {
  if (count != 2) return std::fputs("usage: analyse_with_lab RUN.vex\n", stderr), 2;
  const lab::RunReader run(arguments[1]);
  const lab::CqAnalysis analysis = lab::AnalyseCq(run);
  for (const lab::CqResult& result : analysis.wells) {
    const char* name = result.curve.well.name.c_str();
    if (result.cq) {
      std::printf("%s: %.2f\n", name, *result.cq);
    } else {
      std::printf("%s: none, %s\n", name, result.note.c_str());
    }
  }
  for (const lab::DetectorResult& detector : analysis.detectors) {
    if (!detector.curve || !detector.curve->efficiency) continue;
    std::printf("%s: efficiency %.2f\n", detector.name.c_str(), *detector.curve->efficiency);
  }
  for (const lab::QualityFinding& finding : analysis.findings) std::puts(finding.text.c_str());
  return 0;
} catch (const lab::Error& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
