#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "lab/compare/Diff.h"
#include "lab/exchange/PlateSource.h"
#include "lab/exchange/WideReadings.h"
#include "lab/json/WholeJson.h"
#include "tests/lab/ErrorOf.h"
#include "tests/lab/RunDocuments.h"
#include "tests/support/SampleData.h"

namespace {

using namespace vex2::lab;
using namespace vex2::test;
using testing::HasSubstr;

class WholeJson : public TempFolderTest {
 protected:
  static std::string jsonOf(const std::string& path, bool asLines, Losses& losses) {
    const Document document(path);
    std::ostringstream out;
    losses = WriteWholeJson(out, document, asLines);
    return out.str();
  }

  void read(const std::string& json) {
    DocumentFile document;
    ReadWholeJson(json, "in.json", document);
    ASSERT_EQ(document.SaveToFile(back_.c_str()), 0);
  }

  // The differences between a document and the document that is made from its JSON.
  std::string differencesOf(const std::string& path, bool asLines) {
    Losses losses;
    read(jsonOf(path, asLines, losses));
    std::string text;
    for (const Difference& one : Diff(path, back_)) text += TextOf(one) + "\n";
    return text;
  }

  std::string run_ = folder_ / "run.vex";
  std::string back_ = folder_ / "back.vex";
};

TEST_F(WholeJson, RunComesBackInBothForms) {
  Record(SmallRun(), run_);
  EXPECT_EQ(differencesOf(run_, false), "");
  EXPECT_EQ(differencesOf(run_, true), "");
}

TEST_F(WholeJson, SamplesComeBackWithTheirValues) {
  for (const char* name : {"01-empty-96", "03-run-96", "04-readings-384", "06-plate-setup"}) {
    const auto path = SampleFolder() / "golden" / (std::string(name) + ".vex");
    if (SampleFolder().empty()) GTEST_SKIP() << "there are no samples";
    Losses losses;
    read(jsonOf(path, false, losses));
    const auto differences = Diff(path, back_, {.records = false});
    for (const Difference& one : differences) ADD_FAILURE() << name << ": " << TextOf(one);
  }
}

TEST_F(WholeJson, ErrorsNameThePlace) {
  Record(SmallRun(), run_);
  Losses losses;
  const std::string json = jsonOf(run_, false, losses);
  const auto messageOf = [&](const std::string& from, const std::string& to) {
    std::string changed = json;
    changed.replace(changed.find(from), from.size(), to);
    return ErrorOf([&] { read(changed); }).Message();
  };
  EXPECT_EQ(messageOf("\"rows\":8", "\"rows\":-8"),
            "header.rows: is no whole number that a document can hold");
  EXPECT_EQ(messageOf("\"rows\":8", "\"lines\":8"), "header: it has no \"rows\"");
  EXPECT_THAT(messageOf("\"header\":{", "\"header\":{{"), HasSubstr("line 1, byte "));
  EXPECT_THAT(ErrorOf([&] { read(std::string(100'000, '[')); }).Message(),
              HasSubstr("nests more than 32 deep"));
}

TEST_F(WholeJson, WideTableHasARowForEachFrame) {
  Record(SmallRun(2, 1), run_);
  const Document document(run_);
  const PlateSource source = SourceOf(document.Itself());
  std::ostringstream out;
  Losses losses;
  WriteWideReadings(out, source, losses);
  const std::string text = out.str();
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 4);
  EXPECT_EQ(text.substr(0, text.find(",A4")), "stage,cycle,time_s,temperature_c,A1,A2,A3");
  const Readings readings = RunReader(run_).Readings();
  const std::string row = text.substr(text.find('\n') + 1);
  EXPECT_THAT(row, HasSubstr("," + PlainText(*readings.Fluorescence(0, 0)) + "," +
                             PlainText(*readings.Fluorescence(0, 1)) + ","));
}

}  // namespace
