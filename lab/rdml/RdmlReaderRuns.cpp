#include "lab/rdml/RdmlReaderRuns.h"

#include <algorithm>
#include <cmath>

#include "lab/Error.h"
#include "lab/Text.h"
#include "lab/exchange/PlateFit.h"
#include "lab/exchange/StorableTexts.h"
#include "lab/model/RunLog.h"
#include "lab/rdml/RdmlSettings.h"
#include "lab/rdml/RdmlTerms.h"

namespace vex2::lab::rdml {

namespace {

constexpr std::string_view kPlainTask = "UNKN";
constexpr std::string_view kReferenceSetting = "endogenous-control";
constexpr std::string_view kCalibratorSetting = "calibrator";

// Whether an identifier is `base`, or `base` followed by a number in brackets.
bool isNamed(std::string_view id, std::string_view base) {
  return id.starts_with(base) && (id.size() == base.size() || id.substr(base.size(), 2) == " (");
}

bool hasReadings(const ReadData& data) {
  return !data.amplification.readings.empty() || !data.melting.readings.empty();
}

template <typename Value>
const Value* valueFor(const ByTarget<Value>& values, const std::string& target) {
  auto found = values.find(target);
  if (found == values.end()) found = values.find("");
  return found != values.end() ? &found->second : nullptr;
}

// The date and time with its zone; fractions of a second are cut off.
std::optional<std::string> startOf(const std::string& date, Losses& losses) {
  if (date.empty()) return std::nullopt;
  std::string whole = date;
  if (const std::size_t point = whole.find('.'); point != std::string::npos) {
    whole.erase(point, whole.find_first_not_of("0123456789", point + 1) - point);
  }
  if (!RunStart::Parse(whole)) {
    losses.Add("starts of runs without a time zone, or outside 2000 to 2099", "'" + date + "'");
    return std::nullopt;
  }
  if (whole != date) losses.AddChanged("starts of runs with parts of a second", "'" + date + "'");
  return whole;
}

/// The names in the file, converted to names in its documents.
struct Names {
  explicit Names(Losses& losses)
      : samples("names of samples", losses),
        targets("names of targets", losses),
        dyes("names of dyes", losses) {}

  StorableNames samples;
  StorableNames targets;
  StorableNames dyes;
};

/// Converts one run of the file to a run for a document.
class Converter {
 public:
  Converter(const Content& content, const ReadRun& run, std::string file, Names& names,
            Losses& losses)
      : content_(content), run_(run), file_(std::move(file)), names_(names), losses_(losses) {}

  ExchangedRun Convert() {
    result_.name = run_.id;
    result_.plan.comment = text(run_.description, "descriptions of runs");
    result_.plan.started = startOf(run_.date, losses_);
    fitPlate();
    takeDocumentation();
    takeDetectors();
    takeDyes();
    takeProgram();
    chooseChannels();
    for (const ReadReact& react : run_.reacts) takeReact(react);
    takeCalibrator();
    return std::move(result_);
  }

 private:
  std::string text(const std::string& given, const char* what) {
    std::string stored = StorableText(given);
    if (stored != given) losses_.AddChanged(what, "'" + given + "' is '" + stored + "'");
    return stored;
  }

  void fitPlate() {
    std::uint32_t most = 0;
    for (const ReadReact& react : run_.reacts) most = std::max(most, react.number);
    plate_ = PlateFit::Find(run_.rows, run_.columns, most);
    if (!plate_) {
      throw Error(ErrorCode::kDocument, file_,
                  "line " + std::to_string(run_.line) + ", element run: a plate of " +
                      std::to_string(run_.rows) + " rows and " + std::to_string(run_.columns) +
                      " columns does not fit into a document, which has up to 384 wells");
    }
    if (!plate_->IsSame()) losses_.AddChanged("plate formats", plate_->Text());
    result_.plan.plate.rows = plate_->Plate().rows;
    result_.plan.plate.columns = plate_->Plate().columns;
  }

