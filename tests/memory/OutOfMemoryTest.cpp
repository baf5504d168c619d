// Makes each allocation fail in turn. The operation must return a status, nothing may leak, and the
// manager must stay usable.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <functional>

#include "tests/memory/AllocationSweep.h"
#include "tests/support/SilentHost.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {
namespace {

constexpr std::uint16_t kWells = 3;

class OutOfMemory : public TempFolderTest {
 protected:
  void SetUp() override {
    // Paths and texts that are too long for the internal buffer of a string, so that copies
    // allocate.
    path_ = folder_ / "a run with a name of some length.vex";
    document_ = Join({StoredHeader(), ByteString().Text("CALR").Long(41).Text(std::string(41, 'c')),
                      ByteString().Text("GLBL").Long(30).Short(1).Text("COMM").Long(20).Text(
                          std::string(20, 'x')),
                      ByteString().Text("TPro").Long(5).Text("abcde")});
    SetLongAt(document_, 68, document_.size());
    document_ = Join({document_, StoredBlock("RAWa", kWells, 2)});
    WriteBytes(path_, document_);
    everyCall(warmUp_);  // objects that are made only once must not count as leaked
  }

  static int sweep(const AllocationSweep& sweep) { return sweep.Run(); }

  int read(OpenedManager& manager) const {
    if (manager.SafeOpen(path_.c_str(), 0, 0) == 0) return kReadFailed;
    const int status = manager.ReadComponentFile(nullptr);
    manager.Abort();
    return status;
  }
  void expectWhole(OpenedManager& manager) const {
    EXPECT_EQ(TagsOf(manager), "CALR GLBL TPro RAWa");
    Vex2FrameData frame;
    EXPECT_EQ(manager.ReadDataFrame(1, &frame, DataRAWa), kSuccess);
    EXPECT_TRUE(SameFrame(frame, MakeFrame(kWells, 1)));
  }
  void load(OpenedManager& manager) const { ASSERT_EQ(read(manager), kSuccess); }
  void everyCall(OpenedManager& manager) {
    load(manager);
    EXPECT_EQ(manager.SaveToFile((folder_ / "warm").c_str()), kSuccess);
    std::filesystem::remove(folder_ / "warm");
  }
  std::size_t filesInFolder() const {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(folder_.Path()),
                      std::filesystem::directory_iterator()));
  }

  SilentHost host_;
  OpenedManager warmUp_;
  std::string path_;
  Bytes document_;
};

TEST_F(OutOfMemory, WhileReadingADocumentIsAFailedRead) {
  const int allocations =
      sweep({[](OpenedManager&) {}, [this](OpenedManager& manager) { return read(manager); },
             [this](OpenedManager& manager, int status) {
               EXPECT_TRUE(status == kSuccess || status == kReadFailed);
               load(manager);
               expectWhole(manager);
             }});
  EXPECT_GE(allocations, 10);
}

TEST_F(OutOfMemory, WhileReadingFromAFileNothingEscapes) {
  sweep({[](OpenedManager&) {},
         [this](OpenedManager& manager) { return manager.ReadFromFile(path_.c_str()); },
         [this](OpenedManager& manager, int status) {
           EXPECT_TRUE(status == kSuccess || status == kReadFailed);
           load(manager);
           expectWhole(manager);
         }});
}

TEST_F(OutOfMemory, WhileSavingIsAFailedWriteAndLeavesTheOldDocumentOrTheNew) {
  const Bytes old = ToBytes("what stood there before");
  const std::string target = folder_ / "another run with a name of some length.vex";
  const int allocations = sweep(
      {[&](OpenedManager& manager) {
         load(manager);
         WriteBytes(target, old);
       },
       [&](OpenedManager& manager) { return manager.SaveToFile(target.c_str()); },
       [&](OpenedManager& manager, int status) {
         EXPECT_EQ(filesInFolder(), 2U);
         const Bytes after = ReadBytes(target);
         EXPECT_TRUE(status == kSuccess || status == kWriteFailed) << status;
         EXPECT_TRUE((status != kSuccess && after == old) || after.size() == document_.size());
         EXPECT_EQ(manager.SaveToFile(target.c_str()), kSuccess);
         EXPECT_EQ(ReadBytes(target).size(), document_.size());
       }});
  EXPECT_GE(allocations, 5);
}

