#pragma once

#include <iostream>
#include <string>

#include "tools/vex/command/Command.h"
#include "tools/vex/files/Changing.h"
#include "tools/vex/text/JsonOutput.h"

namespace vex2::tool {

/// A command that lists something of each plate, for people, as CSV or as JSON, or changes it.
class ListingCommand : public Command {
 public:
  using Command::Command;

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document").Require().Show("");
    const Option csv = options.AddFlag("--csv", csv_, "For programs, as a table");
    options.AddFlag("--json", json_, "For programs, as JSON").Exclude(csv);
    addChanges(options);
    plate_.AddTo(options);
    changing_.AddOptions(options);
  }

  ExitCode Run() override {
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

 protected:
  /// Adds the options that change something.
  virtual void addChanges(Options& options) = 0;
  virtual bool hasChanges() const = 0;
  /// Changes the plate, and answers lines that say what. Throws an error when that cannot be.
  virtual std::string change(Vex2FileManager& plate) const = 0;

  /// Whether a study keeps such things of its own, beside those of its plates.
  virtual bool studiesHaveIt() const { return false; }
  virtual nlohmann::ordered_json describe(const Vex2FileManager& plate) const = 0;
  /// Writes the table; where it is of `all` plates of a study, with their names in front.
  virtual void printCsv(const std::vector<Document::Plate>& plates, bool all) const = 0;
  virtual void print(const Vex2FileManager& plate) const = 0;

  std::string file_;

 private:
  bool csv_ = false;
  bool json_ = false;
  PlateOption plate_;
  Changing changing_;
};

}  // namespace vex2::tool
