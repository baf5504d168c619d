#include <algorithm>
#include <functional>
#include <set>
#include <string>

#include "lab/Text.h"
#include "lab/json/Json.h"
#include "lab/picture/ReportParts.h"

namespace vex2::lab {

namespace {

using nlohmann::ordered_json;

// Counts wells and texts of a plate, for the sentences of the MIQE list.
class Tally {
 public:
  explicit Tally(const RunReader& plate) : plate_(plate) {
    for (const Well& well : plate.Plate().wells) {
      if (!well.targets.empty()) ++inUse_;
      if (!well.targets.empty() && !well.sample.empty()) ++named_;
      if (!well.sample.empty()) samples_.insert(well.sample);
      for (const Target& target : well.targets) {
        ++tasks_[target.task];
        if (target.task == "STND" && target.quantity) ++standards_;
        ++replicates_[{well.sample, target.detector, target.task}];
      }
    }
  }

  std::string Samples() const {
    if (named_ == 0) return "";
    return Counted(samples_.size(), "sample") + " in " + std::to_string(named_) + " of " +
           Counted(inUse_, "well") + " in use";
  }
  std::string Wells(const std::string& task) const {
    const auto found = tasks_.find(task);
    return found == tasks_.end() ? "" : Counted(found->second, "well");
  }
  std::string Standards() const {
    return standards_ == 0 ? "" : Counted(standards_, "well") + " with a quantity";
  }
  std::string Replicates() const {
    std::size_t repeated = 0;
    for (const auto& [key, count] : replicates_) repeated += count > 1 ? 1 : 0;
    if (repeated == 0) return "";
    return Counted(repeated, "sample") + " in two wells or more for the same detector";
  }
  // The detectors for which `hasIt` is true, as text.
  std::string Detectors(const std::function<bool(const Detector&)>& hasIt,
                        const std::string& what) const {
    const auto& all = plate_.Detectors();
    const auto count = static_cast<std::size_t>(std::count_if(all.begin(), all.end(), hasIt));
    if (count == 0) return "";
    return std::to_string(count) + " of " + Counted(all.size(), "detector") + what;
  }

 private:
  const RunReader& plate_;
  std::size_t inUse_ = 0;
  std::size_t named_ = 0;
  std::size_t standards_ = 0;
  std::set<std::string> samples_;
  std::map<std::string, std::size_t> tasks_;
  std::map<std::tuple<std::string, std::string, std::string>, std::size_t> replicates_;
};

std::string settingOf(const RunReader& plate, std::string_view name) {
  for (const SettingValue& setting : plate.Settings()) {
    if (setting.name == name) return ValueText(setting.value);
  }
  return "";
}

std::string volumeOf(const RunReader& plate) {
  const std::string volume = settingOf(plate, "sample-volume");
  return volume.empty() || volume == "0" ? "" : volume + " µl";
}

std::string programOf(const RunReader& plate) {
  if (!plate.Program()) return "";
  return plate.Program()->text ? *plate.Program()->text
                               : Counted(plate.Program()->bytes.size(), "byte");
}

std::string timesOf(const RunReader& plate) {
  for (const BlockInfo& block : plate.Blocks()) {
    if (block.tag != kRawReadings || !block.start) continue;
    return *block.start + (block.end ? " to " + *block.end : "");
  }
  return "";
}

std::string meltingOf(const RunReader& plate) {
  const auto axis = plate.Axis();
  const auto count = std::count_if(axis.begin(), axis.end(), [](const FramePosition& position) {
    return position.stage == Stage::kMelting;
  });
  return count == 0 ? "" : Counted(static_cast<std::size_t>(count), "reading") + " of a well";
}

class Checklist {
 public:
  // Adds an item with what the plate says about it. If `value` is empty, the plate says nothing.
  void Add(const char* section, const char* item, bool isEssential, const std::string& value) {
    list_.push_back({{"section", section},
                     {"item", item},
                     {"essential", isEssential},
                     {"state", value.empty() ? "missing" : "given"},
                     {"value", value}});
  }
  // Adds an item that no plate document holds, so that the reader knows to look for it elsewhere.
  void AddOutside(const char* section, const char* item, bool isEssential) {
    list_.push_back({{"section", section},
                     {"item", item},
                     {"essential", isEssential},
                     {"state", "outside"},
                     {"value", ""}});
  }
  ordered_json Take() { return std::move(list_); }

 private:
  ordered_json list_ = ordered_json::array();
};

void addDesign(Checklist& list, const Tally& tally) {
  list.Add("Samples", "Description of each sample", true, tally.Samples());
  list.Add("Samples", "Replicates of each sample", true, tally.Replicates());
  list.AddOutside("Samples", "Source, handling and storage of the material", true);
  list.AddOutside("Nucleic acid", "Extraction, quantity and quality", true);
  list.AddOutside("Nucleic acid", "Reverse transcription: enzyme, priming, temperature, time",
                  true);
}

void addTargets(Checklist& list, const Tally& tally) {
  const auto has = [](std::string Detector::*member) {
    return [member](const Detector& detector) { return !(detector.*member).empty(); };
  };
  list.Add("Targets", "Names of the targets", true, tally.Detectors(has(&Detector::name), ""));
  list.Add("Targets", "Reporter dye", true,
           tally.Detectors(has(&Detector::reporterDye), " with a reporter"));
  list.Add("Targets", "Quencher, where there is a probe", false,
           tally.Detectors(has(&Detector::quencherDye), " with a quencher"));
  list.Add("Targets", "Description of the assay, such as an accession number", true,
           tally.Detectors(has(&Detector::description), " with a description"));
  list.AddOutside("Targets", "Sequences of primers and probe, or their provider's number", true);
  list.AddOutside("Targets", "Specificity: location, splice variants, in silico search", true);
}

}  // namespace

ordered_json MiqeJson(const RunReader& plate) {
  const Tally tally(plate);
  Checklist list;
  addDesign(list, tally);
  addTargets(list, tally);
  list.Add("Protocol", "Thermal cycling program", true, programOf(plate));
  list.Add("Protocol", "Volume of the reaction", true, volumeOf(plate));
  list.Add("Protocol", "Start and end of the run", false, timesOf(plate));
  list.Add("Protocol", "Calibration of the dyes", false,
           plate.Calibration().pureDyes
               ? Counted(plate.Calibration().pureDyes->entries.size(), "pure dye")
               : "");
  list.AddOutside("Protocol", "Concentrations of primers, probe, salts and enzyme", true);
  list.AddOutside("Protocol", "Instrument, plate and seal, with their makers", true);
  list.Add("Validation", "No-template controls", true, tally.Wells("NTC"));
  list.Add("Validation", "Dilution series of a standard", true, tally.Standards());
  list.Add("Validation", "Melting curve, where the dye binds to any product", true,
           meltingOf(plate));
  return list.Take();
}

}  // namespace vex2::lab
