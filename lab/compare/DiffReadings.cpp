#include "lab/compare/DiffReadings.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>

#include "lab/Text.h"
#include "lab/model/DataBlock.h"
#include "lab/model/PlateContents.h"
#include "lab/model/RunLog.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::lab {

namespace {

constexpr const char* kSection = "readings";

using BlocksByName = std::map<std::string, const AcquisitionDataComp*>;

// The data blocks of a plate. The key is the tag, and the number among blocks with that tag.
BlocksByName blocksOf(const Document::Plate& plate) {
  BlocksByName blocks;
  for (int i = 0; i < plate.content->GetAllComponentCount(); ++i) {
    const auto* block = dynamic_cast<const AcquisitionDataComp*>(plate.content->GetComponent(i));
    if (block == nullptr) continue;
    const std::string tag(block->GetTag());
    std::string name = tag;
    for (int turn = 2; blocks.contains(name); ++turn)
      name = tag + " (" + std::to_string(turn) + ")";
    blocks.emplace(name, block);
  }
  return blocks;
}

std::string timeOf(const TimeStamp& time) {
  std::string text;
  for (const auto field : time.fields) text += (text.empty() ? "" : " ") + std::to_string(field);
  return text;
}

/// Compares two blocks, frame by frame.
class BlockDiff {
 public:
  BlockDiff(const Document::Plate& one, const Document::Plate& other, const std::string& name,
            double tolerance, std::vector<Difference>& differences)
      : name_(name),
        tolerance_(tolerance),
        differences_(differences),
        log_(*one.content, name.substr(0, 4)),
        otherLog_(*other.content, name.substr(0, 4)),
        columns_(LayoutOf(*one.content).columns) {}

  void Compare(const AcquisitionDataComp& one, const AcquisitionDataComp& other) {
    field("version", std::to_string(one.GetVersion()), std::to_string(other.GetVersion()));
    field("start", timeOf(one.GetStartTime()), timeOf(other.GetStartTime()));
    field("end", timeOf(one.GetEndTime()), timeOf(other.GetEndTime()));
    field("frames", std::to_string(one.GetFrameCount()), std::to_string(other.GetFrameCount()));
    const auto wells = one.GetWellNumbers();
    const auto otherWells = other.GetWellNumbers();
    if (!std::equal(wells.begin(), wells.end(), otherWells.begin(), otherWells.end())) {
      field("wells", wellsText(one), wellsText(other));
      return;
    }
    const int frames = std::min(one.GetFrameCount(), other.GetFrameCount());
    for (int frame = 0; frame < frames; ++frame) compareFrame(one, other, frame);
    std::move(found_.begin(), found_.end(), std::back_inserter(differences_));
  }

 private:
  void field(const char* what, const std::string& left, const std::string& right) {
    if (left == right) return;
    Difference& difference = differences_.emplace_back();
    difference.section = kSection;
    difference.what = name_ + " " + what;
    difference.one = left;
    difference.other = right;
    difference.count = 1;
  }

  static std::string wellsText(const AcquisitionDataComp& block) {
    std::string text;
    for (const std::uint16_t well : block.GetWellNumbers()) {
      text += (text.empty() ? "" : " ") + std::to_string(well);
    }
    return text;
  }

  void compareFrame(const AcquisitionDataComp& one, const AcquisitionDataComp& other, int frame) {
    const Vex2WellRecord* left = one.GetFrame(frame);
    const Vex2WellRecord* right = other.GetFrame(frame);
    const Vex2WellRecord empty;
    const auto wells = one.GetWellNumbers();
    for (std::size_t i = 0; i < wells.size(); ++i) {
      const Vex2WellRecord& first = left != nullptr ? left[i] : empty;
      const Vex2WellRecord& second = right != nullptr ? right[i] : empty;
      if (first == second) continue;
      compareRecords(first, second, frame, WellName(wells[i], columns_));
    }
  }

