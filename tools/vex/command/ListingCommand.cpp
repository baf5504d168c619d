#include "tools/vex/command/ListingCommand.h"

#include <iostream>

#include "lab/json/Json.h"
#include "lab/json/JsonOutput.h"
#include "lab/json/StudyJson.h"

namespace vex2::tool {

void ListingCommand::AddOptions(Options& options) {
  options.Add("FILE", file_, "The document").Require().Show("");
  const Option csv = options.AddFlag("--csv", csv_, "Print CSV");
  options.AddFlag("--json", json_, "Print JSON").Exclude(csv);
  addChanges(options);
  plate_.AddTo(options);
  changing_.AddOptions(options);
}

ExitCode ListingCommand::Run() {
  if (hasChanges()) {
    std::cout << changing_.ApplyToPlate(file_, plate_,
                                        [&](Vex2FileManager& plate) { return change(plate); });
    return ExitCode::kDone;
  }
  const Document document(file_, Document::Purpose::kReadHeads);
  const auto plates = studiesHaveIt() ? plate_.Choose(document) : plate_.ChoosePlates(document);
  const bool all = plate_.IsAll(document);
  if (json_) {
    const auto info = [&](const Vex2FileManager& plate) { return describe(plate); };
    PrintJson(std::cout, DescribePlates(plates, all, info), 2);
  } else if (csv_) {
    printCsv(plates, all);
  } else {
    ShowPlates(plates, all, std::cout, [&](const Vex2FileManager& plate) { print(plate); });
  }
  document.RequireWhole("");
  return ExitCode::kDone;
}

}  // namespace vex2::tool
