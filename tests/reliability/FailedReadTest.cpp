// Tests that a read that fails, or for which memory runs out, returns a status, and that the
// manager can still be used. An append that fails leaves the file unchanged.
#include "tests/reliability/RunOnDisk.h"
#include "tests/reliability/Works.h"

namespace vex2::test {
namespace {

constexpr int kNoMemory = FaultyFileSystem::kNoMemory;

std::vector<Work> readers() {
  return {{"ReadFromFile", [](auto& it, const char* path) { return it.ReadFromFile(path); }},
          {"ReadComponentFile",
           [](auto& it, const char* path) {
             if (it.SafeOpen(path, 0, 0) == 0) return static_cast<int>(kReadFailed);
             const int status = it.ReadComponentFile(nullptr);
             it.Abort();
             return status;
           }},
          {"ReadRQPFromFile",
           [](auto& it, const char* path) {
             CString date;
             return it.ReadRQPFromFile(nullptr, path, false, date);
           }},
          {"ReadDataFrame",
           [](auto& it, const char* path) {
             Vex2FrameData frame;
             return it.ReadDataFrame(path, 1, &frame, DataRAWa);
           }},
          {"GetDataFrameCount", [](auto& it, const char* path) {
             int count = 0;
             return it.GetDataFrameCount(path, count, DataRAWa);
           }}};
}

class FailedCalls : public RunOnDisk {
 protected:
  // Writes documents of every kind, large enough for several reads. Returns their paths.
  std::vector<std::string> documents() {
    std::vector<std::string> paths;
    const auto save = [&](const char* name, auto write) {
      paths.push_back(folder_ / name);
      EXPECT_EQ(write(paths.back().c_str()), kSuccess);
    };
    OpenedManager plate;
    FillDocument(plate);
    save("setup.vex", [&](const char* path) { return plate.SaveSetupInfo(path); });
    save("calibration.vex", [&](const char* path) { return plate.SaveCalibrationInfo(path); });
    Vex2GlobalComplex settings;
    const std::string log(600'000, 'l');
    settings.SetLog(log.data(), static_cast<int>(log.size()));
    EXPECT_EQ(plate.ReplaceGlobalComplexComp(&settings), kSuccess);
    for (int i = 0; i < 3; ++i) {
      const Vex2FrameData frame = MakeFrame(96, i);
      EXPECT_EQ(plate.AppendAcquisitionDataFrame(nullptr, &frame, DataRAWa), kReadFailed);
    }
    save("plate.vex", [&](const char* path) { return plate.SaveToFile(path); });
    Vex2FileManager study;
    MakeStudy(study);
    plate.SetFilePath("large.vex");
    study.AddRQPlate(&plate, "date");
    save("study.vex", [&](const char* path) { return study.SaveToFile(path); });
    return paths;
  }

  FaultyFileSystem files_;
};

TEST_F(FailedCalls, WhileReadingAreAStatusAndTheManagerCanBeUsedOn) {
  files_.SkipSyncs();
  SweepResult result{.promise = "a read fails, memory runs out",
                     .sweep = "each system call of reading documents of four kinds"};
  NewFailures failures;
  int refusals = 0;
  for (const std::string& path : documents()) {
    for (const Work& reader : readers()) {
      for (const int error : {EIO, kNoMemory}) {
        for (const bool fromThenOn : {false, true}) {
          for (int call = 0;; ++call) {
            SCOPED_TRACE(reader.name + " of " + path + " call " + std::to_string(call));
            Vex2FileManager manager;
            files_.Restart();
            const int expected = reader.run(manager, path.c_str());
            const std::string tags = TagsOf(manager);
            files_.Restart();
            files_.FailCall(call, error, fromThenOn);
            const int status = reader.run(manager, path.c_str());
            const bool failed = files_.HasFailed();
            files_.Restart();
            EXPECT_FALSE(manager.IsOpen());
            // If no call failed, the reader must return the expected status.
            EXPECT_TRUE(failed || status == expected) << status;
            EXPECT_LE(status, 0);
            if (status != expected) ++refusals;
            EXPECT_EQ(reader.run(manager, path.c_str()), expected);
            EXPECT_EQ(TagsOf(manager), tags);
            const bool isBad = failures.Any();
            if (!failed) break;
            ++result.points;
            ++result.states;
            if (isBad) ++result.bad;
          }
        }
      }
    }
  }
  EXPECT_GE(refusals, 200);
  ReportSweep(result);
}

TEST_F(FailedCalls, WhileAppendingLeaveTheFileAndCanBeRepeated) {
  SweepResult result{.promise = "a read fails, memory runs out",
                     .sweep = "each system call of appending components"};
  NewFailures failures;
  for (const Work& appender : Appenders()) {
    for (const int error : {EIO, ENOSPC, kNoMemory}) {
      for (int call = 0;; ++call) {
        SCOPED_TRACE(appender.name + " call " + std::to_string(call));
        files_.Restart();
        files_.SkipSyncs();
        WriteBytes(path_, documentOf(0));
        Vex2FileManager manager;
        FillDocument(manager);
        files_.Restart();
        files_.FailCall(call, error);
        const int status = appender.run(manager, path_.c_str());
        const bool failed = files_.HasFailed();
        files_.Restart();
        EXPECT_FALSE(manager.IsOpen());
        if (!failed) {
          EXPECT_EQ(status, kSuccess);
          break;
        }
        ++result.points;
        ++result.states;
        if (status != kSuccess) {
          EXPECT_EQ(status, kWriteFailed);
          EXPECT_EQ(FirstDifference(ReadBytes(path_), documentOf(0)), "");
          EXPECT_EQ(appender.run(manager, path_.c_str()), kSuccess);
          Vex2FileManager reader;
          EXPECT_EQ(reader.ReadFromFile(path_.c_str()), kSuccess);
          EXPECT_EQ(reader.GetAllComponentCount(), 1);
        }
        if (failures.Any()) ++result.bad;
      }
    }
  }
  EXPECT_GE(result.points, 5U * 3 * 4);
  ReportSweep(result);
}

}  // namespace
}  // namespace vex2::test
