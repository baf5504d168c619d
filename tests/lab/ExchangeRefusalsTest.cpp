#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "lab/json/WholeJson.h"
#include "lab/rdml/XmlReader.h"
#include "tests/lab/RdmlFiles.h"

namespace {

using namespace vex2::lab;
using namespace vex2::test;
using testing::HasSubstr;

// Tests the error of each import for a file with one fault.
class ExchangeRefusals : public TempFolderTest {
 protected:
  std::string messageOf(const std::string& content, const ImportOptions& options = {}) {
    WriteText(source_, content);
    const Error error = ErrorOf([&] { Import(source_, target_, options); });
    EXPECT_FALSE(std::filesystem::exists(target_)) << "a document was left behind";
    std::filesystem::remove(target_);
    return error.Message();
  }

  struct Change {
    std::string from;
    std::string to;
    std::string message;
  };

  void expectRefusals(const std::string& good, const std::vector<Change>& changes) {
    for (const Change& change : changes) {
      std::string text = good;
      const std::size_t place = text.find(change.from);
      ASSERT_NE(place, std::string::npos) << change.from;
      text.replace(place, change.from.size(), change.to);
      EXPECT_EQ(messageOf(text), change.message);
    }
  }

  std::string json(bool asLines) {
    const std::string run = folder_ / "run.vex";
    if (!std::filesystem::exists(run)) Record(SmallRun(2, 0), run);
    const Document document(run);
    std::ostringstream out;
    WriteWholeJson(out, document, asLines);
    return out.str();
  }

