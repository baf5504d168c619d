#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "lab/model/DocumentEditor.h"
#include "lab/picture/CellPicture.h"
#include "lab/picture/PlotScene.h"
#include "lab/picture/Shortened.h"
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

TEST(SceneAxis, WritesNumbersWithoutNeedlessSigns) {
  for (const auto& [value, text] : std::vector<std::pair<double, std::string>>{{0, "0"},
                                                                               {-0.0, "0"},
                                                                               {250, "250"},
                                                                               {0.002, "0.002"},
                                                                               {100000, "100000"},
                                                                               {1e6, "1e6"},
                                                                               {-2.5e7, "-2.5e7"},
                                                                               {1e-13, "1e-13"},
                                                                               {5e-5, "5e-5"}}) {
    EXPECT_EQ(TickText(value), text);
  }
}

TEST(SceneAxis, OfTinyReadingsHasTicksThatDiffer) {
  SceneAxis axis;
  FitAxis(axis, {1e-14, 9e-14}, 0);
  std::set<std::string> texts;
  for (const auto& [value, text] : axis.ticks) texts.insert(text);
  EXPECT_EQ(texts.size(), axis.ticks.size());
}

double oneColumn(std::string_view /*character*/) {
  return 1;
}

TEST(Shortened, KeepsBothEndsOfANameThatIsTooLong) {
  EXPECT_EQ(Shortened("patient A", 9, oneColumn, "…"), "patient A");
  EXPECT_EQ(Shortened("patient 2026 A", 9, oneColumn, "…"), "pati…26 A");
  EXPECT_EQ(Shortened("äöüäöüäöü", 4, oneColumn, "…"), "äö…ü");
  EXPECT_EQ(Shortened("name", 0, oneColumn, "…"), "…");
}

std::string textOf(const std::vector<CellRun>& line) {
  std::string text;
  for (const CellRun& part : line) text += part.text;
  return text;
}

std::string textOf(const CellPicture& picture) {
  std::string text;
  for (const auto& line : picture) text += textOf(line) + "\n";
  return text;
}

// A scene with `groups` groups of one curve each.
Scene sceneOfGroups(std::size_t groups) {
  Scene scene;
  scene.legend.title = "sample";
  for (std::size_t i = 0; i < groups; ++i) {
    scene.legend.groups.push_back("sample " + std::to_string(i));
    const auto y = static_cast<double>(i);
    scene.series.push_back(
        {.look = {.group = i, .share = {}}, .isDots = false, .points = {{0, y}, {10, y}}});
  }
  FitAxis(scene.x, {0, 10}, 0);
  FitAxis(scene.y, {0, static_cast<double>(groups)}, 0.05);
  return scene;
}

TEST(CellPicture, DrawsLettersWhereColoursDoNotTellGroupsApart) {
  EXPECT_THAT(textOf(CellsOf(sceneOfGroups(8), {})), HasSubstr("● sample 7"));
  EXPECT_THAT(textOf(CellsOf(sceneOfGroups(1), {.colours = 0})), HasSubstr("● sample 0"));
  for (const auto& [groups, colours] : {std::pair<std::size_t, std::size_t>{9, 8}, {2, 0}}) {
    const std::string text = textOf(CellsOf(sceneOfGroups(groups), {.colours = colours}));
    EXPECT_THAT(text, HasSubstr("b sample 1"));
    EXPECT_THAT(text, HasSubstr("bbbbbbbb"));
    EXPECT_THAT(text, Not(HasSubstr("●")));
  }
}

TEST(CellPicture, GivesEachGroupALetterOfItsOwnAndCountsTheRest) {
  const CellSize size{.width = 200, .height = 60};
  const std::string text = textOf(CellsOf(sceneOfGroups(60), size));
  for (const char* entry : {"a sample 0 ", "z sample 25 ", "A sample 26 ", "Z sample 51 "}) {
    EXPECT_THAT(text, HasSubstr(entry));
  }
  EXPECT_THAT(text, HasSubstr("and 8 more"));
  EXPECT_THAT(text, Not(HasSubstr("sample 52")));
}

TEST(CellPicture, LegendLeavesRoomForTheChart) {
  for (const std::size_t width : {40U, 80U}) {
    Scene scene = sceneOfGroups(200);
    scene.legend.groups[3] = std::string(300, 'x');
    const CellPicture picture = CellsOf(scene, {.width = width, .height = 23});
    EXPECT_LE(picture.size(), 23U);
    for (const auto& line : picture) {
      EXPECT_LE(WidthOfText(textOf(line), oneColumn), static_cast<double>(width)) << textOf(line);
    }
    EXPECT_THAT(textOf(picture), HasSubstr(" more"));
  }
}

