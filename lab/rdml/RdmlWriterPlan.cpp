#include "lab/rdml/RdmlWriterPlan.h"

#include <algorithm>
#include <set>
#include <tuple>

#include "lab/Text.h"
#include "lab/model/PlateLayout.h"
#include "lab/rdml/ProgramSteps.h"
#include "lab/rdml/RdmlSettings.h"
#include "lab/rdml/RdmlTerms.h"
#include "lab/rdml/RdmlWriter.h"
#include "lab/rdml/XmlWriter.h"
#include "vex2/format/HeaderLayout.h"

namespace vex2::lab::rdml {

namespace {

constexpr std::string_view kPlainAssay = Assay::kAbsolute.code;

// Makes identifiers that are not empty and are all different.
class Identifiers {
 public:
  std::string Take(const std::string& wanted, std::string_view otherwise) {
    const std::string name = wanted.empty() ? std::string(otherwise) : wanted;
    std::string id = name;
    for (int turn = 2; !taken_.insert(id).second; ++turn) {
      id = name + " (" + std::to_string(turn) + ")";
    }
    return id;
  }

 private:
  std::set<std::string> taken_;
};

class Planner {
 public:
  Planner(Losses& losses, const CqAnalysis* analysis) : losses_(losses) {
    if (analysis == nullptr) return;
    cqMethod_ = CqMethodName(*analysis);
    for (const CqResult& result : analysis->wells) {
      const AnalysedWell& well = result.curve.well;
      cycles_.emplace(CurveKey(well.plate, well.number, well.detector), &result);
    }
  }

  void Add(const PlateSource& source) {
    source_ = &source;
    run_ = Run();
    run_.id = runs_.Take(clean(source.name, "names of plates"), "run");
    run_.source = &source;
    run_.cqMethod = cqMethod_;
    kept_ = KeptSettings();
    for (const std::string& dye : source.dyes) kept_.dyes.push_back(dyeOf(dye));
    for (const Detector& detector : source.detectors) addDetector(detector);
    addDocumentation();
    std::set<std::uint16_t> wells;
    for (const Well& well : source.plate.wells) wells.insert(well.number);
    if (source.raw != nullptr) {
      for (const std::uint16_t well : source.raw->GetWellNumbers()) wells.insert(well);
    }
    for (const std::uint16_t well : wells) addWell(well);
    listReadings();
    plan_.runs.push_back(std::move(run_));
  }

  Plan Take() { return std::move(plan_); }

 private:
  // Counts readings of one kind, and keeps the first of them as an example.
  struct Tally {
    std::uint64_t count = 0;
    std::uint16_t well = 0;
    RunReading first;

    void Count(std::uint16_t number, const RunReading& reading) {
      if (count++ > 0) return;
      well = number;
      first = reading;
    }
  };

  using TargetKey = std::array<std::string, 3>;  ///< name, dye and description
  /// Plate, well and detector.
  using CurveKey = std::tuple<std::string, std::uint16_t, std::string>;

  const CqResult* cyclesOf(const Well& well, const std::string& detector) const {
    const auto found = cycles_.find(CurveKey(source_->name, well.number, detector));
    return found != cycles_.end() ? found->second : nullptr;
  }

  std::string clean(const std::string& text, std::string_view what) {
    std::string cleaned = XmlText(text);
    if (cleaned != text) losses_.AddChanged("control characters in " + std::string(what), cleaned);
    return cleaned;
  }

  void addText(std::string_view id, const std::string& text) {
    if (text.empty() && id != kSettings) return;
    const std::string unique = documents_.Take(std::string(id), id);
    plan_.documentation.push_back({unique, clean(text, id)});
    run_.documentation.push_back(unique);
  }

  void addDocumentation() {
    for (const SettingValue& setting : source_->settings) {
      if (ValueText(setting.value).find_first_of("\r\n") != std::string::npos) {
        losses_.Add("settings of several lines", setting.name);
      } else {
        kept_.settings.push_back(setting);
      }
    }
    if (source_->assay != kPlainAssay) kept_.assay = source_->assay;
    kept_.hasSetup = source_->hasSetup;
    addText(kSettings, kept_.Text());
    addText(kLog, source_->log);
    if (!source_->program) return;
    if (!source_->program->text) {
      losses_.Add("bytes of thermal cycling programs that are no text",
                  Counted(source_->program->bytes.size(), "byte"), source_->program->bytes.size());
      return;
    }
    const std::string& text = *source_->program->text;
    if (text.empty()) losses_.Add("thermal cycling programs without content", source_->name);
    if (!addConditions(text)) addText(kProgram, text);
  }

  // Adds the program of a plate, unless another plate of the study has the same one. Returns false
  // if the text does not consist of steps, or if another program has the same name.
  bool addConditions(const std::string& text) {
    const auto program = ParseProgram(text);
    if (!program) return false;
    const auto [entry, isNew] = conditions_.emplace(program->name, plan_.conditions.size());
    if (isNew) plan_.conditions.push_back(text);
    if (plan_.conditions[entry->second] != text) return false;
    run_.conditions = entry->second;
    return true;
  }

