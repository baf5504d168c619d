#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "tests/lab/RdmlFiles.h"

namespace {

using namespace vex2::lab;
using namespace vex2::test;

// Writes random RDML that the schema allows; optional elements are present or missing at random.
// Knows which values a document must hold after the import.
class RdmlGenerator {
 public:
  explicit RdmlGenerator(unsigned seed) : random_(seed), isNew_(seed % 2 == 0) {}

  struct Point {
    int well = 0;
    std::string dye;
    bool melting = false;
    int cycle = 0;  // in a melting: the index of the temperature
    int reading = 0;
  };

  const std::vector<Point>& Points() const { return points_; }
  const char* Version() const { return isNew_ ? "1_3" : "1_2"; }

  std::string Text() {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    if (maybe()) text += "<!-- made by a generator -->\n";
    text += "<r:rdml version=\"" + std::string(isNew_ ? "1.3" : "1.2") +
            "\" xmlns:r=\"http://www.rdml.org\">";
    text += any(leaf("dateMade", "2026-01-02T03:04:05"));
    text += any(leaf("id", leaf("publisher", "p") + leaf("serialNumber", "1")));
    text += any(leaf("experimenter", leaf("firstName", "A") + leaf("lastName", "B"), "x"));
    text += any(leaf("documentation", any(leaf("text", "<![CDATA[a < b & c]]>")), "d"));
    for (const char* dye : {"FAM", "VIC"}) {
      text += leaf("dye", any(leaf("description", "a dye")), dye);
    }
    for (int i = 0; i < 4; ++i) text += sample("sample " + std::to_string(i));
    text += target("MYC", "FAM", "toi") + target("ACT", "VIC", "ref");
    return text + leaf("experiment", any(leaf("description", "e")) + run(), "e") + "</r:rdml>";
  }

 private:
  bool maybe() { return std::bernoulli_distribution(0.5)(random_); }
  int below(int count) { return std::uniform_int_distribution<int>(0, count - 1)(random_); }
  std::string any(const std::string& element) { return maybe() ? element : std::string(); }

  static std::string leaf(const std::string& name, const std::string& content,
                          const std::string& id = {}) {
    return "<r:" + name + (id.empty() ? "" : " id='" + id + "'") + ">" + content + "</r:" + name +
           ">";
  }

  static std::string reference(const std::string& name, const std::string& id) {
    return "<r:" + name + " id='" + id + "'/>";
  }

  std::string sample(const std::string& id) {
    const std::string type = maybe() ? leaf("type", "std") : "<r:type/>";
    std::string text = any(leaf("description", "s")) +
                       any(leaf("annotation", leaf("property", "p") + leaf("value", "v"))) +
                       (isNew_ ? any(type) : type);
    text += any(leaf("interRunCalibrator", "false"));
    text += any(leaf("quantity", leaf("value", "1E3") + leaf("unit", "cop")));
    return leaf("sample", text + any(leaf("calibratorSample", "0")), id);
  }

  std::string target(const std::string& id, const std::string& dye, const std::string& type) {
    return leaf("target",
                any(leaf("description", "t")) + any(leaf("xRef", any(leaf("name", "n")))) +
                    leaf("type", type) + any(leaf("amplificationEfficiency", "1.95")) +
                    any(leaf("detectionLimit", "10")) + reference("dyeId", dye) +
                    any(leaf("commercialAssay", leaf("company", "c") + leaf("orderNumber", "1"))),
                id);
  }

  std::string run() {
    std::string text =
        any(leaf("description", "r")) + any(leaf("instrument", "i")) +
        any(leaf("dataCollectionSoftware", leaf("name", "n") + leaf("version", "1"))) +
        any(leaf("backgroundDeterminationMethod", "b")) + any(leaf("cqDetectionMethod", "other"));
    text += leaf("pcrFormat", leaf("rows", "8") + leaf("columns", "12") + leaf("rowLabel", "ABC") +
                                  leaf("columnLabel", "123"));
    text += any(leaf("runDate", "2026-01-02T03:04:05Z"));
    cycles_ = 1 + below(4);
    temperatures_ = below(4);
    for (int well = 1 + below(3); well <= 96; well += 1 + below(20)) text += react(well);
    return leaf("run", text, "r");
  }

  std::string react(int well) {
    std::string text = reference("sample", "sample " + std::to_string(below(4)));
    if (maybe()) text += data(well, "MYC", "FAM");
    text += data(well, "ACT", "VIC");
    return leaf("react", text, std::to_string(well));
  }

