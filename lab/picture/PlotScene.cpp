#include "lab/picture/PlotScene.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <set>

#include "lab/Guarded.h"
#include "lab/Text.h"
#include "lab/analysis/Cq.h"
#include "lab/analysis/Melt.h"
#include "lab/analysis/NumberText.h"
#include "lab/picture/Colouring.h"
#include "lab/picture/WellSelection.h"

namespace vex2::lab {

namespace {

// The part of a logarithmic axis that is shown: readings below a thousandth of the largest are
// noise.
constexpr double kLogDepth = 1e-3;

/// Builds the scene of one kind from one run.
class Builder {
 public:
  Builder(const RunReader& run, const PlotOptions& options) : run_(run), options_(options) {
    if (run.IsStudy()) {
      for (const std::string& name : run.PlateNames()) addPlate(run.Plate(name), name);
    }
    if (plates_.empty()) addPlate(run, "");
  }

  Scene Build() {
    scene_.title = run_.Path().filename().string();
    switch (options_.kind) {
      case PlotKind::kAmplification:
        addAmplification();
        break;
      case PlotKind::kMelt:
        addMelting();
        break;
      case PlotKind::kSpectrum:
        addSpectra();
        break;
      case PlotKind::kPlate:
        addPlates();
        break;
      case PlotKind::kStandard:
        addStandards();
        break;
    }
    escapeTexts();
    return std::move(scene_);
  }

 private:
  // Names come from the document, and may contain control characters.
  void escapeTexts() {
    scene_.title = Escaped(scene_.title);
    for (std::string& name : scene_.legend.groups) name = Escaped(name);
    for (ScenePlate& plate : scene_.plates) plate.name = Escaped(plate.name);
  }

  struct PlateEntry {
    RunReader reader;
    std::string name;
    std::set<std::uint32_t> wells;  // empty for all wells
  };
  using WellKey = std::pair<std::string, std::uint16_t>;

  void addPlate(const RunReader& reader, const std::string& name) {
    plates_.push_back({reader, name, WellSelection(options_.wells).On(reader.Plate())});
  }

  bool isShown(const AnalysedWell& well) const {
    for (const PlateEntry& plate : plates_) {
      if (plate.name == well.plate) return plate.wells.empty() || plate.wells.contains(well.number);
    }
    return false;
  }

  ColourValue valueOf(const AnalysedWell& well, const std::optional<double>& cq) const {
    switch (options_.colourBy) {
      case ColourBy::kDetector:
        return {well.detector, {}};
      case ColourBy::kSample:
        return {well.sample, {}};
      case ColourBy::kTask:
        return {well.task, {}};
      case ColourBy::kCq:
        break;
    }
    return {"", cq};
  }

  // The results of the wells that are shown.
  std::vector<const CqResult*> shownOf(const CqAnalysis& analysis) const {
    std::vector<const CqResult*> shown;
    for (const CqResult& result : analysis.wells) {
      if (isShown(result.curve.well)) shown.push_back(&result);
    }
    return shown;
  }

  template <typename Elements, typename ValueOfElement>
  Colouring colouringOf(const Elements& elements, const ValueOfElement& value) {
    std::vector<ColourValue> values;
    for (const auto& element : elements) values.push_back(value(element));
    Colouring colouring(options_.colourBy, values);
    scene_.legend = colouring.Legend();
    return colouring;
  }

  [[noreturn]] void refuse(const std::string& why) const {
    throw Error(ErrorCode::kDocument, run_.Path().string(), why);
  }

  void fitAxes(double roomX, double roomY) {
    std::vector<double> x;
    std::vector<double> y;
    for (const SceneSeries& series : scene_.series) {
      for (const ScenePoint& point : series.points) {
        x.push_back(point.x);
        y.push_back(point.y);
      }
    }
    for (const SceneRule& rule : scene_.rules) y.push_back(rule.y);
    FitAxis(scene_.x, x, roomX);
    FitAxis(scene_.y, y, roomY);
  }

  void addAmplification() {
    const CqAnalysis analysis = AnalyseCq(run_);
    const auto shown = shownOf(analysis);
    const auto value = [&](const CqResult* result) {
      return valueOf(result->curve.well, result->cq);
    };
    const Colouring colouring = colouringOf(shown, value);
    const double least = leastOf(
        shown, [](const CqResult* result) -> auto& { return result->corrected; });
    for (const CqResult* result : shown) {
      addCurve(colouring.Of(value(result)), result->curve.cycles, result->corrected, least);
    }
    if (scene_.series.empty()) refuse("none of the wells has a curve");
    addThresholds(analysis, shown);
    scene_.x.label = "cycle";
    scene_.y.label = "fluorescence above baseline";
    scene_.y.isLog = options_.isLog;
    fitAxes(0, 0.05);
  }