  std::string dyeOf(const std::string& name) {
    const auto [entry, isNew] = dyeIds_.emplace(name, std::string());
    if (isNew) {
      entry->second = dyes_.Take(clean(name, "names of dyes"), "unknown dye");
      plan_.dyes.push_back({entry->second, name.empty() ? std::string(kNoDye) : std::string()});
    }
    return entry->second;
  }

  void addDetector(const Detector& detector) {
    if (detector.name.empty()) {
      losses_.Add("detectors without a name", "reporter '" + detector.reporterDye + "'");
      return;
    }
    if (!detectors_.emplace(std::pair(source_, detector.name), 0).second) {
      losses_.Add("detectors whose name another one has", detector.name);
      return;
    }
    const std::size_t target =
        targetOf({detector.name, detector.reporterDye, detector.description});
    detectors_[{source_, detector.name}] = target;
    kept_.targets.push_back(plan_.targets[target].id);
    listDye(detector.reporterDye);
  }

  std::size_t targetOf(const TargetKey& key) {
    const auto [entry, isNew] = targets_.emplace(key, plan_.targets.size());
    if (!isNew) return entry->second;
    const auto& [name, dye, description] = key;
    TargetEntry target;
    target.id = targetIds_.Take(clean(name, "names of detectors"), "unknown target");
    if (target.id != name) target.detector = name;
    target.description = clean(description, "descriptions of detectors");
    target.dye = dyeOf(dye);
    target.isReference = !name.empty() && settingOf("endogenous-control") == name;
    plan_.targets.push_back(std::move(target));
    return entry->second;
  }

  void listDye(const std::string& dye) {
    const auto& known = source_->dyes;
    if (dye.empty() || std::find(known.begin(), known.end(), dye) != known.end()) return;
    if (!addedDyes_.emplace(source_, dye).second) return;
    losses_.AddChanged("dyes that the list of required dyes lacks, added to it", dye);
  }

  // The target of a well. If the list of detectors lacks it, it is added with the well's reporter.
  std::size_t targetOf(const Target& target) {
    const auto found = detectors_.find({source_, target.detector});
    if (found != detectors_.end()) return found->second;
    const std::size_t index = targetOf(TargetKey{target.detector, target.reporter, ""});
    losses_.AddChanged("targets that the list of detectors lacks, added to it", target.detector);
    detectors_.emplace(std::pair(source_, target.detector), index);
    listDye(target.reporter);
    return index;
  }

  // The index of a target that stands for a channel. It is for wells that have readings of the
  // channel but no target.
  std::size_t placeholderOf(const std::string& channel) {
    const auto [entry, isNew] = placeholders_.emplace(channel, plan_.targets.size());
    if (!isNew) return entry->second;
    TargetEntry target;
    target.id = targetIds_.Take(clean(channel, "names of channels"), "readings");
    target.isDetector = false;
    target.dye = dyeOf(channel);
    plan_.targets.push_back(std::move(target));
    return entry->second;
  }

  std::string settingOf(std::string_view name) const {
    for (const SettingValue& setting : source_->settings) {
      if (setting.name == name) return ValueText(setting.value);
    }
    return {};
  }

  void addWell(std::uint16_t number) {
    const Well* well = source_->plate.Find(number);
    Well empty;
    empty.number = number;
    empty.name = WellName(number, source_->plate.columns);
    React react;
    react.well = number;
    react.position = source_->FindPosition(number);
    const bool hasReadings = react.position && source_->Log() != nullptr;
    if (well == nullptr) well = &empty;
    if (number == 0) {
      losses_.Add("wells without a number", "well 0");
      return;
    }
    std::map<std::size_t, SampleUse> uses;
    addTargets(*well, react, uses);
    if (hasReadings) assignChannels(*well, react);
    if (well->sample.empty() && react.data.empty()) return;
    react.sample = sampleOf(*well, uses);
    run_.reacts.push_back(std::move(react));
  }

  void addTargets(const Well& well, React& react, std::map<std::size_t, SampleUse>& uses) {
    for (const Target& target : well.targets) {
      const std::size_t index = targetOf(target);
      if (!uses.emplace(index, SampleUse{target.task, target.quantity}).second) {
        losses_.Add("detectors that a well has twice", well.name + " " + target.detector);
        continue;
      }
      react.data.push_back(
          {.target = index, .channel = std::nullopt, .cq = cyclesOf(well, target.detector)});
    }
  }

  // Assigns each channel to the target whose reporter has the channel's name. If the run has only
  // one channel, without a name, it belongs to the first target.
  void assignChannels(const Well& well, React& react) {
    const std::vector<std::string> channels = source_->Channels();
    for (std::size_t channel = 0; channel < channels.size(); ++channel) {
      const bool hasName = !channels[channel].empty();
      const auto found = std::find_if(react.data.begin(), react.data.end(), [&](const Data& data) {
        if (data.channel) return false;
        return !hasName || plan_.targets[data.target].dye == dyeOf(channels[channel]);
      });
      if (found != react.data.end()) {
        found->channel = channel;
      } else {
        // If wells name no detector, an analysis names the curves by their channels.
        react.data.push_back(
            {placeholderOf(channels[channel]), channel, cyclesOf(well, channels[channel])});
      }
    }
    if (channels.size() == 1 && channels[0].empty() && react.data.size() > 1) {
      losses_.AddChanged("wells of several targets and one channel, written to the first",
                         well.name);
    }
  }