TEST_F(OutOfMemory, WhileSavingAHeaderIsAFailedWrite) {
  const std::string target = folder_ / "another run with a name of some length.vex";
  Vex2HeaderData header;
  sweep({[](OpenedManager&) {},
         [&](OpenedManager& manager) { return manager.SaveHeader(target.c_str(), header); },
         [&](OpenedManager& manager, int status) {
           EXPECT_TRUE(status == kSuccess || status == kWriteFailed) << status;
           EXPECT_EQ(manager.SaveHeader(target.c_str(), header), kSuccess);
         }});
}

TEST_F(OutOfMemory, WhileAppendingAFrameLeavesTheFileAndCanBeRepeated) {
  const Vex2FrameData frame = MakeFrame(kWells, 2);
  const Bytes after = [&] {
    Bytes bytes = document_;
    const std::size_t block = LongAt(bytes, 68);
    bytes.resize(block);
    return Join({bytes, StoredBlock("RAWa", kWells, 3)});
  }();
  const int allocations = sweep(
      {[&](OpenedManager& manager) {
         WriteBytes(path_, document_);
         load(manager);
       },
       [&](OpenedManager& manager) {
         return manager.AppendAcquisitionDataFrame(path_.c_str(), &frame, DataRAWa);
       },
       [&](OpenedManager& manager, int status) {
         if (status != kSuccess) {
           EXPECT_TRUE(status == kReadFailed || status == kWriteFailed) << status;
           EXPECT_EQ(FirstDifference(ReadBytes(path_), document_), "");
           const bool held = manager.GetDataFrameCount(DataRAWa) == 3;
           EXPECT_EQ(held ? manager.CommitAcqDataFrame(path_.c_str(), 2, DataRAWa)
                          : manager.AppendAcquisitionDataFrame(path_.c_str(), &frame, DataRAWa),
                     kSuccess);
         }
         EXPECT_EQ(FirstDifference(ReadBytes(path_), after), "");
       }});
  EXPECT_GE(allocations, 3);
}

TEST_F(OutOfMemory, WhileReadingOneFrameIsAFailedRead) {
  for (const bool fromFile : {false, true}) {
    const auto readFrame = [&](OpenedManager& manager) {
      Vex2FrameData frame;
      return fromFile ? manager.ReadDataFrame(path_.c_str(), 1, &frame, DataRAWa)
                      : manager.ReadDataFrame(1, &frame, DataRAWa);
    };
    const int allocations = sweep({[this](OpenedManager& manager) { load(manager); }, readFrame,
                                   [&](OpenedManager& manager, int status) {
                                     EXPECT_TRUE(status == kSuccess || status == kReadFailed);
                                     EXPECT_EQ(readFrame(manager), kSuccess);
                                   }});
    EXPECT_GE(allocations, 1);
  }
}

TEST_F(OutOfMemory, WhileCountingFramesIsAFailedRead) {
  const auto countFrames = [this](OpenedManager& manager) {
    int count = 0;
    return manager.GetDataFrameCount(path_.c_str(), count, DataRAWa);
  };
  sweep({[](OpenedManager&) {}, countFrames,
         [&](OpenedManager& manager, int status) {
           EXPECT_TRUE(status == kSuccess || status == kReadFailed);
           EXPECT_EQ(countFrames(manager), kSuccess);
         }});
}

TEST_F(OutOfMemory, WhileReplacingABlockIsAStatus) {
  Vex2FrameData frames[] = {MakeFrame(kWells, 7)};
  const Vex2AcquisitionData data{frames, 1};
  for (const Vex2DataType type : {DataRAWa, DataREPr}) {
    sweep({[this](OpenedManager& manager) {
             WriteBytes(path_, document_);
             load(manager);
           },
           [&](OpenedManager& manager) {
             return manager.ReplaceAcquisitionDataBlock(path_.c_str(), &data, type);
           },
           [&](OpenedManager& manager, int status) {
             EXPECT_TRUE(status == kSuccess || status == kWriteFailed || status == kReadFailed);
             EXPECT_EQ(manager.ReplaceAcquisitionDataBlock(path_.c_str(), &data, type), kSuccess);
             EXPECT_EQ(manager.GetDataFrameCount(type), 1);
           }});
  }
}

