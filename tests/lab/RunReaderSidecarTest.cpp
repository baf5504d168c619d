// Compares RunReader with the sidecar file of each sample document, which was made without this
// library.

#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "lab/model/RunReader.h"
#include "tests/support/Files.h"
#include "tests/support/SampleData.h"

namespace {

using namespace vex2::lab;
using namespace vex2::test;
using nlohmann::json;

// The first component with this tag, or null.
const json* find(const json& components, const std::string& tag) {
  for (const json& each : components) {
    if (each["tag"] == tag) return &each;
  }
  return nullptr;
}

std::string textIn(const json& component, const std::string& tag) {
  const json* found = find(component["children"], tag);
  return found != nullptr ? found->value("value", "") : "";
}

std::string trimmed(std::string text) {
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

class SidecarRunTest : public SampleDataTest {
 protected:
  void expectHeader(const RunReader& run, const json& header) {
    EXPECT_EQ(run.AssayCode(), trimmed(header["assayCode"]));
    EXPECT_EQ(run.KindCode(), trimmed(header["kindMarker"]));
    EXPECT_EQ(run.StatusCode(), trimmed(header["acquisitionStatus"]));
    EXPECT_EQ(run.Plate().type, trimmed(header["plateTypeCode"]));
  }

  // RunReader returns the first data block with a tag.
  void expectBlock(const RunReader& run, const json& block) {
    const std::string tag = block["tag"];
    const auto wells = block["wellNumbers"].get<std::vector<std::uint16_t>>();
    const json& frames = block["frames"];
    ASSERT_EQ(run.Wells(tag), wells);
    ASSERT_EQ(run.FrameCount(tag), frames.size());
    const Readings readings = run.Readings(tag);
    for (std::size_t frame = 0; frame < frames.size(); ++frame) {
      const Frame single = run.Frame(frame, tag);
      for (std::size_t well = 0; well < wells.size(); ++well) {
        std::vector<std::uint16_t> stored = frames[frame][well];
        const auto values = readings.Values(frame, well);
        std::vector<std::uint16_t> read(single.wells[well].leading.begin(),
                                        single.wells[well].leading.end());
        read.insert(read.end(), values.begin(), values.end());
        ASSERT_EQ(read, stored) << "frame " << frame << " well " << well;
        ++recordCount_;
      }
    }
  }

  void expectDetectors(const RunReader& run, const json& list) {
    ASSERT_EQ(run.Detectors().size(), list["children"].size());
    for (std::size_t i = 0; i < run.Detectors().size(); ++i) {
      const json& stored = list["children"][i];
      const Detector& detector = run.Detectors()[i];
      EXPECT_EQ(detector.name, textIn(stored, "DETN"));
      EXPECT_EQ(detector.reporterDye, textIn(stored, "DYER"));
      EXPECT_EQ(detector.quencherDye, textIn(stored, "DYEQ"));
      EXPECT_EQ(detector.comment, textIn(stored, "COMT"));
      ++detectorCount_;
    }
  }

  void expectWells(const RunReader& run, const json& setup) {
    ASSERT_EQ(run.Plate().wells.size(), setup["children"].size());
    for (const json& cell : setup["children"]) {
      const unsigned row = cell["coord1"];
      const unsigned column = cell["coord2"];
      const auto number = static_cast<std::uint16_t>(row * run.Plate().columns + column + 1);
      const Well* well = run.Plate().Find(number);
      ASSERT_NE(well, nullptr);
      EXPECT_EQ(well->sample, textIn(cell, "NAME"));
      std::size_t target = 0;
      for (const json& child : cell["children"]) {
        if (child["tag"] != "DETT") continue;
        ASSERT_LT(target, well->targets.size());
        EXPECT_EQ(well->targets[target].detector, textIn(child, "DNAM"));
        EXPECT_EQ(well->targets[target++].task, textIn(child, "TASK"));
      }
      EXPECT_EQ(well->targets.size(), target);
      ++wellCount_;
    }
  }

  std::size_t recordCount_ = 0;
  std::size_t detectorCount_ = 0;
  std::size_t wellCount_ = 0;
};

TEST_F(SidecarRunTest, HoldsTheValuesThatTheReaderGives) {
  for (const auto& path : SampleFiles("golden", ".json")) {
    SCOPED_TRACE(path);
    const json expected = json::parse(std::ifstream(path));
    const RunReader run(std::filesystem::path(path).replace_extension(".vex"));
    expectHeader(run, expected["header"]);
    std::set<std::string> seen;
    for (const json& component : expected["components"]) {
      const std::string kind = component["kind"];
      const std::string tag = component["tag"];
      if (!seen.insert(tag).second) continue;
      if (kind == "data") expectBlock(run, component);
      if (tag == "DETL") expectDetectors(run, component);
      if (tag == "CELS") expectWells(run, component);
      if (tag == "TPro") {
        ASSERT_TRUE(run.Program());
        EXPECT_EQ(run.Program()->bytes.size(), component["value"].get<std::string>().size() / 2);
      }
    }
  }
  EXPECT_GT(recordCount_, 1000U);
  EXPECT_GT(detectorCount_, 3U);
  EXPECT_GT(wellCount_, 90U);
}

}  // namespace