  std::string data(int well, const std::string& target, const std::string& dye) {
    std::string text = reference("tar", target) + any(leaf("cq", "-1.0")) + any(leaf("excl", "e"));
    for (int cycle = 1; cycle <= cycles_; ++cycle) {
      const int reading = below(2000) - 1000;
      text +=
          leaf("adp", leaf("cyc", maybe() ? std::to_string(cycle) : std::to_string(cycle) + ".0") +
                          any(leaf("tmp", "60.5")) + leaf("fluor", std::to_string(reading)));
      points_.push_back({well, dye, false, cycle, reading});
    }
    for (int place = 1; place <= temperatures_; ++place) {
      const int reading = below(1000);
      text += leaf("mdp", leaf("tmp", std::to_string(60 + place)) +
                              leaf("fluor", "\n " + std::to_string(reading) + " "));
      points_.push_back({well, dye, true, place, reading});
    }
    return leaf("data", text + any(leaf("endPt", "5")) + any(leaf("bgFluor", "0.5")));
  }

  std::mt19937 random_;
  bool isNew_;
  int cycles_ = 0;
  int temperatures_ = 0;
  std::vector<Point> points_;
};

class RdmlGenerated : public TempFolderTest {
 protected:
  void expectPoints(const std::vector<RdmlGenerator::Point>& points, const std::string& path) {
    const RunReader run(path);
    const Readings readings = run.Readings();
    const std::vector<std::string> channels = readings.Meaning()->channels;
    std::size_t found = 0;
    for (std::size_t frame = 0; frame < readings.FrameCount(); ++frame) {
      for (std::size_t well = 0; well < readings.WellCount(); ++well) {
        for (std::size_t channel = 0; channel < readings.ChannelCount(); ++channel) {
          found += readings.Fluorescence(frame, well, channel) ? 1 : 0;
        }
      }
    }
    EXPECT_EQ(found, points.size());
    const auto cycles = static_cast<std::size_t>(
        std::count_if(readings.Axis().begin(), readings.Axis().end(),
                      [](const auto& one) { return one.stage != Stage::kMelting; }));
    for (const RdmlGenerator::Point& point : points) {
      const auto wells = run.Wells();
      const auto well = std::find(wells.begin(), wells.end(), point.well) - wells.begin();
      const auto channel = std::find(channels.begin(), channels.end(), point.dye);
      const std::size_t frame =
          static_cast<std::size_t>(point.cycle) - 1 + (point.melting ? cycles : 0);
      ASSERT_EQ(readings.Fluorescence(
                    frame, static_cast<std::size_t>(well),
                    channels.empty() ? 0 : static_cast<std::size_t>(channel - channels.begin())),
                point.reading)
          << "well " << point.well << " cycle " << point.cycle;
    }
  }
};

TEST_F(RdmlGenerated, FilesOfEveryShapeAreValidAndImported) {
  for (unsigned seed = 0; seed < 60; ++seed) {
    SCOPED_TRACE(seed);
    RdmlGenerator generator(seed);
    const std::string source = folder_ / "in.rdml";
    const std::string text = generator.Text();
    WriteText(source, text);
    if (seed < 12 && HasSchemaCheck()) {
      EXPECT_EQ(SchemaFaults(source, generator.Version()), "");
    }
    const ImportReport report = Import(source, folder_ / "out.vex", {.replace = true});
    ASSERT_EQ(report.documents.size(), 1U);
    expectPoints(generator.Points(), report.documents[0].path);
    if (HasFatalFailure()) return;
  }
}

// If the end of a file is missing, the error names the line.
TEST_F(RdmlGenerated, FilesThatAreCutOffAreRefused) {
  RdmlGenerator generator(1);
  const std::string text = generator.Text();
  const std::string source = folder_ / "in.rdml";
  for (std::size_t size = 60; size + 1 < text.size(); size += text.size() / 40) {
    WriteText(source, text.substr(0, size));
    const Error error =
        ErrorOf([&] { Import(source, folder_ / "out.vex", {.format = ImportFormat::kRdml}); });
    EXPECT_THAT(error.Message(), testing::HasSubstr("line ")) << size;
    EXPECT_FALSE(std::filesystem::exists(folder_ / "out.vex"));
  }
}

}  // namespace
