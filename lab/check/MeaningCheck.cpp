#include "lab/check/MeaningCheck.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <set>

#include "lab/SystemError.h"
#include "lab/Text.h"
#include "lab/model/DocumentPlates.h"
#include "lab/model/PlateContents.h"
#include "lab/model/RunLog.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::lab {

namespace {

constexpr std::array<std::string_view, 3> kStatuses = {RunStatus::kNotStarted,
                                                       RunStatus::kInProgress, RunStatus::kDone};
constexpr std::array<std::string_view, 7> kTasks = {"UNKN", "STND", "NTC", "IPC",
                                                    "IPC+", "ENDO", "TRGT"};
constexpr std::string_view kBlock = TagOf(Kind::kRawData);
constexpr std::string_view kSetup = TagOf(Kind::kPlateSetup);
// In hundredths of a degree Celsius. At this temperature water has boiled off.
constexpr std::uint16_t kHottest = 12000;
constexpr const char* kSetWells = "{setWells} replaces the setup of the wells";

std::string shown(std::string_view text) {
  return fmt::format("'{}'", Escaped(ToUtf8(text)));
}

/// Wells that have the same fault, for the text of a finding.
class WellList {
 public:
  void Add(unsigned well) { wells_.insert(well); }
  bool IsEmpty() const { return wells_.empty(); }

  std::string Text(const PlateLayout& plate) const {
    constexpr std::size_t kMostNamed = 6;
    std::string names;
    std::size_t named = 0;
    for (const unsigned well : wells_) {
      if (named++ == kMostNamed) break;
      names += " " + plate.NameOf(well);
    }
    return fmt::format("{} ({}{})", Counted(wells_.size(), "well"), names.substr(1),
                       wells_.size() > kMostNamed ? " ..." : "");
  }

 private:
  std::set<unsigned> wells_;
};

/// A fault that frames can have: the number of faulty frames or readings, and the index of the
/// first faulty frame.
struct FrameFault {
  std::uint64_t count = 0;
  int first = 0;

  void Note(int frame) {
    if (count++ == 0) first = frame;
  }
};

class PlateCheck {
 public:
  PlateCheck(Document::Plate plate, std::string within, Findings& findings)
      : plate_(std::move(plate)),
        within_(std::move(within)),
        findings_(findings),
        contents_(ContentsOf(*plate_.content)),
        block_(FindBlock(plate_, kBlock)) {}

  void Check() {
    if (plate_.content->GetPlateSetupComp() != nullptr) checkSetup();
    if (block_ != nullptr) checkRecording();
  }

 private:
  void add(Severity severity, std::string_view tag, std::string problem, std::string consequence,
           std::string remedy) {
    const auto record = std::find_if(plate_.records.begin(), plate_.records.end(),
                                     [&](const auto& each) { return each.tag == tag; });
    const std::uint64_t offset = record == plate_.records.end() ? plate_.offset : record->offset;
    findings_.Add({severity, within_ + std::string(tag), offset, std::move(problem),
                   std::move(consequence), std::move(remedy)});
  }

  void checkSetup() {
    std::set<std::string> listed;
    for (const Vex2Detector& detector : DetectorsOf(*plate_.content)) {
      listed.insert(std::string(detector.name.View()));
    }
    std::map<std::string, WellList> strangers;
    std::map<std::string, WellList> tasks;
    for (const WellRow& row : contents_.rows) {
      if (!row.target.empty() && !listed.contains(row.target)) strangers[row.target].Add(row.well);
      const bool isKnown = std::find(kTasks.begin(), kTasks.end(), row.task) != kTasks.end();
      if (!row.task.empty() && !isKnown) tasks[row.task].Add(row.well);
    }
    for (const auto& [name, wells] : strangers) {
      add(Severity::kWarning, kSetup,
          fmt::format("the detector {} of {} is not in the document's list of detectors",
                      shown(name), wells.Text(contents_.plate)),
          "its dyes and settings are unknown", kSetWells);
    }
    for (const auto& [task, wells] : tasks) {
      add(Severity::kWarning, kSetup,
          fmt::format("the task {} of {} is none of UNKN, STND, NTC, IPC, IPC+, ENDO, TRGT",
                      shown(task), wells.Text(contents_.plate)),
          "an analysis cannot tell what the wells are for", kSetWells);
    }
    checkMeasuredWells();
  }

  void checkMeasuredWells() {
    if (block_ == nullptr) return;
    const auto wells = contents_.Wells();
    WellList strangers;
    for (const std::uint16_t well : block_->GetWellNumbers()) {
      if (!std::binary_search(wells.begin(), wells.end(), well)) strangers.Add(well);
    }
    if (strangers.IsEmpty()) return;
    add(Severity::kWarning, kBlock,
        fmt::format("{} measured, but not set up: no sample and no detector",
                    strangers.Text(contents_.plate)),
        "it is unknown what was measured", kSetWells);
  }

