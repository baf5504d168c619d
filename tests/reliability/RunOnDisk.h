#pragma once

#include <filesystem>
#include <string>

#include "tests/support/FaultyFileSystem.h"
#include "tests/support/RunDocument.h"
#include "tests/support/SilentHost.h"
#include "tests/support/Sweep.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {

/// Base of tests that record a run to `path_` and then read it.
class RunOnDisk : public TempFolderTest {
 protected:
  /// Makes a document without frames at `path_` and prepares `manager` to record to it.
  void begin(OpenedManager& manager) const {
    WriteBytes(path_, StoredHeader());
    const auto numbers = WellNumbers(wells_);
    manager.InitAcqDataWellNumberArray(numbers.data(), wells_, DataRAWa);
  }
  /// Makes a document at `path_` and commits `frames` frames to it with `manager`.
  void record(OpenedManager& manager, int frames) const {
    begin(manager);
    for (int i = 0; i < frames; ++i) ASSERT_EQ(append(manager, i), kSuccess);
  }
  int append(Vex2FileManager& manager, int index) const {
    const Vex2FrameData frame = MakeFrame(wells_, index);
    return manager.AppendAcquisitionDataFrame(path_.c_str(), &frame, DataRAWa);
  }
  /// The bytes of a document with `frames` committed frames.
  Bytes documentOf(int frames) const {
    if (frames == 0) return StoredHeader();
    return Join({StoredHeader(1024), StoredBlock("RAWa", wells_, frames)});
  }
  /// The number of frames in the file. Reads the document as a whole and the frames one by one.
  /// Returns -1 if a frame differs from the recorded one or the two ways differ.
  int readableFrames() const {
    Vex2FileManager reader;
    int inFile = -1;
    if (reader.ReadFromFile(path_.c_str()) != kSuccess ||
        reader.GetDataFrameCount(path_.c_str(), inFile, DataRAWa) != kSuccess) {
      return -1;
    }
    const int frames = reader.GetDataFrameCount(DataRAWa);
    for (int i = 0; i < frames; ++i) {
      Vex2FrameData frame;
      if (reader.ReadDataFrame(i, &frame, DataRAWa) != kSuccess ||
          !SameFrame(frame, MakeFrame(wells_, i))) {
        return -1;
      }
    }
    for (int i = 0; i < inFile; ++i) {
      Vex2FrameData frame;
      if (reader.ReadDataFrame(path_.c_str(), i, &frame, DataRAWa) != kSuccess ||
          !SameFrame(frame, MakeFrame(wells_, i))) {
        return -1;
      }
    }
    // If the header does not yet hold the offset of the block, only reading the whole document
    // finds the first frame.
    return inFile == frames || (inFile == 0 && frames <= 1) ? frames : -1;
  }
  /// Reads the file with a new manager and commits the next frame, as a recorder does that
  /// continues the run. Returns the status of the commit.
  int goOn() const {
    OpenedManager manager;
    EXPECT_EQ(manager.ReadFromFile(path_.c_str()), kSuccess);
    if (manager.GetWellCount(DataRAWa) == 0) {
      const auto numbers = WellNumbers(wells_);
      manager.InitAcqDataWellNumberArray(numbers.data(), wells_, DataRAWa);
    }
    return append(manager, manager.GetDataFrameCount(DataRAWa));
  }

  SilentHost host_;
  std::string path_ = folder_ / "run.vex";
  std::uint16_t wells_ = 3;
};

}  // namespace vex2::test
