#pragma once

#include <filesystem>

#include "tests/tools/DocumentFixture.h"

namespace vex2::test {

using nlohmann::json;

/// Base of tests with two plates and a study.
class StudyTest : public DocumentTest {
 protected:
  void SetUp() override {
    makePlate(plate1_, "first");
    makePlate(plate2_, "second");
  }

  static void makePlate(const std::string& path, const std::string& comment,
                        const char* type = "p9C ", const char* kind = "Kest") {
    Vex2FileManager plate;
    Vex2HeaderData header;
    std::copy_n(type, 4, header.plateTypeCode);
    std::copy_n(kind, 4, header.kindMarker);
    plate.SetHeaderData(header);
    Vex2GlobalComplex settings;
    settings.SetComment(comment.data(), static_cast<std::uint32_t>(comment.size()));
    settings.SetLog(kRunLog, static_cast<std::uint32_t>(std::string_view(kRunLog).size()));
    EXPECT_EQ(plate.ReplaceGlobalComplexComp(&settings), kSuccess);
    const std::uint16_t wells[] = {1, 2};
    plate.InitAcqDataWellNumberArray(wells, 2, DataRAWa);
    const Vex2WellRecord record = lab::EncodeReading({.cycle = 1, .values = {77}}, false);
    for (int well = 1; well <= 2; ++well) plate.SetAcqDataWellRecord(&record, 0, well, DataRAWa);
    ASSERT_EQ(plate.SaveToFile(path.c_str()), 0);
  }

  void makeStudy() { Output({"study", "new", study_, plate1_, plate2_}); }

  json plates() { return JsonOutput({"study", "list", "--json", study_})["plates"]; }

  /// Expects that the command refuses `file` and leaves the study unchanged.
  void expectStudyRefuses(const VexProcess::Arguments& arguments, const std::string& file,
                          int exitCode, const std::string& text) {
    const bool isThere = std::filesystem::exists(study_);
    const Bytes before = isThere ? ReadBytes(study_) : Bytes();
    const CommandResult result = RunVex(arguments);
    EXPECT_EQ(result.exitCode, exitCode);
    EXPECT_THAT(result.errors, testing::StartsWith("vex: " + file + ": "));
    EXPECT_THAT(result.errors, testing::HasSubstr(text));
    EXPECT_EQ(result.output, "");
    ASSERT_EQ(std::filesystem::exists(study_), isThere);
    if (isThere) {
      EXPECT_EQ(FirstDifference(ReadBytes(study_), before), "");
    }
  }

  /// The records of a document or of a plate, without their offsets and without the name, date and
  /// end of a plate.
  static json content(json records) {
    json kept = json::array();
    for (json& record : records) {
      if (record["tag"] == "Path" || record["tag"] == "RQPD" || record["tag"] == "EOPl") continue;
      record.erase("offset");
      if (record.contains("children")) record["children"] = content(record["children"]);
      kept.push_back(record);
    }
    return kept;
  }

  const std::string study_ = folder_ / "study.vex";
  const std::string plate1_ = folder_ / "plate1.vex";
  const std::string plate2_ = folder_ / "plate2.vex";
};

}  // namespace vex2::test
