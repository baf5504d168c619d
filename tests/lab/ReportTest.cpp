#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <nlohmann/json.hpp>

#include "lab/Sha256.h"
#include "lab/Text.h"
#include "lab/model/DocumentEditor.h"
#include "lab/picture/Base64.h"
#include "lab/picture/Report.h"
#include "tests/lab/RunDocuments.h"
#include "tests/support/Files.h"

namespace {

using namespace vex2::lab;
using namespace vex2::test;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

std::string digestOf(std::string_view text) {
  Sha256 sum;
  sum.Add(text);
  const Sha256::Digest digest = sum.Finish();
  return ToHex({reinterpret_cast<const char*>(digest.data()), digest.size()});
}

TEST(Sha256, IsThatOfTheStandardsExamples) {
  EXPECT_EQ(digestOf("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(digestOf(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(digestOf("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
  EXPECT_EQ(digestOf(std::string(1'000'000, 'a')),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Base64, IsThatOfTheStandardsExamples) {
  const auto encoded = [](std::string_view text) {
    return Base64(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
  };
  EXPECT_EQ(encoded(""), "");
  EXPECT_EQ(encoded("f"), "Zg==");
  EXPECT_EQ(encoded("fo"), "Zm8=");
  EXPECT_EQ(encoded("foobar"), "Zm9vYmFy");
  EXPECT_EQ(Base64(std::vector<std::uint16_t>{0x3130, 0x3332}), "MDEyMw==");
}

class ReportTest : public TempFolderTest {
 protected:
  json dataOf(const std::vector<std::filesystem::path>& paths) {
    errors_.clear();
    ReportSettings settings;
    settings.program = "vex test";
    settings.onError = [&](const Error& error) { errors_.emplace_back(error.what()); };
    text_ = ReportData(paths, settings);
    return json::parse(text_);
  }
  json plateOf(const std::string& path) { return dataOf({path})["documents"][0]["plates"][0]; }

  const std::string path_ = folder_ / "run.vex";
  std::string text_;
  std::vector<std::string> errors_;
};

TEST_F(ReportTest, HasEveryReadingOfTheRun) {
  Record(SmallRun(3, 2), path_);
  const Readings readings = RunReader(path_).Readings();
  const json packed = plateOf(path_)["readings"];
  EXPECT_EQ(packed["frames"], 5);
  EXPECT_EQ(packed["stages"], "aaamm");
  EXPECT_EQ(packed["cycles"], json({1, 2, 3, 1, 2}));
  EXPECT_TRUE(packed["known"]);
  ASSERT_EQ(packed["curves"].size(), 96U);
  for (std::size_t well = 0; well < 96; ++well) {
    std::vector<std::uint16_t> stored;
    for (std::size_t frame = 0; frame < 5; ++frame) {
      stored.push_back(readings.At(frame, well, 0));
      EXPECT_NEAR(*readings.Fluorescence(frame, well),
                  packed["offset"].get<double>() + stored.back() * packed["step"].get<double>(),
                  1e-9);
    }
    EXPECT_EQ(packed["curves"][well]["well"], well + 1);
    EXPECT_EQ(packed["curves"][well]["values"], Base64(stored));
    EXPECT_FALSE(packed["curves"][well].contains("missing"));
  }
}

TEST_F(ReportTest, NamesFileVersionAndDigest) {
  Record(SmallRun(), path_);
  const json data = dataOf({path_});
  EXPECT_EQ(data["version"], 1);
  EXPECT_EQ(data["program"], "vex test");
  const json& document = data["documents"][0];
  EXPECT_EQ(document["sha256"], Sha256OfFile(path_));
  EXPECT_EQ(document["name"], "run.vex");
  EXPECT_EQ(document["findings"]["errors"], 0);
  EXPECT_EQ(document["records"]["leftOut"], 0);
  EXPECT_EQ(document["records"]["list"].back()["tag"], std::string(kRawReadings));
  EXPECT_THAT(errors_, testing::IsEmpty());
}

TEST_F(ReportTest, MarksWhatMiqeReadersMiss) {
  Record(SmallRun(), path_);
  std::map<std::string, std::string> states;
  const json plate = plateOf(path_);
  for (const json& item : plate["miqe"]) states[item["item"]] = item["state"];
  EXPECT_EQ(states["No-template controls"], "given");
  EXPECT_EQ(states["Quencher, where there is a probe"], "missing");
  EXPECT_EQ(states["Extraction, quantity and quality"], "outside");
}

TEST_F(ReportTest, HasSeveralDocumentsInTheirOrder) {
  Record(SmallRun(), folder_ / "one.vex");
  Record(SmallRun(4), folder_ / "two.vex");
  const json documents = dataOf({folder_ / "two.vex", folder_ / "one.vex"})["documents"];
  ASSERT_EQ(documents.size(), 2U);
  EXPECT_EQ(documents[0]["plates"][0]["name"], "two");
  EXPECT_EQ(documents[1]["plates"][0]["readings"]["frames"], 5);
}

TEST_F(ReportTest, DataOfEntriesAreThoseOfTheDocuments) {
  Record(SmallRun(), folder_ / "one.vex");
  Record(SmallRun(4), folder_ / "two.vex");
  const std::vector<std::filesystem::path> paths = {folder_ / "one.vex", folder_ / "two.vex"};
  ReportSettings settings;
  settings.note = "a \"note\"";
  std::vector<std::string> entries;
  for (const auto& path : paths) entries.push_back(ReportEntry(path, settings));
  const std::string data = ReportDataOf(entries, settings);
  EXPECT_EQ(data, ReportData(paths, settings));
  EXPECT_EQ(json::parse(data)["note"], settings.note);
  EXPECT_TRUE(json::parse(ReportDataOf({}, settings))["documents"].empty());
}

TEST_F(ReportTest, ReportsWhyADocumentCannotBeRead) {
  const json document = dataOf({folder_ / "none.vex"})["documents"][0];
  EXPECT_THAT(document["error"].get<std::string>(), HasSubstr("No such file"));
  ASSERT_EQ(errors_.size(), 1U);
  WriteBytes(folder_ / "text.vex", {'t', 'e', 'x', 't'});
  EXPECT_TRUE(dataOf({folder_ / "text.vex"})["documents"][0].contains("error"));
  EXPECT_EQ(errors_.size(), 1U);
}

TEST_F(ReportTest, ShowsADamagedDocumentInPart) {
  Record(SmallRun(), path_);
  Bytes bytes = ReadBytes(path_);
  bytes.resize(bytes.size() - 100);
  WriteBytes(path_, bytes);
  const json document = dataOf({path_})["documents"][0];
  EXPECT_FALSE(document["faults"].empty());
  EXPECT_EQ(document["plates"].size(), 1U);
  ASSERT_EQ(errors_.size(), 1U);
  EXPECT_THAT(errors_[0], HasSubstr("is shown in part"));
}

TEST_F(ReportTest, OfARunWithoutFramesSaysWhyItHasNoResults) {
  Vex2FileManager empty;
  ASSERT_EQ(empty.SaveToFile(path_.c_str()), 0);
  const json document = dataOf({path_})["documents"][0];
  EXPECT_EQ(document["plates"][0]["readings"]["frames"], 0);
  EXPECT_TRUE(document["plates"][0]["wells"].empty());
  EXPECT_FALSE(document["analysisError"].get<std::string>().empty());
}

TEST_F(ReportTest, ShowsStoredValuesOfOtherRecorders) {
  ForeignRun foreign(path_, 2);
  foreign.Begin();
  foreign.Append();
  const json readings = plateOf(path_)["readings"];
  EXPECT_FALSE(readings["known"]);
  EXPECT_EQ(readings["curves"].size(), 2 * readings["channels"].size());
}

TEST_F(ReportTest, LeavesOutWellsOfTooManyCurvesAndCountsThem) {
  ForeignRun foreign(path_, 2100);
  foreign.Begin();
  foreign.Append();
  const json readings = plateOf(path_)["readings"];
  ASSERT_EQ(readings["channels"].size(), 32U);
  EXPECT_EQ(readings["curves"].size(), 65536U);
  EXPECT_EQ(readings["wellsLeftOut"], 2100 - 2048);
}

TEST_F(ReportTest, WritesNumbersThatAreNoneAsTexts) {
  Record(SmallRun(), path_);
  DocumentEditor editor(path_);
  ASSERT_FALSE(editor.Well("A1").targets.empty());
  editor.Well("A1").targets[0].quantity = std::numeric_limits<float>::infinity();
  editor.Save();
  EXPECT_EQ(plateOf(path_)["wells"][0]["targets"][0]["quantity"], "infinity");
}

TEST(ReportPage, KeepsDataInsideItsScript) {
  const std::string page = ReportPage(R"({"name":"</script><script>alert(1)</script>{{style}}"})");
  EXPECT_THAT(page, Not(HasSubstr("<script>alert")));
  EXPECT_THAT(page, HasSubstr("\\u003c/script>\\u003cscript>alert(1)\\u003c/script>{{style}}"));
  EXPECT_THAT(page, HasSubstr("connect-src 'none'"));
  EXPECT_THAT(page, Not(HasSubstr("src=\"http")));
  EXPECT_THAT(ReportPage("{}", "/events"), HasSubstr("connect-src 'self'"));
}

// A browser runs only the scripts whose digest is in the page's content policy.
TEST(ReportPage, StatesTheDigestOfItsScripts) {
  const std::string page = ReportPage("{}");
  const std::size_t begin = page.rfind("<script>") + 8;
  const std::string script = page.substr(begin, page.rfind("</script>") - begin);
  Sha256 sum;
  sum.Add(script);
  EXPECT_THAT(page, HasSubstr("script-src 'sha256-" + Base64(sum.Finish()) + "';"));
}

}  // namespace
