// Changes a document: names a sample, adds a detector and a comment. The document is saved as a
// whole or not at all.
//
//     edit_lab RUN.vex

#include <cstdio>
#include <string>

#include "lab/model/DocumentEditor.h"
#include "lab/model/RunReader.h"

namespace lab = vex2::lab;

int main(int count, char** arguments) try {
  if (count != 2) return std::fputs("usage: edit_lab RUN.vex\n", stderr), 2;
  lab::DocumentEditor editor(arguments[1]);  // fails while the run is being recorded

  lab::Detector detector;
  detector.name = "MYC";
  detector.reporterDye = "FAM";
  editor.Detectors().push_back(detector);

  lab::Well& well = editor.Well("A1");
  well.sample = "patient 8";
  well.targets = {{.detector = "MYC", .task = "UNKN", .quantity = {}, .reporter = {}}};
  editor.Set("comment", std::string("repeated"));
  editor.Save();  // fails if another program has changed the file since

  const lab::RunReader run(arguments[1]);
  std::printf("A1: %s, %s\n", run.Plate().Find("A1")->sample.c_str(),
              run.Plate().Find("A1")->targets.front().reporter.c_str());
  return 0;
} catch (const lab::Error& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