  const ReadTarget* targetOf(const std::string& id) const {
    const auto found = content_.targets.find(id);
    return found != content_.targets.end() ? &found->second : nullptr;
  }

  std::string dyeName(const std::string& id) {
    if (id.empty() || content_.unnamedDyes.contains(id)) return {};
    return names_.dyes.Take(id);
  }

  std::string targetName(const std::string& id) {
    const ReadTarget* target = targetOf(id);
    return names_.targets.Take(target != nullptr && !target->name.empty() ? target->name : id);
  }

  void takeDetectors() {
    std::vector<std::string> references;
    for (const std::string& id : content_.targetOrder) {
      const ReadTarget& target = content_.targets.at(id);
      if (!target.isDetector || !isOfRun(id)) continue;
      Detector& detector = result_.plan.detectors.emplace_back();
      detector.name = targetName(id);
      detector.reporterDye = dyeName(target.dye);
      detector.description = text(target.description, "descriptions of targets");
      if (target.isReference) references.push_back(result_.plan.detectors.back().name);
    }
    if (references.size() == 1) {
      if (!kept_) {
        result_.plan.settings.push_back({std::string(kReferenceSetting), references[0]});
      }
    } else if (!references.empty() && !kept_) {
      losses_.Add("reference targets, of which a document holds one", references[0],
                  references.size());
    }
  }

  // Whether the document of this run gets the target. If the file has several runs, a document gets
  // the targets of its run and those of no run. If this library exported the file, the file says
  // which targets are in the list of detectors.
  bool isOfRun(const std::string& target) {
    if (content_.runs.size() < 2 && !kept_) return true;
    const auto names = [&](const ReadRun& run) {
      for (const ReadReact& react : run.reacts) {
        for (const ReadData& data : react.data) {
          if (data.target == target) return true;
        }
      }
      return false;
    };
    if (kept_) {
      const auto& listed = kept_->targets;
      return std::find(listed.begin(), listed.end(), target) != listed.end() || names(run_);
    }
    return names(run_) || std::none_of(content_.runs.begin(), content_.runs.end(), names);
  }

  void takeDyes() {
    if (kept_) {
      for (const std::string& id : kept_->dyes) result_.plan.requiredDyes.push_back(dyeName(id));
      return;
    }
    std::set<std::string> used;
    for (const std::string& id : content_.targetOrder) {
      if (isOfRun(id)) used.insert(content_.targets.at(id).dye);
    }
    for (const std::string& id : content_.dyes) {
      const std::string name = dyeName(id);
      const bool isOther = content_.runs.size() > 1 && !used.contains(id);
      if (!name.empty() && !isOther) result_.plan.requiredDyes.push_back(name);
    }
  }

  void takeDocumentation() {
    for (const std::string& id : run_.documentation) {
      const auto found = content_.documentation.find(id);
      if (found == content_.documentation.end()) continue;
      const std::string& text = found->second;
      if (isNamed(id, kSettings)) {
        takeSettings(text);
      } else if (isNamed(id, kLog)) {
        result_.log = ToLatin1(text);
        if (!result_.log) losses_.Add("logs of runs", text);
        if (result_.log) log_ = RunLog::Find(*result_.log);
      } else if (isNamed(id, kProgram)) {
        result_.plan.program.assign(text.begin(), text.end());
      }
    }
  }

  // Takes the settings of a file that this library exported. They are complete, so values for other
  // programs, which are derived from them, are not read.
  void takeSettings(std::string_view lines) {
    kept_ = KeptSettings::Parse(lines, losses_);
    result_.plan.settings = kept_->settings;
    result_.plan.assay = kept_->assay;
    result_.hasSettings = kept_->HasSettings();
    result_.hasSetup = kept_->hasSetup;
  }