  // The value below which nothing of a curve is drawn. `values` returns the values of a curve.
  template <typename Curves, typename Values>
  double leastOf(const Curves& curves, const Values& values) const {
    if (!options_.isLog) return -std::numeric_limits<double>::infinity();
    double most = 0;
    for (const auto& curve : curves) {
      for (const double value : values(curve)) {
        if (std::isfinite(value)) most = std::max(most, value);
      }
    }
    return most > 0 ? most * kLogDepth : std::numeric_limits<double>::min();
  }

  // Adds the parts of a curve that are not below `least`. On a logarithmic axis, a single reading
  // between two lower ones is noise and is left out.
  void addCurve(const Look& look, const std::vector<double>& x, const std::vector<double>& y,
                double least) {
    const auto isDrawn = [&](std::size_t i) {
      return i < y.size() && std::isfinite(y[i]) && y[i] >= least;
    };
    for (std::size_t i = 0; i < y.size(); ++i) {
      if (!isDrawn(i)) continue;
      SceneSeries part{.look = look, .isDots = false, .points = {}};
      for (; isDrawn(i); ++i) part.points.push_back({x[i], y[i]});
      if (part.points.size() > 1 || !options_.isLog || y.size() == 1) {
        scene_.series.push_back(std::move(part));
      }
    }
  }

  // Adds one line if all detectors that are shown have the same threshold. Several lines would hide
  // the curves.
  void addThresholds(const CqAnalysis& analysis, const std::vector<const CqResult*>& shown) {
    std::set<double> thresholds;
    for (const CqResult* result : shown) {
      const DetectorResult* detector = analysis.Find(result->curve.well.detector);
      if (detector != nullptr && detector->threshold) thresholds.insert(*detector->threshold);
    }
    if (thresholds.size() != 1) return;
    scene_.rules.push_back({*thresholds.begin(), "threshold " + NumberText(*thresholds.begin())});
  }

  void addMelting() {
    const auto curves = AnalyseMelt(run_);
    std::map<std::pair<WellKey, std::string>, std::optional<double>> cqs;
    if (options_.colourBy == ColourBy::kCq) {
      for (const CqResult& result : AnalyseCq(run_).wells)
        cqs[keyOf(result.curve.well)] = result.cq;
    }
    std::vector<const MeltCurve*> shown;
    for (const MeltCurve& curve : curves) {
      if (isShown(curve.well)) shown.push_back(&curve);
    }
    const auto value = [&](const MeltCurve* curve) {
      const auto cq = cqs.find(keyOf(curve->well));
      return valueOf(curve->well, cq != cqs.end() ? cq->second : std::nullopt);
    };
    const Colouring colouring = colouringOf(shown, value);
    const double least = leastOf(
        shown, [](const MeltCurve* curve) -> auto& { return curve->derivative; });
    for (const MeltCurve* curve : shown) {
      addCurve(colouring.Of(value(curve)), curve->temperatures, curve->derivative, least);
    }
    if (scene_.series.empty()) refuse("none of the wells has a melting curve");
    scene_.x.label = "temperature, °C";
    scene_.y.label = "−dF/dT, per °C";
    scene_.y.isLog = options_.isLog;
    fitAxes(0, 0.05);
  }

  static std::pair<WellKey, std::string> keyOf(const AnalysedWell& well) {
    return {{well.plate, well.number}, well.detector};
  }

  void addSpectra() {
    scene_.legend.title = "spectrum";
    const Calibration& calibration = plates_.front().reader.Calibration();
    for (const auto& part : {calibration.pureDyes, calibration.background}) {
      if (!part) continue;
      for (const CalibrationEntry& entry : part->entries) {
        SceneSeries series{
            .look = {scene_.legend.groups.size(), {}}, .isDots = false, .points = {}};
        for (std::size_t i = 0; i < entry.values.size(); ++i) {
          const double value = NumberOf(entry.values[i]);
          if (!std::isfinite(value) || (options_.isLog && value <= 0)) continue;
          series.points.push_back({static_cast<double>(i + 1), value});
        }
        if (series.points.empty()) continue;
        scene_.series.push_back(std::move(series));
        scene_.legend.groups.push_back(entry.name);
      }
      // Draw the background only if there are no dyes. It has other units than the dyes, and would
      // hide them.
      if (!scene_.series.empty()) break;
    }
    if (scene_.series.empty()) refuse("it has no calibration spectra");
    scene_.x.label = "filter";
    scene_.y.label = "reading";
    scene_.y.isLog = options_.isLog;
    fitAxes(0.02, 0.05);
  }

