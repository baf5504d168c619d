#pragma once

#include <memory>
#include <string>
#include <vector>

#include "lab/model/RunReader.h"
#include "lab/record/PlanDocument.h"
#include "lab/record/Recorder.h"
#include "lab/record/SimulatedRun.h"
#include "tests/support/RunDocument.h"
#include "tests/support/TempFolder.h"
#include "vex2/manager/Vex2FileManagerComponent.h"
#include "vex2/run/AcquisitionDataComp.h"
#include "vex2/study/CMultiPlateComp.h"
#include "vex2/study/CRQPlateComp.h"

/// Documents of runs, for tests of code that reads them.
namespace vex2::test {

/// Records the whole plan to a new document.
inline void Record(const lab::RunPlan& plan, const std::string& path) {
  lab::Recorder recorder(plan, {.path = path}, [](const lab::RecordState&) {});
  ASSERT_EQ(recorder.Run(), lab::Recorder::Outcome::kDone);
}

/// A small simulated run of 96 wells with the given numbers of cycles and melting steps.
inline lab::RunPlan SmallRun(std::uint32_t cycles = 3, std::uint32_t meltSteps = 2) {
  return lab::SimulateRun({.cycles = cycles, .meltSteps = meltSteps});
}

/// A document whose raw readings were not made by a recorder of this library. It has `wells` wells
/// and frames from `MakeFrame`; each frame is committed. The manager can append more frames.
class ForeignRun {
 public:
  ForeignRun(std::string path, std::uint16_t wells) : path_(std::move(path)), wells_(wells) {
    const auto numbers = WellNumbers(wells);
    document_.InitAcqDataWellNumberArray(numbers.data(), wells, DataRAWa);
  }
  void Begin() {
    Vex2FileManager empty;
    ASSERT_EQ(empty.SaveToFile(path_.c_str()), 0);
  }
  void Append() {
    const Vex2FrameData frame = MakeFrame(wells_, frames_++);
    ASSERT_EQ(document_.AppendAcquisitionDataFrame(path_.c_str(), &frame, DataRAWa), 0);
  }
  Vex2FileManager& Document() { return document_; }

 private:
  std::string path_;
  std::uint16_t wells_;
  int frames_ = 0;
  Vex2FileManager document_;
};

inline const AcquisitionDataComp* BlockOf(const Vex2FileManager& document, std::string_view tag) {
  for (int i = 0; i < document.GetAllComponentCount(); ++i) {
    const CComponent* component = document.GetComponent(i);
    if (component->GetTag() == tag) return dynamic_cast<const AcquisitionDataComp*>(component);
  }
  return nullptr;
}

/// Expects that `frame` holds what the block has in memory.
inline void ExpectFrame(const lab::Frame& frame, const AcquisitionDataComp& block) {
  const Vex2WellRecord* records = block.GetFrame(static_cast<int>(frame.index));
  ASSERT_NE(records, nullptr);
  ASSERT_EQ(frame.wells.size(), block.GetWellCount());
  for (std::size_t i = 0; i < frame.wells.size(); ++i) {
    const lab::WellReading& well = frame.wells[i];
    EXPECT_EQ(well.well, block.GetWellNumbers()[i]);
    ASSERT_TRUE(std::equal(well.leading.begin(), well.leading.end(), records[i].leading));
    ASSERT_TRUE(std::equal(well.values.begin(), well.values.end(), records[i].data));
  }
}

/// Expects that the reader returns every reading that the manager has in memory.
inline void ExpectReadings(const lab::RunReader& run, const Vex2FileManager& document) {
  for (const lab::BlockInfo& info : run.Blocks()) {
    const AcquisitionDataComp* block = BlockOf(document, info.tag);
    ASSERT_NE(block, nullptr);
    const lab::Readings readings = run.Readings(info.tag);
    ASSERT_EQ(readings.FrameCount(), static_cast<std::size_t>(block->GetFrameCount()));
    ASSERT_EQ(run.FrameCount(info.tag), readings.FrameCount());
    EXPECT_EQ(readings.Wells(), run.Wells(info.tag));
    EXPECT_EQ(readings.Axis(), run.Axis(info.tag));
    for (std::size_t frame = 0; frame < readings.FrameCount(); ++frame) {
      const lab::Frame single = run.Frame(frame, info.tag);
      ExpectFrame(single, *block);
      EXPECT_EQ(single.position, readings.Axis()[frame]);
      for (std::size_t well = 0; well < readings.WellCount(); ++well) {
        const auto values = readings.Values(frame, well);
        ASSERT_TRUE(std::equal(values.begin(), values.end(), single.wells[well].values.begin()));
      }
    }
  }
}

}  // namespace vex2::test