TEST(CellPicture, DrawsAScaleInDigitsWithoutColours) {
  Scene scene = sceneOfGroups(2);
  scene.legend = {.title = "Cq", .groups = {}, .low = "15.0", .high = "30.0"};
  scene.series[0].look = {.group = {}, .share = 0};
  scene.series[1].look = {.group = {}, .share = 1};
  const std::string text = textOf(CellsOf(scene, {.colours = 0}));
  EXPECT_THAT(text, HasSubstr("Cq 15.0 0123456789 30.0"));
  EXPECT_THAT(text, HasSubstr("99999"));
  EXPECT_THAT(text, HasSubstr("00000"));
}

TEST(Svg, LegendOfCurvesShowsTheirDashes) {
  const std::string svg = SvgOf(sceneOfGroups(12));
  const std::size_t legend = svg.find(">sample<");
  ASSERT_NE(legend, std::string::npos);
  EXPECT_THAT(svg.substr(legend), HasSubstr("stroke-dasharray=\"7 4\""));
  EXPECT_THAT(svg.substr(legend), Not(HasSubstr("<circle")));
}

TEST(Svg, CutsNamesToTheRoomThatTheyHave) {
  Scene scene = sceneOfGroups(2);
  scene.title = std::string(400, 'W') + ".vex";
  scene.legend.groups[0] = std::string(40, 'W') + "1";
  scene.legend.groups[1] = std::string(40, 'i') + "2";
  const std::string svg = SvgOf(scene);
  EXPECT_THAT(svg, HasSubstr("WWWWW…WWWW1<"));
  EXPECT_THAT(svg, Not(HasSubstr(">WWWWWW…")));
  EXPECT_THAT(svg, HasSubstr("iiiiiiiiiiii…iiiiiiiiiii2<"));
}

// The number of an attribute in the element of `svg` that ends with `end`.
double attributeOf(const std::string& svg, const std::string& end, const std::string& name) {
  const std::size_t at = svg.find(end);
  const std::size_t begin = svg.rfind('<', at - 1);
  return std::stod(svg.substr(svg.find(" " + name + "=\"", begin) + name.size() + 3));
}

// A capital letter is 0.72 of its size high, and stands on its base line.
TEST(Svg, RowLettersAndWellTextsAreInTheMiddleOfTheirRows) {
  for (const unsigned columns : {12U, 24U, 48U}) {
    Scene scene;
    ScenePlate plate{.name = {}, .rows = columns / 3 * 2, .columns = columns, .wells = {}};
    plate.wells.push_back({.row = 2, .column = 0, .look = {.group = 0, .share = {}}, .text = "3x"});
    scene.plates.push_back(plate);
    const std::string svg = SvgOf(scene);
    const double size = attributeOf(svg, ">C</text>", "font-size");
    const double middle = std::stod(svg.substr(svg.find(" cy=\"", svg.rfind("<circle")) + 5));
    EXPECT_NEAR(attributeOf(svg, ">C</text>", "y") - 0.36 * size, middle, 0.02) << columns;
    EXPECT_NEAR(attributeOf(svg, ">3x</text>", "y") - 0.36 * size, middle, 0.02) << columns;
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

TEST_F(PlotTest, LogarithmsHaveNoDotsOfNoise) {
  for (const PlotKind kind : {PlotKind::kAmplification, PlotKind::kMelt}) {
    const Scene scene = sceneOf({.kind = kind, .wells = {}, .isLog = true});
    double most = 0;
    for (const SceneSeries& series : scene.series) {
      EXPECT_GT(series.points.size(), 1U);
      for (const ScenePoint& point : series.points) most = std::max(most, point.y);
    }
    EXPECT_GE(scene.y.low, most / 1001);
    EXPECT_GE(scene.y.ticks.size(), 3U);
  }
}

TEST_F(PlotTest, TextsOfADocumentDoNotReachATerminalAsControls) {
  DocumentEditor editor(path_);
  editor.Well("A1").sample = "red\x1b[31m";
  editor.Well("A2").sample = "bell\x07\n";
  editor.Save();
  for (const PlotKind kind : {PlotKind::kPlate, PlotKind::kAmplification}) {
    const Scene scene =
        sceneOf({.kind = kind, .wells = "A1:A2", .isLog = false, .colourBy = ColourBy::kSample});
    EXPECT_THAT(scene.legend.groups,
                testing::UnorderedElementsAre("red\\x1b[31m", "bell\\x07\\x0a"));
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
