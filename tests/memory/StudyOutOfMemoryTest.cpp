// Makes each allocation fail in turn while a study, its results or its settings are read or
// changed. No exception may leave the operation, nothing may leak, and no change may be left
// incomplete.
#include <gtest/gtest.h>

#include <cstring>

#include "tests/memory/AllocationSweep.h"
#include "tests/support/SilentHost.h"
#include "tests/support/TempFolder.h"
#include "vex2/manager/Vex2FileManagerComponent.h"

namespace vex2::test {
namespace {

// Names that are too long for the internal buffer of a string, so that copies allocate memory.
constexpr const char* kPlate = "a plate with a name of some length";
constexpr const char* kOther = "another plate with a name of some length";
constexpr const char* kDetector = "a detector with a name of some length";

std::string pathOf(const char* plate) {
  return "C:\\runs\\" + std::string(plate) + ".vex";
}

class StudyOutOfMemory : public TempFolderTest {
 protected:
  void SetUp() override {
    Vex2HeaderData header = plate_.GetHeaderData();
    std::memcpy(header.kindMarker, "Kest", 4);
    plate_.SetHeaderData(header);
    const unsigned short wells[] = {1, 2};
    plate_.InitAcqDataWellNumberArray(wells, 2, DataRAWa);
    Vex2WellRecord record;
    record.leading[0] = 1;
    record.leading[4] = 1000;
    for (auto& value : record.data) value = 5;
    ASSERT_TRUE(plate_.SetAcqDataWellRecord(&record, 0, 1, DataRAWa));
    ASSERT_TRUE(plate_.SetAcqDataWellRecord(&record, 0, 2, DataRAWa));
    ASSERT_EQ(plate_.SaveToFile(path_.c_str()), kSuccess);
    plate_.SetFilePath(pathOf(kPlate).c_str());
    OpenedManager warmUp;  // objects that are made only once must not count as leaked
    makeStudy(warmUp);
    CString date;
    ASSERT_EQ(warmUp.ReadRQPFromFile(nullptr, path_.c_str(), false, date), kSuccess);
  }

  void makeStudy(OpenedManager& study) const {
    Vex2HeaderData header = study.GetHeaderData();
    std::memcpy(header.assayCode, "RQSt", 4);
    study.SetHeaderData(header);
    ASSERT_TRUE(study.AddRQPlate(&plate_, kDate));
    study.AddAnalysisSettingsMap(kPlate, newMap());
    study.SetCtAt(kPlate, kDetector, 21.5F, 1);
  }
  static CAnalysisSettingsMap* newMap() {
    auto* map = new CAnalysisSettingsMap;
    map->SetAt(kDetector, new CAnalysisSettings);
    return map;
  }
  std::function<void(OpenedManager&)> prepareStudy() const {
    return [this](OpenedManager& study) { makeStudy(study); };
  }
  // Requires that `operation` returns true if no allocation fails and if it is repeated after a
  // failure.
  void sweep(const std::function<bool(OpenedManager&)>& operation) const {
    const auto status = [&](OpenedManager& study) { return operation(study) ? 0 : -1; };
    const AllocationSweep sweep{prepareStudy(), status, [&](OpenedManager& study, int result) {
                                  EXPECT_TRUE(result == 0 || operation(study));
                                  EXPECT_EQ(study.GetCtAt(kPlate, kDetector, 1), 21.5F);
                                }};
    EXPECT_GE(sweep.Run(), 1);
  }