  void addStandards() {
    const CqAnalysis analysis = AnalyseCq(run_);
    std::vector<const CqResult*> shown;
    for (const CqResult* result : shownOf(analysis)) {
      const AnalysedWell& well = result->curve.well;
      if (well.task == "STND" && well.quantity.value_or(0) > 0 && result->cq) {
        shown.push_back(result);
      }
    }
    if (shown.empty()) refuse("no standard has a quantity and a Cq");
    const auto value = [&](const CqResult* result) {
      return valueOf(result->curve.well, result->cq);
    };
    const Colouring colouring = colouringOf(shown, value);
    std::map<std::string, std::vector<double>> quantities;
    for (const CqResult* result : shown) {
      const double quantity = *result->curve.well.quantity;
      quantities[result->curve.well.detector].push_back(quantity);
      scene_.series.push_back({.look = colouring.Of(value(result)),
                               .isDots = true,
                               .points = {{quantity, *result->cq}}});
    }
    for (const auto& [detector, values] : quantities) {
      const DetectorResult* found = analysis.Find(detector);
      if (found == nullptr || !found->curve) continue;
      const auto [low, high] = std::minmax_element(values.begin(), values.end());
      SceneSeries line{.look = {}, .isDots = false, .points = {}};
      if (options_.colourBy == ColourBy::kDetector) line.look = colouring.Of({detector, {}});
      for (const double quantity : {*low, *high}) {
        line.points.push_back(
            {quantity, found->curve->intercept + found->curve->slope * std::log10(quantity)});
      }
      scene_.series.push_back(std::move(line));
    }
    scene_.x.label = "quantity";
    scene_.x.isLog = true;
    scene_.y.label = "Cq, cycles";
    fitAxes(0.1, 0.06);
    scene_.x.low /= 1.25;
  }

  // The Cq of each well. If a plate has no readings, its wells have none; it can still be coloured
  // by sample, detector or task.
  std::map<WellKey, double> cqsOfPlates() const {
    std::map<WellKey, double> cqs;
    if (options_.colourBy != ColourBy::kCq) return cqs;
    for (const CqResult& result : AnalyseCq(run_).wells) {
      if (result.cq)
        cqs.try_emplace({result.curve.well.plate, result.curve.well.number}, *result.cq);
    }
    return cqs;
  }

  struct FilledWell {
    const PlateEntry* plate = nullptr;
    const Well* well = nullptr;
    ColourValue value;
  };

  std::vector<FilledWell> filledWells() const {
    const auto cqs = cqsOfPlates();
    std::vector<FilledWell> wells;
    for (const PlateEntry& plate : plates_) {
      for (const Well& well : plate.reader.Plate().wells) {
        if (well.targets.empty() && well.sample.empty()) continue;
        if (!plate.wells.empty() && !plate.wells.contains(well.number)) continue;
        AnalysedWell named{.plate = plate.name,
                           .number = well.number,
                           .name = well.name,
                           .sample = well.sample,
                           .detector = {},
                           .task = {},
                           .quantity = {}};
        if (!well.targets.empty()) {
          named.detector = well.targets[0].detector;
          named.task = well.targets[0].task;
        }
        const auto cq = cqs.find({plate.name, well.number});
        wells.push_back(
            {&plate, &well,
             valueOf(named, cq != cqs.end() ? std::optional(cq->second) : std::nullopt)});
      }
    }
    return wells;
  }

  void addPlates() {
    const auto wells = filledWells();
    const Colouring colouring =
        colouringOf(wells, [](const FilledWell& filled) { return filled.value; });
    for (const PlateEntry& entry : plates_) {
      const Plate& plate = entry.reader.Plate();
      if (plate.rows == 0 || plate.columns == 0) refuse("its header says no size of the plate");
      if (plate.rows * plate.columns > kMostWells) {
        refuse("a plate of " + Counted(plate.rows * plate.columns, "well") +
               " is too large to be drawn; 'vex wells' lists them");
      }
      scene_.plates.push_back({entry.name, plate.rows, plate.columns, {}});
      for (const FilledWell& filled : wells) {
        if (filled.plate != &entry) continue;
        const unsigned place = filled.well->number - 1U;
        scene_.plates.back().wells.push_back({place / plate.columns, place % plate.columns,
                                              colouring.Of(filled.value), textOf(filled.value)});
      }
    }
  }

  static std::string textOf(const ColourValue& value) {
    return value.number ? std::to_string(std::lround(*value.number)) : "";
  }

  static constexpr unsigned kMostWells = 6144;

  const RunReader& run_;
  const PlotOptions& options_;
  std::vector<PlateEntry> plates_;
  Scene scene_;
};

}  // namespace

Scene SceneOf(const RunReader& run, const PlotOptions& options) {
  return Guarded(run.Path().string(), [&] { return Builder(run, options).Build(); });
}

}  // namespace vex2::lab
