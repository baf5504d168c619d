#include <algorithm>
#include <map>
#include <set>

#include "lab/Text.h"
#include "lab/model/PlateLayout.h"
#include "lab/rdml/Rdes.h"
#include "lab/rdml/RdmlTerms.h"
#include "lab/rdml/RdmlWriter.h"
#include "lab/rdml/RdmlWriterPlan.h"

namespace vex2::lab {

namespace {

// The text without tabs and line ends, which a cell cannot hold.
std::string cellOf(const std::string& text, Losses& losses) {
  std::string cell = text;
  std::replace_if(
      cell.begin(), cell.end(), [](char c) { return c == '\t' || c == '\n' || c == '\r'; }, ' ');
  if (cell != text) losses.AddChanged("tabs and line ends in names", "'" + cell + "'");
  return cell;
}

/// Writes the table of one stage.
class RdesWriter {
 public:
  RdesWriter(std::ostream& out, const PlateSource& source, bool melting, Losses& losses,
             const CqAnalysis* analysis)
      : out_(out), source_(source), melting_(melting), losses_(losses), plan_(planOf(analysis)) {}

  void Write() {
    findColumns();
    out_ << "Well\tSample\tSample Type\tTarget\tTarget Type\tDye\t" << (melting_ ? "Tm" : "Cq");
    for (const std::uint16_t column : columns_) {
      out_ << '\t'
           << (melting_ ? ShortestQuotient(column, kTemperatureSteps) : std::to_string(column));
    }
    out_ << '\n';
    for (const rdml::React& react : plan_.runs.front().reacts) {
      for (const rdml::Data& data : react.data) {
        if (data.channel) writeRow(react, data);
      }
    }
  }

 private:
  // Does not list the losses of the plan, since they are listed once for both tables of a plate.
  rdml::Plan planOf(const CqAnalysis* analysis) const {
    Losses ignored;
    return rdml::PlanOf({&source_}, ignored, melting_ ? nullptr : analysis);
  }

  std::uint16_t columnOf(const RunReading& reading) const {
    return melting_ ? reading.temperature : reading.cycle;
  }

  template <typename Take>
  void forEachReading(const rdml::React& react, const rdml::Data& data, const Take& take) {
    filter_.Begin();
    ForEachReading(source_, *react.position, [&](const SourceReading& one) {
      if (one.reading.melting != melting_ || one.reading.IsMissing(*data.channel)) return;
      if (filter_.Takes(one.reading)) take(one.reading);
    });
  }

  void findColumns() {
    std::set<std::uint16_t> columns;
    for (const rdml::React& react : plan_.runs.front().reacts) {
      for (const rdml::Data& data : react.data) {
        if (!data.channel) continue;
        forEachReading(react, data,
                       [&](const RunReading& reading) { columns.insert(columnOf(reading)); });
      }
    }
    columns_.assign(columns.begin(), columns.end());
  }

  // A sample has the same type for all its targets.
  std::string typeOf(const rdml::Sample& sample) {
    std::string type = "unkn";
    bool isFirst = true;
    for (const auto& [target, use] : sample.uses) {
      const std::string own(rdml::TypeOf(use.task).value_or("unkn"));
      if (isFirst) type = own;
      isFirst = false;
      if (own != type) {
        losses_.AddChanged("sample types that differ by targets",
                           sample.id + ": " + own + " is " + type);
      }
    }
    return type;
  }

  static std::string cqOf(const rdml::Data& data) {
    if (data.cq == nullptr) return {};
    if (!data.cq->cq) return std::string(rdml::kNoCq);
    return ValueText(Value(static_cast<float>(*data.cq->cq)));
  }

  void writeRow(const rdml::React& react, const rdml::Data& data) {
    const rdml::Sample& sample = plan_.samples[react.sample];
    const rdml::TargetEntry& target = plan_.targets[data.target];
    out_ << WellName(react.well, source_.plate.columns) << '\t' << cellOf(sample.id, losses_)
         << '\t' << typeOf(sample) << '\t' << cellOf(target.id, losses_) << '\t'
         << (target.isReference ? "ref" : "toi") << '\t' << cellOf(target.dye, losses_) << '\t'
         << cqOf(data);
    std::map<std::uint16_t, std::string> readings;
    forEachReading(react, data, [&](const RunReading& reading) {
      readings.emplace(columnOf(reading),
                       source_.Log()->scale.MeasuredText(reading.values[*data.channel]));
    });
    for (const std::uint16_t column : columns_) {
      out_ << '\t';
      const auto found = readings.find(column);
      if (found != readings.end()) out_ << found->second;
    }
    out_ << '\n';
  }

  std::ostream& out_;
  const PlateSource& source_;
  bool melting_;
  Losses& losses_;
  rdml::Plan plan_;
  rdml::CurveFilter filter_;
  std::vector<std::uint16_t> columns_;
};

void listRest(const PlateSource& source, Losses& losses) {
  const rdml::Plan plan = rdml::PlanOf({&source}, losses);
  for (const rdml::Documentation& one : plan.documentation) {
    if (!one.text.empty()) losses.Add("settings, logs and programs", "'" + one.id + "'");
  }
  for (const std::string& program : plan.conditions) {
    losses.Add("settings, logs and programs", program);
  }
  if (!source.comment.empty()) losses.Add("comments", "'" + source.comment + "'");
  if (source.start) losses.Add("starts of runs", *source.start);
  for (const rdml::TargetEntry& target : plan.targets) {
    if (!target.description.empty()) losses.Add("descriptions of targets", target.description);
    if (!target.isDetector) {
      losses.AddChanged("readings without a target, called after their channel", target.id);
    }
  }
  for (const rdml::Sample& sample : plan.samples) {
    if (sample.name)
      losses.AddChanged("names of samples", "'" + *sample.name + "' is '" + sample.id + "'");
    for (const auto& [target, use] : sample.uses) {
      const auto type = rdml::TypeOf(use.task);
      if (use.quantity)
        losses.Add("quantities", sample.id + ": " + ValueText(Value(*use.quantity)));
      if (!type || rdml::TaskOf(*type) != use.task) {
        losses.AddChanged("tasks", "'" + use.task + "' of " + sample.id);
      }
    }
  }
  std::uint64_t temperatures = 0;
  for (const rdml::React& react : plan.runs.front().reacts) {
    for (const rdml::Data& data : react.data) {
      if (!data.channel) losses.Add("targets without readings", plan.targets[data.target].id);
    }
    if (react.data.empty()) losses.Add("samples without readings", plan.samples[react.sample].id);
    if (!react.position) continue;
    ForEachReading(source, *react.position, [&](const SourceReading& one) {
      if (!one.reading.melting && one.reading.temperature != 0) ++temperatures;
    });
  }
  losses.Add("temperatures of amplification readings", "", temperatures);
}

}  // namespace

void WriteRdes(std::ostream& out, const PlateSource& source, bool melting, bool listsRest,
               Losses& losses, const CqAnalysis* analysis) {
  if (listsRest) listRest(source, losses);
  RdesWriter(out, source, melting, losses, analysis).Write();
}

bool HasStage(const PlateSource& source, bool melting) {
  if (source.raw == nullptr) return false;
  const std::size_t wells = source.raw->GetWellCount();
  bool isThere = false;
  for (std::size_t position = 0; position < wells && !isThere; ++position) {
    ForEachReading(source, position, [&](const SourceReading& one) {
      isThere = isThere || one.reading.melting == melting;
    });
  }
  return isThere;
}

}  // namespace vex2::lab
