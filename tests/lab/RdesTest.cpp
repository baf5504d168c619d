#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "lab/import/Import.h"
#include "lab/rdml/Rdes.h"
#include "tests/lab/ErrorOf.h"
#include "tests/lab/RunDocuments.h"
#include "tests/support/Files.h"
#include "tests/support/SampleData.h"

namespace {

using namespace vex2::lab;
using namespace vex2::test;
using testing::ElementsAre;
using testing::HasSubstr;

class Rdes : public TempFolderTest {
 protected:
  ImportReport import(const std::string& table) {
    WriteBytes(table_, ToBytes(table));
    return Import(table_, path_, {.replace = true});
  }

  static std::string tableOf(const std::string& path, bool melting, Losses& losses) {
    const Document document(path);
    const PlateSource source = SourceOf(document.Itself());
    std::ostringstream out;
    WriteRdes(out, source, melting, true, losses);
    return out.str();
  }

  std::string table_ = folder_ / "run.tsv";
  std::string path_ = folder_ / "run.vex";
};

TEST_F(Rdes, TableOfAnotherProgramBecomesADocument) {
  const ImportReport report = import(
      "Well\tSample\tSample Type\tTarget\tTarget Type\tDye\tCq\t1\t3\t5\n"
      "A1\tgDNA\tstd\tMYC\ttoi\tFAM\t-1.0\t10.5\t11\t12\r\n"
      "A1\tgDNA\tstd\tACT\tref\tVIC\t\t20\t\t22\n"
      "B12\tnone\tntc\tMYC\ttoi\tFAM\t\t1\t2\t-3\n");
  const RunReader run(path_);
  EXPECT_TRUE(run.IsWhole());
  EXPECT_THAT(run.Wells(), ElementsAre(1, 24));
  const Readings readings = run.Readings();
  EXPECT_THAT(readings.Meaning()->channels, ElementsAre("FAM", "VIC"));
  EXPECT_EQ(readings.Axis()[1].cycle, 3);
  EXPECT_EQ(readings.Fluorescence(0, 0, 0), 10.5);
  EXPECT_EQ(readings.Fluorescence(1, 0, 1), std::nullopt);
  EXPECT_EQ(readings.Fluorescence(2, 1, 0), -3.0);
  EXPECT_EQ(run.Plate().Find("B12")->targets[0].task, "NTC");
  ASSERT_EQ(report.losses.List().size(), 1U);
  EXPECT_EQ(report.losses.List()[0].what, "quantification cycles (Cq)");
}

TEST_F(Rdes, ExportOfARunComesBack) {
  const std::string original = folder_ / "original.vex";
  Record(SmallRun(5, 4), original);
  const Readings before = RunReader(original).Readings();
  for (const bool melting : {false, true}) {
    Losses losses;
    import(tableOf(original, melting, losses));
    const Readings after = RunReader(path_).Readings();
    const std::size_t first = melting ? 5 : 0;
    ASSERT_EQ(after.FrameCount(), melting ? 4U : 5U);
    for (std::size_t frame = 0; frame < after.FrameCount(); ++frame) {
      for (std::size_t well = 0; well < 96; ++well) {
        ASSERT_EQ(after.Fluorescence(frame, well), before.Fluorescence(first + frame, well));
      }
      if (!melting) continue;
      EXPECT_EQ(after.Axis()[frame].temperature, before.Axis()[first + frame].temperature);
    }
    const Well one = *RunReader(original).Plate().Find("B3");
    const Well other = *RunReader(path_).Plate().Find("B3");
    EXPECT_EQ(one.sample, other.sample);
    EXPECT_EQ(one.targets[0].detector, other.targets[0].detector);
    EXPECT_EQ(one.targets[0].task, other.targets[0].task);
    EXPECT_EQ(one.targets[0].reporter, other.targets[0].reporter);
    std::string listed;
    for (const Loss& loss : losses.List()) listed += loss.what + ";";
    EXPECT_THAT(listed, HasSubstr("times of readings;"));
    EXPECT_THAT(listed, HasSubstr("quantities;"));
  }
}

TEST_F(Rdes, ErrorsNameRowAndColumn) {
  const std::string head = "Well\tSample\tSample Type\tTarget\tTarget Type\tDye\tCq\t1\t2\n";
  const auto messageOf = [&](const std::string& table) {
    return ErrorOf([&] { import(table); }).Message();
  };
  EXPECT_EQ(messageOf(head + "A1\ts\tunkn\tt\ttoi\tFAM\t\tx\t2\n"),
            "row 2, column 8: 'x' is no reading from -1e12 to 1e12");
  EXPECT_EQ(messageOf(head + "A1\ts\tblank\tt\ttoi\tFAM\t\t1\t2\n"),
            "row 2, column Sample Type: 'blank' is no type of a sample");
  EXPECT_EQ(messageOf(head + "?\ts\tunkn\tt\ttoi\tFAM\t\t1\t2\n"),
            "row 2, column Well: '?' is no well");
  EXPECT_EQ(messageOf("Well\tSample\tSample Type\tTarget\tTarget Type\tDye\tCq\t1.5\n"),
            "row 1, column 8: '1.5' is no cycle from 1 to 65535");
  EXPECT_EQ(messageOf(head + "A1\ts\tunkn\tt\ttoi\tFAM\t\t1\t2\t3\n"),
            "row 2, column 10: row 1 has no such column");
}

}  // namespace
