#include <fmt/core.h>

#include <iostream>

#include "lab/Text.h"
#include "lab/csv/CsvWriter.h"
#include "lab/json/Json.h"
#include "lab/json/SetupJson.h"
#include "lab/model/PlateContents.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/ListingCommand.h"

namespace vex2::tool {

namespace {

using nlohmann::ordered_json;

class DyesCommand final : public ListingCommand {
 public:
  DyesCommand()
      : ListingCommand({"dyes", "List the dyes that the run requires, or change them.",
                        "vex dyes run.vex\nvex dyes run.vex --add FAM ROX --remove SYBR"}) {}

 protected:
  void addChanges(Options& options) override {
    options.Add("--add", added_, "Add a dye at the end").Show("NAME...").TakeSeveral();
    options.Add("--remove", removed_, "Remove a dye; the name is case-sensitive")
        .Show("NAME...")
        .TakeSeveral();
  }

  bool hasChanges() const override { return !added_.empty() || !removed_.empty(); }

  std::string change(Vex2FileManager& plate) const override {
    std::string report;
    for (const std::string& name : removed_) {
      if (!plate.RemoveRequiredDyeInfo(stored(name))) {
        refuse(fmt::format("it requires no dye '{}'", name));
      }
      report += fmt::format("removed {}\n", Printable(name));
    }
    for (const std::string& name : added_) {
      const CString dye = stored(name);
      if (dye.IsEmpty()) refuse("a dye needs a name");
      if (!plate.AppendRequiredDyenfo(dye)) {
        refuse(fmt::format("it has the dye '{}' already", name));
      }
      report += fmt::format("added {}\n", Printable(name));
    }
    return report;
  }

  ordered_json describe(const Vex2FileManager& plate) const override {
    return {{"dyes", DescribeDyes(plate)}};
  }

  void printCsv(const std::vector<Document::Plate>& plates, bool all) const override {
    CsvWriter csv(std::cout, all);
    csv.Row("plate", {"dye"});
    for (const Document::Plate& plate : plates) {
      for (const std::string& dye : RequiredDyesOf(*plate.content)) {
        csv.Row(ToUtf8(plate.name), {ToUtf8(dye)});
      }
    }
  }

  void print(const Vex2FileManager& plate) const override {
    const auto dyes = RequiredDyesOf(plate);
    if (dyes.empty()) std::cout << "no required dyes\n";
    for (const std::string& dye : dyes) std::cout << Printable(ToUtf8(dye)) << '\n';
  }

 private:
  [[noreturn]] void refuse(const std::string& why) const {
    throw Error(ErrorCode::kUsage, file_, why);
  }

  CString stored(const std::string& name) const {
    const auto latin1 = ToLatin1(name);
    if (!latin1) {
      refuse(fmt::format("the dye '{}' has a character that documents cannot hold", name));
    }
    return CString(*latin1);
  }

  std::vector<std::string> added_;
  std::vector<std::string> removed_;
};

}  // namespace

std::unique_ptr<Command> MakeDyesCommand() {
  return std::make_unique<DyesCommand>();
}

}  // namespace vex2::tool
