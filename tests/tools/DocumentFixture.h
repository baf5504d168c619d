#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "lab/json/Json.h"
#include "lab/model/RunReading.h"
#include "tests/support/Files.h"
#include "tests/support/SampleData.h"
#include "tests/support/TempFolder.h"
#include "tests/tools/VexProcess.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::test {

/// Appends a record to the bytes of a document.
inline void AppendRecord(Bytes& bytes, std::string_view tag, const Bytes& body) {
  const auto put = [&](std::uint8_t byte) { bytes.push_back(byte); };
  for (const char character : tag) put(static_cast<std::uint8_t>(character));
  for (int shift = 24; shift >= 0; shift -= 8) {
    put(static_cast<std::uint8_t>(body.size() >> static_cast<unsigned>(shift) & 0xFFU));
  }
  bytes.insert(bytes.end(), body.begin(), body.end());
}

/// Base of tests that make documents with the library and run commands on them.
class DocumentTest : public TempFolderTest {
 protected:
  static constexpr std::uint16_t kWells = 3;
  /// The lines of the recorder in the log of a run of three frames.
  static constexpr const char* kRunLog = "source=readings\nframes=3\nscale=100\n";
  const std::string path_ = folder_ / "run.vex";

  /// Makes a run of wells A1 to A3 with two amplification frames and one melting frame.
  void MakeRun(const char* status = "DONE", const std::string& log = "scale=100\n") const {
    Vex2FileManager run;
    EXPECT_EQ(run.SetAcquisitionStatus(status), kSuccess);
    Vex2GlobalComplex settings;
    settings.SetLog(log.data(), static_cast<std::uint32_t>(log.size()));
    EXPECT_EQ(run.ReplaceGlobalComplexComp(&settings), kSuccess);
    ASSERT_EQ(run.SaveToFile(path_.c_str()), 0);
    const std::uint16_t wells[kWells] = {1, 2, 3};
    run.InitAcqDataWellNumberArray(wells, kWells, DataRAWa);
    TimeStamp start{{26, 3, 4, 5, 6, 7}};
    run.SetAcqDataStartTime(start, DataRAWa);
    for (std::uint16_t frame = 0; frame < 3; ++frame) {
      for (std::uint16_t well = 1; well <= kWells; ++well) {
        const lab::RunReading reading{
            .cycle = static_cast<std::uint16_t>(frame < 2 ? frame + 1 : 1),
            .temperature = 5982,
            .melting = frame == 2,
            .time = 65536U * frame + 117U,
            .values = {static_cast<std::uint16_t>(100 * well + frame)}};
        const Vex2WellRecord record = lab::EncodeReading(reading, frame == 2);
        ASSERT_TRUE(run.SetAcqDataWellRecord(&record, frame, well, DataRAWa));
      }
      ASSERT_EQ(run.CommitAcqDataFrame(path_.c_str(), frame, DataRAWa), 0);
    }
  }

  /// Makes the run of `MakeRun` with the log of the recorder, so that its readings can be
  /// interpreted.
  void MakeRecordedRun(const char* status = "DONE") const { MakeRun(status, kRunLog); }

  /// Makes a document from the header of an empty document and these bytes.
  void MakeDocument(const Bytes& records) const {
    Vex2FileManager empty;
    ASSERT_EQ(empty.SaveToFile(path_.c_str()), 0);
    Bytes bytes = ReadBytes(path_);
    bytes.insert(bytes.end(), records.begin(), records.end());
    WriteBytes(path_, bytes);
  }

  /// Expects this exit code and one line on standard error that begins with "vex: " and the path of
  /// the document and contains `text`.
  void ExpectRefused(const VexProcess::Arguments& arguments, int exitCode,
                     const std::string& text) const {
    const CommandResult result = RunVex(arguments);
    EXPECT_EQ(result.exitCode, exitCode);
    EXPECT_THAT(result.errors, testing::StartsWith("vex: " + path_ + ": "));
    EXPECT_THAT(result.errors, testing::HasSubstr(text));
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
  }

  /// Returns what the command prints. Expects success and nothing on standard error.
  static std::string Output(const VexProcess::Arguments& arguments) {
    const CommandResult result = RunVex(arguments);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(result.errors, "");
    return result.output;
  }

  static nlohmann::json JsonOutput(const VexProcess::Arguments& arguments) {
    return nlohmann::json::parse(Output(arguments));
  }
  /// Returns the records that `vex tree --json` lists.
  static nlohmann::json TreeOutput(VexProcess::Arguments arguments) {
    arguments.insert(arguments.begin(), {"tree", "--json"});
    nlohmann::json output = JsonOutput(arguments);
    EXPECT_EQ(output["version"], 1);
    return output["records"];
  }
};

}  // namespace vex2::test
