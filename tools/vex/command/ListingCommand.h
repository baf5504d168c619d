#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "tools/vex/command/Command.h"
#include "tools/vex/files/Changing.h"

namespace vex2::tool {

/// A command that lists something of each plate, for people, as CSV or as JSON, or changes it.
class ListingCommand : public Command {
 public:
  using Command::Command;

  void AddOptions(Options& options) override;
  ExitCode Run() override;

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