  void takeProgram() {
    const auto found = content_.conditions.find(run_.conditions);
    if (found == content_.conditions.end()) return;
    const std::string text = ProgramText(found->second);
    result_.plan.program.assign(text.begin(), text.end());
  }

  // Chooses the channels. A well with one reading in each frame needs no channel names. Otherwise
  // the channels have the names of the dyes, and a second target with the same dye gets a separate
  // channel.
  void chooseChannels() {
    std::vector<std::string> needed;
    std::size_t most = 0;
    for (const ReadReact& react : run_.reacts) {
      std::size_t count = 0;
      for (const std::string& name : channelNames(react)) {
        if (name.empty()) continue;
        ++count;
        if (std::find(needed.begin(), needed.end(), name) == needed.end()) needed.push_back(name);
      }
      most = std::max(most, count);
    }
    if (log_ && takeLoggedChannels(needed, most)) return;
    log_.reset();
    if (most < 2) return;
    for (std::size_t i = kMostChannels; i < needed.size(); ++i) {
      losses_.Add("channels, of which a document holds 16", needed[i]);
    }
    if (needed.size() > kMostChannels) needed.resize(kMostChannels);
    result_.plan.channels = std::move(needed);
  }

  // Takes the channels from the log of the exported run, unless this run has other channels.
  // Returns whether it took them.
  bool takeLoggedChannels(const std::vector<std::string>& needed, std::size_t most) {
    std::vector<std::string> channels;
    for (const std::string& channel : log_->channels) channels.push_back(ToUtf8(channel));
    const bool areThere = std::all_of(needed.begin(), needed.end(), [&](const std::string& name) {
      return std::find(channels.begin(), channels.end(), name) != channels.end();
    });
    if (channels.empty() ? most > 1 : !areThere) return false;
    result_.plan.channels = std::move(channels);
    result_.plan.scale = log_->scale;
    return true;
  }

  // The channel name for each data element of the well; empty for an element without readings.
  std::vector<std::string> channelNames(const ReadReact& react) {
    std::map<std::string, int> turns;
    std::vector<std::string> names;
    for (const ReadData& data : react.data) {
      std::string& name = names.emplace_back();
      if (!hasReadings(data)) continue;
      const ReadTarget* target = targetOf(data.target);
      name = target != nullptr ? dyeName(target->dye) : std::string();
      if (name.empty()) name = "unnamed";
      // The log of a document stores the names in one line, separated by commas.
      std::replace_if(
          name.begin(), name.end(), [](char c) { return c == ',' || c == '\n' || c == '\r'; }, ' ');
      const int turn = ++turns[name];
      if (turn > 1) name += " (" + std::to_string(turn) + ")";
    }
    return names;
  }

  Well* wellOf(const ReadReact& react) {
    const auto number = plate_->WellOf(react.number);
    if (!number) {
      throw Error(ErrorCode::kDocument, file_,
                  "element react: well " + std::to_string(react.number) +
                      " is not on the plate of run '" + run_.id + "'");
    }
    std::vector<Well>& wells = result_.plan.plate.wells;
    const auto found = std::find_if(wells.begin(), wells.end(),
                                    [&](const Well& well) { return well.number == *number; });
    if (found != wells.end()) {
      losses_.Add("wells that are in a run twice", "react " + std::to_string(react.number));
      return nullptr;
    }
    Well& well = wells.emplace_back();
    well.number = *number;
    well.name = plate_->Plate().NameOf(*number);
    return &well;
  }

  void takeReact(const ReadReact& react) {
    Well* well = wellOf(react);
    if (well == nullptr) return;
    const auto found = content_.samples.find(react.sample);
    static const ReadSample kNone;
    const ReadSample& sample = found != content_.samples.end() ? found->second : kNone;
    const std::string name = sample.name.value_or(react.sample);
    if (!name.empty()) well->sample = names_.samples.Take(name);
    if (sample.isCalibrator) calibrators_.insert(well->sample);
    const std::vector<std::string> channels = channelNames(react);
    for (std::size_t i = 0; i < react.data.size(); ++i) {
      takeTarget(*well, sample, react.data[i].target);
      if (!channels[i].empty()) takeCurves(well->number, channels[i], react.data[i]);
    }
  }