  void checkRecording() {
    const RecordedReadings readings(*plate_.content, kBlock);
    if (!readings.Log()) return;
    const auto frames = static_cast<std::uint64_t>(std::max(block_->GetFrameCount(), 0));
    const auto count = static_cast<int>(std::min(frames, readings.Log()->frames.value_or(frames)));
    for (int frame = 0; frame < count; ++frame) checkFrame(frame, readings);
    tellFrames();
  }

  void checkFrame(int frame, const RecordedReadings& readings) {
    const Vex2WellRecord* records = block_->GetFrame(frame);
    if (records == nullptr) return;
    std::optional<RunReading> earliest;
    std::size_t position = 0;
    for (const std::uint16_t well : block_->GetWellNumbers()) {
      const Vex2WellRecord& record = records[position++];
      if (record == Vex2WellRecord()) continue;  // the well has no reading
      const auto reading = readings.Read(record, static_cast<std::uint64_t>(frame));
      if (!reading) {
        foreign_.Note(frame);
        foreignWells_.Add(well);
        continue;
      }
      if (reading->temperature > kHottest) hot_.Note(frame);
      if (!earliest || reading->time < earliest->time) earliest = reading;
    }
    if (earliest) checkOrder(frame, *earliest);
  }

  void checkOrder(int frame, const RunReading& reading) {
    if (reading.time < lastTime_) early_.Note(frame);
    lastTime_ = reading.time;
    std::uint16_t& last = reading.melting ? lastMelting_ : lastCycle_;
    if (reading.cycle <= last) disordered_.Note(frame);
    last = reading.cycle;
  }

  void tellFrames() {
    if (foreign_.count > 0) {
      add(Severity::kError, kBlock,
          fmt::format(
              "the recorder that the log names did not write {} of {}, the first in frame {}",
              Counted(foreign_.count, "reading"), foreignWells_.Text(contents_.plate),
              foreign_.first),
          "their bytes were changed after the recording; {read} leaves them empty",
          "take the run from a backup, or record it again from its readings");
    }
    const char* const kLook = "{read} shows them; check whether the readings were right";
    const auto warn = [&](const FrameFault& fault, std::string problem,
                          const std::string& consequence) {
      if (fault.count == 0) return;
      add(Severity::kWarning, kBlock, std::move(problem), consequence, kLook);
    };
    warn(hot_,
         fmt::format("{} above 120 C, the first in frame {}", Counted(hot_.count, "reading"),
                     hot_.first),
         "no plate is as hot: temperatures, and what is computed from them, are wrong");
    warn(early_,
         fmt::format("{} with an earlier time than the previous frame, the first is frame {}",
                     Counted(early_.count, "frame"), early_.first),
         "programs that sort by time see the frames in another order");
    warn(
        disordered_,
        fmt::format("{} with a cycle that does not follow that of the previous frame of its stage, "
                    "the first is frame {}",
                    Counted(disordered_.count, "frame"), disordered_.first),
        "programs that sort by cycle see the frames in another order");
  }

  Document::Plate plate_;
  std::string within_;
  Findings& findings_;
  PlateContents contents_;
  const AcquisitionDataComp* block_;
  FrameFault foreign_;
  WellList foreignWells_;
  FrameFault hot_;
  FrameFault early_;
  FrameFault disordered_;
  std::uint32_t lastTime_ = 0;
  std::uint16_t lastCycle_ = 0;
  std::uint16_t lastMelting_ = 0;
};

void checkStatus(const HeaderFields& header, Findings& findings) {
  if (std::find(kStatuses.begin(), kStatuses.end(), header.status) != kStatuses.end()) return;
  findings.Add(
      {Severity::kWarning, "header", HeaderLayout::kStatusAt,
       fmt::format("the acquisition status {} is none of ZERO, PROG, DONE", shown(header.status)),
       "nobody can tell whether the run is over", "{setStatus} sets it when the run is over"});
}

}  // namespace

void CheckMeaning(const Document& document, const HeaderFields& header, Findings& findings) {
  if (!document.IsStudy()) {
    checkStatus(header, findings);
    PlateCheck(document.Itself(), "", findings).Check();
  }
  const auto& plates = document.Plates();
  for (std::size_t i = 0; i < plates.size(); ++i) {
    PlateCheck(plates[i], "MPLC/RQPl[" + std::to_string(i + 1) + "]/", findings).Check();
  }
}

}  // namespace vex2::lab
