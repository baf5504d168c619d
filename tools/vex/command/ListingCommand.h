#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "tools/vex/command/Command.h"
#include "tools/vex/options/ChangeOptions.h"

namespace vex2::tool {

/// A command that lists a part of each plate, for people, as CSV or as JSON, or changes this part.
class ListingCommand : public Command {
 public:
  using Command::Command;

  void AddOptions(Options& options) override;
  ExitCode Run() override;

 protected:
  /// Adds the options that change the plate.
  virtual void addChanges(Options& options) = 0;
  virtual bool hasChanges() const = 0;
  /// Changes the plate and returns lines that describe the changes. Throws an error if a change is
  /// not possible.
  virtual std::string change(Vex2FileManager& plate) const = 0;

  /// Whether a study itself has this part, in addition to its plates.
  virtual bool studiesHaveIt() const { return false; }
  virtual nlohmann::ordered_json describe(const Vex2FileManager& plate) const = 0;
  /// Writes the table. If `all` is true, the table is of all plates of a study, and each row begins
  /// with the name of the plate.
  virtual void printCsv(const std::vector<Document::Plate>& plates, bool all) const = 0;
  virtual void print(const Vex2FileManager& plate) const = 0;

  std::string file_;

 private:
  bool csv_ = false;
  bool json_ = false;
  PlateOption plate_;
  ChangeOptions changing_;
};

}  // namespace vex2::tool
