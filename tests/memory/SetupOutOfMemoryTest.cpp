// Makes each allocation fail in turn while the content of a plate is read or changed. No exception
// may leave the operation, nothing may leak, and the operation must be repeatable.
#include <gtest/gtest.h>

#include <memory>
#include <tuple>

#include "tests/memory/AllocationSweep.h"
#include "tests/support/SilentHost.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {
namespace {

// Texts that are too long for the internal buffer of a string, so that copies allocate memory.
constexpr const char* kName = "a name of some length, longer than most";

class SetupOutOfMemory : public TempFolderTest {
 protected:
  SetupOutOfMemory() {
    setup_.Resize(2);
    setup_.cells[0].SetName(kName, 20);
    auto detector = std::make_unique<Vex2WellDetector>();
    detector->SetDetectorName(kName, 30);
    detector->SetTask("STND", 4);
    setup_.cells[1].detectors.AddTail(detector.release());
    detector_.name = kName;
    detector_.reporterDye = kName;
    dyes_.SetEntryCount(2);
    const std::uint32_t values[] = {1, 2, 3};
    dyes_.entries[0].SetName(kName, 30);
    dyes_.entries[0].SetValues(values, 3);
    background_.SetEntryCount(1);
    OpenedManager warmUp;  // objects that are made only once must not count as leaked
    fill(warmUp);
    std::ignore = warmUp.SaveToFile(path_.c_str());
  }

  void fill(OpenedManager& document) const {
    ThermocycleProgram program;
    program.length = 4;
    program.Allocate();
    EXPECT_EQ(document.ReplaceThermocycleProgram(&program), kSuccess);
    EXPECT_EQ(document.ReplacePlateSetup(&setup_), kSuccess);
    EXPECT_EQ(document.AppendDetectorInfo(&detector_), kSuccess);
    EXPECT_EQ(document.ReplaceCalibComponent(&dyes_, &background_), kSuccess);
    document.AppendRequiredDyenfo(name_);
  }
  // Requires that `operation` returns true if no allocation fails and if it is repeated after a
  // failure, and that the content stays complete.
  void sweep(const std::function<bool(OpenedManager&)>& operation) const {
    const AllocationSweep sweep{
        [this](OpenedManager& document) { fill(document); },
        [&](OpenedManager& document) { return operation(document) ? 0 : -1; },
        [&](OpenedManager& document, int result) {
          EXPECT_TRUE(result == 0 || operation(document));
          EXPECT_NE(document.GetPlateSetupComp(), nullptr);
          EXPECT_EQ(document.GetPureDyeCount(), 2);
        }};
    EXPECT_GE(sweep.Run(), 1);
  }

  const CString name_ = kName;
  const CString other_ = "another name of some length, longer than most";
  SilentHost host_;
  Vex2PlateSetup setup_;
  Vex2Detector detector_;
  Vex2PureDye dyes_;
  Vex2BGC background_;
  const std::string path_ = folder_ / "a document with a name of some length.vex";
};

TEST_F(SetupOutOfMemory, WhileTheWellsAreReplacedOrReadLeavesThem) {
  sweep([this](OpenedManager& document) { return document.ReplacePlateSetup(&setup_) == 0; });
  sweep([](OpenedManager& document) {
    Vex2PlateSetup setup;
    return document.GetPlateSetupInfo(&setup) == 0;
  });
}

TEST_F(SetupOutOfMemory, WhileDetectorsAreChangedOrReadLeavesTheList) {
  const Vex2Detector list[] = {detector_, detector_};
  sweep([&](OpenedManager& document) { return document.UpdateDetectorList(list, 2) == 0; });
  sweep([&](OpenedManager& document) { return document.AppendDetectorInfo(&detector_) == 0; });
  sweep([&](OpenedManager& document) {
    Vex2Detector* read = nullptr;
    const bool done = document.GetDetectorListInfo(read) == 0;
    delete[] read;
    return done;
  });
}

TEST_F(SetupOutOfMemory, WhileRequiredDyesAreChangedOrReadLeavesTheList) {
  const CString list[] = {name_, other_};
  sweep([&](OpenedManager& document) { return document.UpdateRequiredDyeList(list, 2) == 0; });
  sweep([&](OpenedManager& document) { return document.AppendRequiredDyenfo(other_); });
  sweep([&](OpenedManager& document) {
    document.RemoveRequiredDyeInfo(name_);
    return document.AppendRequiredDyenfo(name_);
  });
  sweep([](OpenedManager& document) {
    CString* read = nullptr;
    const bool done = document.GetRequiredDyeListInfo(read) == 0;
    delete[] read;
    return done;
  });
}

TEST_F(SetupOutOfMemory, WhileTheCalibrationIsReplacedOrReadLeavesIt) {
  sweep([this](OpenedManager& document) {
    return document.ReplaceCalibComponent(&dyes_, &background_) == 0;
  });
  sweep([this](OpenedManager& document) { return document.ReplacePureDye(&dyes_) == 0; });
  sweep([this](OpenedManager& document) { return document.ReplaceBackground(&background_) == 0; });
  sweep([](OpenedManager& document) {
    Vex2PureDye* dyes = nullptr;
    Vex2BGC* background = nullptr;
    int has[2] = {};
    const bool done = document.GetCalibrationInfo(dyes, &has[0], background, &has[1]) == 0;
    delete dyes;
    delete background;
    return done;
  });
  sweep([](OpenedManager& document) {
    CObList list;
    const bool done = document.LoadDyeList(&list);
    EXPECT_TRUE(done || list.IsEmpty());
    while (!list.IsEmpty()) delete list.RemoveHead();
    return done;
  });
}

TEST_F(SetupOutOfMemory, WhileTheUsageIsStoredOrReadLeavesIt) {
  const bool wells[] = {true, false};
  sweep([&](OpenedManager& document) { return document.SetUsageArray(wells, 1, 2); });
  sweep([](OpenedManager& document) {
    bool* usage = nullptr;
    const bool done = document.GetUsageArray(usage);
    delete[] usage;
    return done;
  });
}

TEST_F(SetupOutOfMemory, WhileFilesAreWrittenIsAStatus) {
  const char* path = path_.c_str();
  sweep([&](OpenedManager& document) { return document.SaveSetupInfo(path) == 0; });
  sweep([&](OpenedManager& document) { return document.SaveCalibrationInfo(path) == 0; });
  sweep([&](OpenedManager& document) { return document.AppendDetectorListToFile(path) == 0; });
  sweep([&](OpenedManager& document) { return document.AppendRequiredDyeListToFile(path) == 0; });
  sweep([&](OpenedManager& document) { return document.AppendPureDye(path, &dyes_) == 0; });
  sweep(
      [&](OpenedManager& document) { return document.AppendBackground(path, &background_) == 0; });
  sweep(
      [&](OpenedManager& document) { return document.ReplaceBackground(path, &background_) == 0; });
}

}  // namespace
}  // namespace vex2::test