  // The index of the first sample with the name of the well's sample whose uses do not contradict
  // `uses`: a target in both must have the same use. Adds a sample if there is none.
  std::size_t sampleOf(const Well& well, const std::map<std::size_t, SampleUse>& uses) {
    const std::string key = well.sample.empty() ? "\n" + well.name : well.sample;
    for (const std::size_t index : samples_[key]) {
      Sample& sample = plan_.samples[index];
      const bool agrees = std::all_of(uses.begin(), uses.end(), [&](const auto& use) {
        const auto known = sample.uses.find(use.first);
        return known == sample.uses.end() || known->second == use.second;
      });
      if (!agrees) continue;
      sample.uses.insert(uses.begin(), uses.end());
      return index;
    }
    Sample sample;
    const std::string name = clean(well.sample, "names of samples");
    sample.id = sampleIds_.Take(name, well.name);
    if (sample.id != well.sample) sample.name = name;
    sample.uses = uses;
    sample.isCalibrator = !well.sample.empty() && settingOf("calibrator") == well.sample;
    samples_[key].push_back(plan_.samples.size());
    plan_.samples.push_back(std::move(sample));
    return plan_.samples.size() - 1;
  }

  // Lists what RDML cannot hold of the readings: those whose meaning is not known, records without
  // a reading, repeated readings, the times, and the order.
  void listReadings() {
    if (source_->raw == nullptr) return;
    const auto wells = source_->raw->GetWellNumbers();
    std::uint64_t known = 0;
    std::set<std::uint16_t> seen;
    Tally repeated;
    Tally timed;
    Tally unordered;
    Tally empty;
    for (std::size_t position = 0; position < wells.size(); ++position) {
      if (!seen.insert(wells[position]).second) continue;
      filter_.Begin();
      std::pair<bool, std::uint16_t> last;
      ForEachReading(*source_, position, [&](const SourceReading& one) {
        ++known;
        const std::pair key(one.reading.melting, one.reading.cycle);
        if (key <= last) unordered.Count(wells[position], one.reading);
        last = key;
        if (isEmpty(one.reading)) return empty.Count(wells[position], one.reading);
        if (!filter_.Takes(one.reading)) repeated.Count(wells[position], one.reading);
        if (one.reading.time != 0) timed.Count(wells[position], one.reading);
      });
    }
    losses_.AddChanged("readings in another order than that of their cycles", exampleOf(unordered),
                       unordered.count);
    losses_.Add("records without a reading", exampleOf(empty), empty.count);
    losses_.Add("readings of a cycle or temperature that the curve has already",
                exampleOf(repeated), repeated.count);
    losses_.Add("times of readings",
                exampleOf(timed) + ": " + ShortestQuotient(timed.first.time, kTimeSteps) + " s",
                timed.count);
    const auto all = static_cast<std::uint64_t>(source_->raw->GetFrameCount()) * wells.size();
    losses_.Add(
        "records of readings whose meaning is not known",
        source_->Log() == nullptr ? "vex did not record them" : "another program wrote the record",
        all - known);
  }

  bool isEmpty(const RunReading& reading) const {
    for (std::size_t channel = 0; channel < source_->Channels().size(); ++channel) {
      if (!reading.IsMissing(channel)) return false;
    }
    return true;
  }

  std::string exampleOf(const Tally& tally) const {
    return ReadingName(*source_, tally.well, tally.first);
  }

  Losses& losses_;
  std::string_view cqMethod_;
  KeptSettings kept_;
  std::set<std::pair<const PlateSource*, std::string>> addedDyes_;
  std::map<CurveKey, const CqResult*> cycles_;
  const PlateSource* source_ = nullptr;
  CurveFilter filter_;
  Run run_;
  Plan plan_;
  Identifiers runs_;
  Identifiers documents_;
  Identifiers dyes_;
  Identifiers targetIds_;
  Identifiers sampleIds_;
  std::map<std::string, std::size_t> conditions_;
  std::map<std::string, std::string> dyeIds_;
  std::map<TargetKey, std::size_t> targets_;
  std::map<std::pair<const PlateSource*, std::string>, std::size_t> detectors_;
  std::map<std::string, std::size_t> placeholders_;
  std::map<std::string, std::vector<std::size_t>> samples_;
};

}  // namespace

Plan PlanOf(const std::vector<const PlateSource*>& sources, Losses& losses,
            const CqAnalysis* analysis) {
  Planner planner(losses, analysis);
  for (const PlateSource* source : sources) planner.Add(*source);
  return planner.Take();
}

}  // namespace vex2::lab::rdml