TEST_F(OutOfMemory, WhileSettingTheStatusInAFileIsAFailedWrite) {
  sweep({[this](OpenedManager& manager) { load(manager); },
         [this](OpenedManager& manager) {
           return manager.SetAcquisitionStatus(path_.c_str(), "PROG");
         },
         [this](OpenedManager& manager, int status) {
           EXPECT_TRUE(status == kSuccess || status == kWriteFailed);
           EXPECT_EQ(manager.SetAcquisitionStatus(path_.c_str(), "PROG"), kSuccess);
         }});
}

TEST_F(OutOfMemory, WhileReportingAMessageChangesNoStatus) {
  sweep({[](OpenedManager&) {},
         [](OpenedManager& manager) {
           const Vex2WellRecord record;
           EXPECT_FALSE(manager.SetAcqDataWellRecord(&record, 0, 1, DataRAWa));
           return manager.SetAcquisitionStatus("DONE ") == kInvalidStatus ? 0 : -1;
         },
         [](OpenedManager&, int status) { EXPECT_EQ(status, 0); }});
}

TEST_F(OutOfMemory, WhileChangingASettingKeepsTheOld) {
  const CString name(std::string(50, 'n').c_str());
  ThermocycleProgram program;
  const std::string settings = folder_ / "a file for the settings.vex";
  program.length = 100;
  program.Allocate();
  std::memset(program.data, 1, 100);
  const std::function<int(OpenedManager&)> changes[] = {
      [&](OpenedManager& manager) { return manager.SetCalibrator(name); },
      [&](OpenedManager& manager) { return manager.SetEndoControl(name); },
      [&](OpenedManager& manager) { return manager.UpdateConfidencePercent(1); },
      [&](OpenedManager& manager) { return manager.SetRQAnalysisType(1); },
      [&](OpenedManager& manager) { return manager.ReplaceThermocycleProgram(&program); },
      [&](OpenedManager& manager) { return manager.ReplaceGlobalComplexComp(nullptr); },
      [&](OpenedManager& manager) {
        return manager.AppendGlobalComplexComp(settings.c_str(), nullptr);
      },
      [&](OpenedManager& manager) {
        manager.SetPassiveReference(name);
        manager.SetSampleVolume(1);
        manager.SetPrePostFlags(1, 1);
        return 0;
      },
      [&](OpenedManager& manager) {
        const unsigned short wells[] = {1, 2};
        manager.InitAcqDataWellNumberArray(wells, 2, DataRAWa);
        manager.InitAcqDataWellNumberArray(wells, 2, DataREPr);
        return 0;
      }};
  for (const auto& change : changes) {
    sweep({[this](OpenedManager& manager) { load(manager); }, change,
           [&](OpenedManager& manager, int status) {
             EXPECT_TRUE(status == kSuccess || status == kWriteFailed) << status;
             for (const char* tag : {"CALR", "GLBL", "TPro", "RAWa"}) {
               EXPECT_NE(manager.includesComponent(tag), nullptr) << tag;
             }
             EXPECT_EQ(change(manager), kSuccess);
           }});
  }
}

TEST_F(OutOfMemory, WhileReadingASettingIsAFailedRead) {
  const std::function<int(OpenedManager&)> queries[] = {
      [](OpenedManager& manager) {
        CString text;
        return manager.GetCalibrator(text);
      },
      [](OpenedManager& manager) {
        Vex2GlobalComplex info;
        return manager.GetGlobalComplexInfo(&info);
      },
      [](OpenedManager& manager) {
        ThermocycleProgram program;
        return manager.GetThermocycleProgramInfo(&program);
      },
      [](OpenedManager& manager) {
        CString text;
        manager.GetPassiveReference(text);
        return 0;
      }};
  for (const auto& query : queries) {
    sweep({[this](OpenedManager& manager) { load(manager); }, query,
           [&](OpenedManager& manager, int status) {
             EXPECT_TRUE(status == kSuccess || status == kReadFailed) << status;
             EXPECT_EQ(query(manager), kSuccess);
           }});
  }
}

}  // namespace
}  // namespace vex2::test