  void takeTarget(Well& well, const ReadSample& sample, const std::string& id) {
    const ReadTarget* target = targetOf(id);
    if (id.empty() || (target != nullptr && !target->isDetector)) return;
    Target& added = well.targets.emplace_back();
    added.detector = targetName(id);
    if (target != nullptr) added.reporter = dyeName(target->dye);
    added.task = kPlainTask;
    if (const std::string* type = valueFor(sample.types, id)) {
      added.task = TaskOf(*type).value_or(kPlainTask);
    }
    if (const auto task = sample.tasks.find(id); task != sample.tasks.end()) {
      added.task = task->second;
    }
    if (const float* quantity = valueFor(sample.quantities, id)) added.quantity = *quantity;
  }

  void takeCurves(std::uint16_t well, const std::string& channel, const ReadData& data) {
    const auto& channels = result_.plan.channels;
    const auto found = std::find(channels.begin(), channels.end(), channel);
    if (!channels.empty() && found == channels.end()) {
      losses_.Add("readings of channels beyond the 16th", channel,
                  data.amplification.readings.size() + data.melting.readings.size());
      return;
    }
    const auto index = channels.empty() ? 0 : static_cast<std::size_t>(found - channels.begin());
    for (const Points* points : {&data.amplification, &data.melting}) {
      if (points->readings.empty()) continue;
      result_.curves.push_back({.well = well,
                                .channel = index,
                                .melting = points == &data.melting,
                                .cycles = points->cycles,
                                .temperatures = points->temperatures,
                                .readings = points->readings,
                                .times = {}});
    }
  }

  void takeCalibrator() {
    if (kept_ || calibrators_.empty()) return;
    if (calibrators_.size() > 1) {
      losses_.Add("calibrator samples, of which a document holds one", *calibrators_.begin(),
                  calibrators_.size());
      return;
    }
    result_.plan.settings.push_back({std::string(kCalibratorSetting), *calibrators_.begin()});
  }

  const Content& content_;
  const ReadRun& run_;
  std::string file_;
  Names& names_;
  Losses& losses_;
  ExchangedRun result_;
  std::optional<PlateFit> plate_;
  std::optional<RunLog> log_;
  std::set<std::string> calibrators_;
  std::optional<KeptSettings> kept_;  ///< the settings of the exported document
};

// Lists what is in the file, but in none of its runs.
void listUnused(const Content& content, Losses& losses) {
  std::set<std::string> used;
  for (const ReadRun& run : content.runs) {
    for (const ReadReact& react : run.reacts) used.insert(react.sample);
  }
  for (const auto& [id, sample] : content.samples) {
    if (!used.contains(id)) losses.Add("samples that are in no well", "'" + id + "'");
  }
  for (const auto& [id, text] : content.documentation) {
    if (isNamed(id, kSettings) || isNamed(id, kLog) || isNamed(id, kProgram)) continue;
    losses.Add("documentation", "'" + id + "': " + text);
  }
  used.clear();
  for (const ReadRun& run : content.runs) used.insert(run.conditions);
  for (const auto& [id, program] : content.conditions) {
    if (!used.contains(id)) losses.Add("thermal cycling conditions of no run", "'" + id + "'");
  }
}

}  // namespace

std::vector<ExchangedRun> RunsOf(const Content& content, const std::string& file, Losses& losses) {
  std::vector<ExchangedRun> runs;
  Names names(losses);
  for (const ReadRun& run : content.runs) {
    runs.push_back(Converter(content, run, file, names, losses).Convert());
  }
  listUnused(content, losses);
  return runs;
}

}  // namespace vex2::lab::rdml
