#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "lab/model/DocumentEditor.h"
#include "lab/picture/CellPicture.h"
#include "lab/picture/PlotScene.h"
#include "lab/picture/WellSelection.h"
#include "tests/lab/RunDocuments.h"

namespace {

using namespace vex2::lab;
using namespace vex2::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

Plate plateOf96() {
  Plate plate;
  plate.rows = 8;
  plate.columns = 12;
  return plate;
}

TEST(WellSelection, NamesWellsAndRectangles) {
  EXPECT_THAT(WellSelection("").On(plateOf96()), testing::IsEmpty());
  EXPECT_THAT(WellSelection("A1").On(plateOf96()), ElementsAre(1));
  EXPECT_THAT(WellSelection("A1:B2,h12").On(plateOf96()), ElementsAre(1, 2, 13, 14, 96));
  EXPECT_THAT(WellSelection("B2:A1").On(plateOf96()), ElementsAre(1, 2, 13, 14));
}

TEST(WellSelection, RefusesWellsThatThePlateLacks) {
  for (const char* text : {"A13", "I1", "A1:", ",", "x"}) {
    EXPECT_THROW(WellSelection(text).On(plateOf96()), Error) << text;
  }
}

TEST(SceneAxis, HoldsItsValuesAndHasTicksWithin) {
  SceneAxis axis;
  FitAxis(axis, {0.3, 7.9}, 0.05);
  EXPECT_LT(axis.low, 0.3);
  EXPECT_GT(axis.high, 7.9);
  EXPECT_GE(axis.ticks.size(), 4U);
  for (const auto& [value, text] : axis.ticks) {
    EXPECT_GE(axis.ShareOf(value), 0);
    EXPECT_LE(axis.ShareOf(value), 1);
  }
}

TEST(SceneAxis, OfOneValueOrNoneStillHasALength) {
  for (const std::vector<double>& values : {std::vector<double>{}, std::vector<double>{5.0}}) {
    for (const bool isLog : {false, true}) {
      SceneAxis axis;
      axis.isLog = isLog;
      FitAxis(axis, values, 0);
      EXPECT_LT(axis.low, axis.high);
      EXPECT_TRUE(std::isfinite(axis.ShareOf(5)));
    }
  }
}

class PlotTest : public TempFolderTest {
 protected:
  PlotTest() { Record(SmallRun(40, 60), path_); }

  Scene sceneOf(PlotOptions options) const { return SceneOf(RunReader(path_), options); }

  const std::string path_ = folder_ / "run.vex";
};

TEST_F(PlotTest, HasACurveForEachWell) {
  const Scene all = sceneOf({});
  EXPECT_EQ(all.series.size(), 96U);
  EXPECT_EQ(all.series[0].points.size(), 40U);
  EXPECT_EQ(all.legend.groups.size(), 8U);
  const Scene some = sceneOf({.kind = PlotKind::kMelt, .wells = "A1:B2"});
  EXPECT_EQ(some.series.size(), 4U);
  EXPECT_EQ(some.legend.groups.size(), 2U);
}

TEST_F(PlotTest, BreaksCurvesWhereThereIsNoLogarithm) {
  for (const SceneSeries& series : sceneOf({.wells = {}, .isLog = true}).series) {
    for (const ScenePoint& point : series.points) EXPECT_GT(point.y, 0);
    for (std::size_t i = 1; i < series.points.size(); ++i) {
      EXPECT_EQ(series.points[i].x, series.points[i - 1].x + 1);
    }
  }
}

TEST_F(PlotTest, DrawsAThresholdThatAllWellsShare) {
  EXPECT_EQ(sceneOf({.wells = "A1:A12"}).rules.size(), 1U);
  EXPECT_EQ(sceneOf({}).rules.size(), 0U);
}

TEST_F(PlotTest, EveryKindIsDrawnAsSvgAndInATerminal) {
  for (const PlotKind kind : {PlotKind::kAmplification, PlotKind::kMelt, PlotKind::kSpectrum,
                              PlotKind::kPlate, PlotKind::kStandard}) {
    for (const ColourBy colourBy :
         {ColourBy::kDetector, ColourBy::kSample, ColourBy::kTask, ColourBy::kCq}) {
      const Scene scene =
          sceneOf({.kind = kind, .wells = {}, .isLog = false, .colourBy = colourBy});
      const std::string svg = SvgOf(scene);
      EXPECT_THAT(svg, testing::StartsWith("<svg "));
      EXPECT_THAT(svg, testing::EndsWith("</svg>\n"));
      EXPECT_THAT(svg, Not(HasSubstr("nan")));
      EXPECT_THAT(svg, Not(HasSubstr("inf\"")));
      for (const bool isAscii : {false, true}) {
        for (const auto& line : CellsOf(scene, {.width = 80, .height = 24, .isAscii = isAscii})) {
          std::string text;
          for (const CellRun& part : line) text += part.text;
          const auto columns = std::count_if(text.begin(), text.end(), [](char character) {
            return (static_cast<unsigned char>(character) & 0xC0U) != 0x80;
          });
          EXPECT_LE(columns, 80) << text;
          if (isAscii) {
            EXPECT_TRUE(std::all_of(text.begin(), text.end(), [](char c) { return c > 0; }))
                << text;
          }
        }
      }
    }
  }
}

TEST_F(PlotTest, TextsOfADocumentDoNotBecomeMarkup) {
  DocumentEditor editor(path_);
  editor.Well("A1").sample = "<script>\"&'</script>";
  editor.Save();
  const std::string svg = PlotSvg(
      RunReader(path_),
      {.kind = PlotKind::kPlate, .wells = "A1", .isLog = false, .colourBy = ColourBy::kSample});
  EXPECT_THAT(svg, HasSubstr("&lt;script&gt;&quot;&amp;'"));
  EXPECT_THAT(svg, Not(HasSubstr("<script")));
}

TEST(PlotOfBadInput, SaysWhyThereIsNothingToDraw) {
  const TempFolder folder;
  const std::string path = folder / "run.vex";
  Vex2FileManager empty;
  ASSERT_EQ(empty.SaveToFile(path.c_str()), 0);
  const RunReader run(path);
  for (const PlotKind kind :
       {PlotKind::kAmplification, PlotKind::kMelt, PlotKind::kSpectrum, PlotKind::kStandard}) {
    try {
      static_cast<void>(PlotSvg(run, {.kind = kind, .wells = {}}));
      ADD_FAILURE() << "drawn";
    } catch (const Error& error) {
      EXPECT_EQ(error.Class(), ErrorClass::kDocument);
      EXPECT_EQ(error.File(), path);
    }
  }
}

TEST(PlotOfBadInput, OneFrameHasNoCurveButAPoint) {
  const TempFolder folder;
  const std::string path = folder / "run.vex";
  Record(SmallRun(1, 0), path);
  try {
    const std::string svg = PlotSvg(RunReader(path), {});
    EXPECT_THAT(svg, Not(HasSubstr("nan")));
  } catch (const Error& error) {
    EXPECT_EQ(error.Class(), ErrorClass::kDocument);
  }
}

}  // namespace