  std::string source_ = folder_ / "in.any";
  std::string target_ = folder_ / "out.vex";
};

TEST_F(ExchangeRefusals, OfJsonNameTheKey) {
  std::string tooManyCells = "\"cells\":[0";
  for (int i = 0; i < 65535; ++i) tooManyCells += ",0";
  expectRefusals(
      json(false),
      {{"\"assay\":\"AbsQ\"", "\"assay\":7", "header.assay: is no text"},
       {"\"assay\":\"AbsQ\"", "\"assay\":\"A\"", "header.assay: does not have 4 characters"},
       {"\"usage\":[4095", "\"usage\":[4095,1", "header.usage: is no array of 8 numbers"},
       {"\"rows\":8", "\"rows\":18446744073709551615",
        "header.rows: is no whole number that a document can hold"},
       {"\"settings\":{", "\"settings\":[],\"x\":{", "settings: is no object"},
       {"\"pre-flag\":0", "\"pre-flags\":0", "settings.pre-flags: is no setting"},
       {"\"program\":\"61", "\"program\":\"6\",\"x\":\"", "program: is not in hexadecimal digits"},
       {"\"program\":\"61", "\"program\":\"xy", "program: is not in hexadecimal digits"},
       {"\"requiredDyes\":[", "\"requiredDyes\":0,\"x\":[", "requiredDyes: is no array"},
       {"\"quantity\":1000000.0,\"used\"", "\"quantity\":\"many\",\"used\"",
        "cells[0].detectors[0].quantity: is no number"},
       {"\"cells\":[", tooManyCells + "],\"x\":[",
        "cells: has more cells than a document can hold"},
       {"\"code\":\"00000000\"", "\"code\":\"000000\"",
        "calibration.pureDyes.code: does not have 4 bytes"},
       {"\"tag\":\"RAWa\"", "\"tag\":\"RAWb\"",
        "blocks[0].tag: is not the tag of a data block, or is there twice"},
       {"\"wells\":[1,2,", "\"wells\":[1,1,", "blocks[0].wells: has a well twice"},
       {"\"frames\":[[[", "\"frames\":[[0,[", "blocks[0].frames[0]: is no array of 96 wells"},
       {"\"frames\":[[[1,", "\"frames\":[[[",
        "blocks[0].frames[0][0]: is no array of 40 numbers"}});
}

TEST_F(ExchangeRefusals, OfJsonLinesNameTheLine) {
  const std::string text = json(true);
  expectRefusals(text,
                 {{"\"version\":1", "\"version\":2", "version: is not 1"},
                  {"{\"plate\":null", "{\"plate\":3", "plate: there is no such plate"},
                  {"\"block\":0", "\"block\":4", "values: there is no such block"},
                  {"\"frame\":1,", "\"frame\":100,", "frame: is not the index of a next frame"}});
  WriteText(source_, text + "{\"plate\":");
  const Error error = ErrorOf([&] { Import(source_, target_); });
  EXPECT_THAT(error.Message(), HasSubstr("line 4, byte 10: is no JSON"));
  WriteText(source_, text + "{\"plate\":11e308}");
  EXPECT_THAT(ErrorOf([&] { Import(source_, target_); }).Message(),
              HasSubstr("line 4: a number is too large to be read"));
}

TEST_F(ExchangeRefusals, OfRdesNameRowAndColumn) {
  const std::string good =
      "Well\tSample\tSample Type\tTarget\tTarget Type\tDye\tCq\t1\t2\n"
      "A1\ts\tunkn\tt\ttoi\tFAM\t\t1\t2\n"
      "A1\ts\tunkn\tu\ttoi\tFAM\t\t1\t2\n";
  expectRefusals(good, {{"Target Type\t", "Kind\t", "row 1, column Target Type: it is not there"},
                        {"\tCq\t", "\tCt\t", "row 1, column Cq: there is neither Cq nor Tm"},
                        {"\ttoi\tFAM", "\tboth\tFAM",
                         "row 2, column Target Type: 'both' is neither toi nor ref"},
                        {"A1\ts\tunkn\tu", "A1\tr\tunkn\tu",
                         "row 3, column Sample: the well has the sample 's' already"},
                        {"A1\t", "?1\t", "row 2, column Well: '?1' is no well"}});
  std::string dyes = good;
  for (int i = 0; i < 17; ++i) {
    dyes += "A1\ts\tunkn\tu\ttoi\tdye " + std::to_string(i) + "\t\t1\t2\n";
  }
  EXPECT_EQ(messageOf(dyes), "it has more dyes in a well than the 16 that a document holds");
}

TEST_F(ExchangeRefusals, OfRdmlNameLineAndElement) {
  ForeignRdml rdml;
  rdml.conditions =
      "<thermalCyclingConditions id=\"c\"><step><nr>1</nr><temperature><temperature>95"
      "</temperature><duration>60</duration></temperature></step></thermalCyclingConditions>";
  expectRefusals(
      rdml.Text(),
      {{"<target id=\"MYC\"><type>toi", "<target id=\"MYC\"><type>other",
        "line 1, element type: 'other' is no type of a target"},
       {"<sample id=\"S2\"", "<sample", "line 1, element sample: it has no id"},
       {"<step><nr>1</nr><temperature>", "<temperature>",
        "line 1, element thermalCyclingConditions: is no well-formed XML: mismatched tag"},
       {"<nr>1</nr>", "<nr/>", "line 1, element nr: the step has no number"},
       {"<rows>8</rows>", "<rows>-8</rows>",
        "line 1, element rows: '-8' is no whole number up to 100000"},
       {"version=\"1.2\"", "version=\"2\"",
        "line 1, element rdml: its version is '2'; 1.0 to 1.3 are read"},
       {"<rows>8</rows><columns>12</columns>", "<rows>99</rows><columns>99</columns>",
        "line 1, element run: a plate of 99 rows and 99 columns does not fit into a document, "
        "which has up to 384 wells"},
       {"<react id=\"14\"", "<react id=\"97\"",
        "element react: well 97 is not on the plate of run 'r1'"}});
}

TEST_F(ExchangeRefusals, OfXmlSayWhatIsRefused) {
  EXPECT_EQ(messageOf("<!DOCTYPE rdml [<!ENTITY a \"ha\">]><rdml version=\"1.2\">&a;</rdml>"),
            "line 1: declares the entity 'a'; files with entities of their own are not read");
  std::string deep = "<rdml version=\"1.2\">";
  for (int i = 0; i < 100; ++i) deep += "<a>";
  EXPECT_THAT(messageOf(deep), HasSubstr("element a: elements nest more than 64 deep"));
  const std::string huge(XmlReader::kMostToken + (1U << 20U), 'a');
  EXPECT_THAT(messageOf("<rdml version=\"1.2\" a=\"" + huge),
              HasSubstr("a tag or an attribute is too long"));
  EXPECT_THAT(messageOf("<rdml version=\"1.2\"><id>" + huge + "</id></rdml>"),
              HasSubstr("element id: a text is too long"));
}

TEST_F(ExchangeRefusals, OfArchivesSayWhatIsWrong) {
  WriteZip(source_, {{"readme.txt", "hello"}, {"more.txt", "hello"}});
  EXPECT_EQ(ErrorOf([&] { Import(source_, target_); }).Message(),
            "is a ZIP archive without RDML: it has no member rdml_data.xml, and none of its 2 "
            "members begins as RDML");
  EXPECT_THAT(messageOf("PK\3\4 but no archive"), HasSubstr("is a damaged ZIP archive: "));
  ZipWriter zip;
  for (std::size_t i = 0; i <= ZipReader::kMostMembers; ++i) {
    zip.Add(std::to_string(i), [](std::string&) { return false; });
  }
  std::ofstream out(source_, std::ios::binary);
  zip.Write(out, source_);
  out.close();
  EXPECT_EQ(ErrorOf([&] { Import(source_, target_); }).Message(),
            "has 10001 members; at most 10000 are read");
}

TEST_F(ExchangeRefusals, OfEmbeddedDocuments) {
  EXPECT_EQ(messageOf(ForeignRdml().Text(), {.embedded = ImportOptions::Embedded::kAlways}),
            "holds no document; import its runs without --embedded");
  WriteZip(source_, {{"rdml_data.xml", ForeignRdml().Text()}, {"vex/document.vex", "hello"}});
  const ImportOptions always{.embedded = ImportOptions::Embedded::kAlways};
  EXPECT_EQ(ErrorOf([&] { Import(source_, target_, always); }).Message(),
            "the document embedded in it is not a plate document");
  EXPECT_FALSE(std::filesystem::exists(target_));
}

TEST_F(ExchangeRefusals, OfFilesWithoutARun) {
  EXPECT_EQ(messageOf("<rdml version=\"1.2\"/>"), "holds no run");
  const ImportOptions table{.format = ImportFormat::kRdes};
  EXPECT_THAT(messageOf("\xEF\xBB\xBFWell\xFF", table), HasSubstr("is no text in UTF-8"));
  WriteText(source_, "Well");
  std::filesystem::resize_file(source_, (256U << 20U) + 1);
  EXPECT_EQ(ErrorOf([&] { Import(source_, target_, table); }).Message(),
            "is a table of more than 268435456 bytes");
}

}  // namespace