  // Made before the sweep, because allocations of the host do not belong to the operation.
  const CString kDate = "Mar 05, 2003 02:07 PM";
  const CString kOtherName = kOther;
  const CString kPlateName = kPlate;
  SilentHost host_;
  Vex2FileManager plate_;
  const std::string path_ = folder_ / "a plate with a name of some length.vex";
};

TEST_F(StudyOutOfMemory, WhileAddingAPlateAddsNone) {
  Vex2FileManager other(plate_);
  other.SetFilePath(pathOf(kOther).c_str());
  const AllocationSweep sweep{
      prepareStudy(),
      [&](OpenedManager& study) { return study.AddRQPlate(&other, kDate) ? 0 : -1; },
      [&](OpenedManager& study, int status) {
        EXPECT_EQ(study.GetRQPlateCount(), status == 0 ? 2 : 1);
        if (status != 0) {
          EXPECT_TRUE(study.AddRQPlate(&other, kDate)) << "the name is still free";
        }
        ASSERT_NE(study.GetSinglePlatePtrByName(kOther), nullptr);
        EXPECT_EQ(study.GetSinglePlatePtrByName(kOther)->GetDataFrameCount(DataRAWa), 1);
      }};
  EXPECT_GE(sweep.Run(), 10);
}

TEST_F(StudyOutOfMemory, WhilePlatesAreListedNamedAndRemovedIsAsIfThereWereNone) {
  sweep([](OpenedManager& study) {
    CStringList names;
    CStringList dates;
    return study.GetMultiPlateList(names, dates) && names.GetCount() == 1;
  });
  sweep([](OpenedManager& study) { return study.GetNumPlates() == 1; });
  sweep([this](OpenedManager& study) {
    return study.AppendPlateName(kOtherName) == kSuccess &&
           study.AppendLastModifiedDate(kDate) == kSuccess;
  });
  sweep([](OpenedManager& study) { return study.InitMultiplate(); });
  sweep([this](OpenedManager& study) { return study.RemoveRQPlate(kPlateName); });
}

TEST_F(StudyOutOfMemory, WhileResultsAreStoredStoresOrRemovesNone) {
  sweep([](OpenedManager& study) { return study.CreateAnalysisStorage(1) == 96; });
  sweep([](OpenedManager& study) {
    IDAMCMatrix* matrix = nullptr;
    study.SyncPlatesWithAnalysisStorageMap();
    return !study.GetMCDataAt(kPlate, matrix, 1);
  });
  sweep([](OpenedManager& study) {
    IDAClippedMatrix* reporter = nullptr;
    study.GetReporterAt(kPlate, reporter, 1, true);
    study.RemoveReporterAt(kPlate, 1, true);
    study.SetMCDataAt(kPlate, nullptr, 1);
    return study.SetReporterAt(kPlate, nullptr, 1, true);
  });
}

TEST_F(StudyOutOfMemory, WhileStorageIsSynchronisedKeepsResults) {
  const AllocationSweep sweep{
      [&](OpenedManager& study) {
        makeStudy(study);
        ASSERT_TRUE(study.SetReporterAt(kPlateName, new IDAClippedMatrix, 1, false));
      },
      [](OpenedManager& study) {
        study.SyncPlatesWithAnalysisStorageMap();
        return 0;
      },
      [this](OpenedManager& study, int) {
        IDAClippedMatrix* found = nullptr;
        EXPECT_TRUE(study.GetReporterAt(kPlateName, found, 1, false));
      }};
  EXPECT_GE(sweep.Run(), 1);
}

TEST_F(StudyOutOfMemory, WhileSettingsAreAskedOrChangedIsAsIfThereWereNone) {
  TAGPROBE probe;
  std::strncpy(probe.name, "a second detector with a long name", sizeof probe.name);
  sweep([](OpenedManager& study) { return study.GetAnalysisSettingsMap(kPlate) != nullptr; });
  sweep([](OpenedManager& study) { return study.IsAnalysisAvailableFor(kPlate, kDetector); });
  sweep([](OpenedManager& study) { return study.GetCtAt(kPlate, kDetector, 1) == 21.5F; });
  sweep([](OpenedManager& study) {
    study.SetCtAt(kPlate, kDetector, 30.0F, 2);
    return study.GetCtAt(kPlate, kDetector, 2) == 30.0F;
  });
  sweep([&](OpenedManager& study) {
    return study.AddDetectorToAnalysisSettingsMap(probe, kPlate) ||
           study.IsAnalysisAvailableFor(kPlate, probe.name);
  });
  sweep([](OpenedManager& study) {
    return study.RemoveDetectorFromAnalysisSettingsMap(kDetector, nullptr) ||
           !study.IsAnalysisAvailableFor(nullptr, kDetector);
  });
}

TEST_F(StudyOutOfMemory, WhileResettingStillDestroysEverything) {
  const AllocationSweep sweep{prepareStudy(), [](OpenedManager& study) { return study.Reset(); },
                              [](OpenedManager& study, int status) {
                                EXPECT_EQ(status, 0);
                                EXPECT_EQ(study.GetAnalysisSettingsMap(kPlate), nullptr);
                                EXPECT_TRUE(study.GetAnalysisSettingsMap(nullptr)->IsEmpty());
                              }};
  EXPECT_EQ(sweep.Run(), 0) << "it takes no memory";
}

TEST_F(StudyOutOfMemory, WhilePlatesAreAskedIsAsIfThereWereNone) {
  sweep([](OpenedManager& study) {
    int wells = 0;
    int largest = 0;
    study.GetPlateDataInfo(wells, largest);
    return wells == 2 && largest == 1;
  });
  sweep([](OpenedManager& study) {
    long size = 0;
    return study.GetPlateInfo(size) == 1 && size == 96;
  });
  sweep([](OpenedManager& study) {
    int frames = 0;
    int start = 0;
    study.FindPCRMeltingParams(kPlate, frames, start);
    return frames == 1 && start == -1;
  });
}

TEST_F(StudyOutOfMemory, WhileASpectrumIsLoadedMarksItAsFailed) {
  const auto load = [](OpenedManager& study, KestorSpectrum& spectrum) {
    spectrum.well = 1;
    return study.LoadSpectrum(&spectrum, kPlate);
  };
  KestorSpectrum spectrum(36);
  const AllocationSweep sweep{[&](OpenedManager& study) {
                                makeStudy(study);
                                spectrum.failed = 0;
                              },
                              [&](OpenedManager& study) { return load(study, spectrum) ? 0 : -1; },
                              [&](OpenedManager& study, int status) {
                                EXPECT_EQ(spectrum.failed, status == 0 ? 0 : 1);
                                EXPECT_TRUE(load(study, spectrum));
                              }};
  EXPECT_GE(sweep.Run(), 1);
}

TEST_F(StudyOutOfMemory, WhileAPlateIsReadFromItsFileIsAFailedRead) {
  const auto read = [this](OpenedManager& plate) {
    CString date;
    return plate.ReadRQPFromFile(nullptr, path_.c_str(), false, date);
  };
  const AllocationSweep sweep{[](OpenedManager&) {}, read,
                              [&](OpenedManager& plate, int status) {
                                EXPECT_TRUE(status == kSuccess || status == kReadFailed) << status;
                                EXPECT_EQ(read(plate), kSuccess);
                                EXPECT_EQ(plate.GetDataFrameCount(DataRAWa), 1);
                              }};
  EXPECT_GE(sweep.Run(), 10);
}

TEST_F(StudyOutOfMemory, WhileAStudyIsReadLeavesAStudyThatCanBeUsed) {
  const std::string path = folder_ / "a study with a name of some length.vex";
  {
    OpenedManager study;
    makeStudy(study);
    ASSERT_EQ(study.SaveToFile(path.c_str()), kSuccess);
  }
  const AllocationSweep sweep{
      [](OpenedManager&) {}, [&](OpenedManager& study) { return study.ReadFromFile(path.c_str()); },
      [&](OpenedManager& study, int) {
        study.SyncPlatesWithAnalysisStorageMap();
        EXPECT_EQ(study.ReadFromFile(path.c_str()), kSuccess);
        EXPECT_NE(study.GetSinglePlatePtrByName(kPlate), nullptr);
      }};
  EXPECT_GE(sweep.Run(), 10);
}

}  // namespace
}  // namespace vex2::test