  void compareRecords(const Vex2WellRecord& one, const Vex2WellRecord& other, int frame,
                      const std::string& well) {
    const auto index = static_cast<std::uint64_t>(frame);
    const auto left = log_.Read(one, index);
    const auto right = otherLog_.Read(other, index);
    const std::string place = well + " frame " + std::to_string(frame);
    if (left && right) return compareKnown(*left, *right, place);
    for (std::size_t i = 0; i < std::size(one.leading); ++i) {
      if (one.leading[i] != other.leading[i]) {
        add("stored leading values", one.leading[i], other.leading[i], place);
      }
    }
    for (std::size_t i = 0; i < std::size(one.data); ++i) {
      compareValue("stored values", one.data[i], other.data[i], place);
    }
  }

  void compareKnown(const RunReading& one, const RunReading& other, const std::string& place) {
    if (one == other) return addPlace(kindOf("marks of the first melting frame"), place);
    if (one.melting != other.melting) {
      addPlace(kindOf("stages"),
               place + (one.melting ? ": melting -> amplification" : ": amplification -> melting"));
    }
    const auto compare = [&](const char* what, double left, double right, double steps) {
      if (left != right) add(what, left / steps, right / steps, place);
    };
    compare("times", one.time, other.time, kTimeSteps);
    compare("temperatures", one.temperature, other.temperature, kTemperatureSteps);
    compare("cycles", one.cycle, other.cycle, 1);
    const std::size_t channels =
        std::max({log_.Log()->channels.size(), otherLog_.Log()->channels.size(), std::size_t{1}});
    for (std::size_t channel = 0; channel < channels; ++channel) {
      const double none = std::numeric_limits<double>::quiet_NaN();
      compareValue(
          "values", one.IsMissing(channel) ? none : log_.Log()->scale.Measured(one.values[channel]),
          other.IsMissing(channel) ? none : otherLog_.Log()->scale.Measured(other.values[channel]),
          place);
    }
  }

  void compareValue(const char* what, double one, double other, const std::string& place) {
    if (one == other || (std::isnan(one) && std::isnan(other))) return;
    if (std::abs(one - other) <= tolerance_) return;
    add(what, one, other, place);
  }

  // The difference of this kind, to which all its places are added.
  Difference& kindOf(const char* what) {
    const std::string wanted = name_ + " " + what;
    const auto found = std::find_if(found_.begin(), found_.end(),
                                    [&](const Difference& one) { return one.what == wanted; });
    if (found != found_.end()) return *found;
    Difference& added = found_.emplace_back();
    added.section = kSection;
    added.what = wanted;
    return added;
  }

  static void addPlace(Difference& to, const std::string& place) {
    ++to.count;
    if (to.places.size() < Difference::kMostPlaces) to.places.push_back(place);
  }

  void add(const char* what, double one, double other, const std::string& place) {
    const auto text = [](double value) {
      return std::isnan(value) ? std::string("none") : PlainText(value);
    };
    Difference& to = kindOf(what);
    if (to.count == 0) {
      to.one = text(one);
      to.other = text(other);
    }
    addPlace(to, place + ": " + text(one) + " -> " + text(other));
    if (!std::isnan(one - other)) to.largest = std::max(to.largest, std::abs(one - other));
  }

  std::string name_;
  double tolerance_;
  std::vector<Difference>& differences_;
  RecordedReadings log_;
  RecordedReadings otherLog_;
  std::uint32_t columns_;
  std::vector<Difference> found_;  // by kind, in the order in which the kinds were found
};

}  // namespace

void DiffReadings(const Document::Plate& one, const Document::Plate& other, double tolerance,
                  std::vector<Difference>& differences) {
  const BlocksByName blocks = blocksOf(one);
  const BlocksByName otherBlocks = blocksOf(other);
  const auto lone = [&](const std::string& name, bool isFirst) {
    Difference& difference = differences.emplace_back();
    difference.section = kSection;
    difference.what = name;
    (isFirst ? difference.one : difference.other) = "there";
    difference.count = 1;
  };
  for (const auto& [name, block] : blocks) {
    const auto found = otherBlocks.find(name);
    if (found == otherBlocks.end()) {
      lone(name, true);
    } else {
      BlockDiff(one, other, name, tolerance, differences).Compare(*block, *found->second);
    }
  }
  for (const auto& [name, block] : otherBlocks) {
    if (!blocks.contains(name)) lone(name, false);
  }
}

}  // namespace vex2::lab
