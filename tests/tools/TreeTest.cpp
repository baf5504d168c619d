#include "tests/tools/DocumentFixture.h"

using nlohmann::json;
using testing::HasSubstr;

namespace vex2::test {

class Tree : public DocumentTest {};

TEST_F(Tree, ShowsEveryRecordNestedAsInTheFile) {
  MakeRun();
  const std::string text = Output({"tree", path_});
  EXPECT_THAT(text, HasSubstr("      1024        88  GLBL  run-wide settings  8 records\n"
                              "      1034         4    VERS  version  512\n"));
  EXPECT_THAT(text, HasSubstr("        10    LOGT  log  \"scale=100\\x0a\"\n"));
  EXPECT_THAT(text, HasSubstr("       744  RAWa  raw readings  3 frames of 3 wells\n"));
}

TEST_F(Tree, IsAnObjectWithRecordsForPrograms) {
  MakeRun();
  const json tree = TreeOutput({path_});
  ASSERT_EQ(tree.size(), 2U);
  EXPECT_EQ(tree[0]["tag"], "GLBL");
  EXPECT_EQ(tree[0]["offset"], 1024);
  EXPECT_EQ(tree[0]["length"], 88);
  EXPECT_FALSE(tree[0].contains("value"));
  EXPECT_EQ(tree[0]["children"][0],
            json({{"tag", "VERS"}, {"offset", 1034}, {"length", 4}, {"value", 512}}));
  EXPECT_EQ(tree[0]["children"][7]["value"], "scale=100\n");
  EXPECT_EQ(tree[1]["frames"], 3);
  EXPECT_EQ(tree[1]["wellNumbers"], json({1, 2, 3}));
}

TEST_F(Tree, UnknownRecordsAndOtherBytesAreShownAsSuch) {
  Bytes records;
  AppendRecord(records, "Zzzz", {1, 2, 3});
  AppendRecord(records, "COMM", ToBytes("text"));
  records.insert(records.end(), {'a', 'b', 'c'});
  MakeDocument(records);
  const std::string text = Output({"tree", path_});
  EXPECT_THAT(text, HasSubstr("      1024         3  Zzzz  unknown  010203\n"));
  EXPECT_THAT(text, HasSubstr("      1047         3  bytes that are no record\n"));
  const json tree = TreeOutput({path_});
  ASSERT_EQ(tree.size(), 2U);
  EXPECT_EQ(tree[0]["known"], false);
}

TEST_F(Tree, IsCompleteJsonAlsoWhereTheFileEndsWithinLists) {
  Bytes records;
  AppendRecord(records, "GLBL", {0, 5, 'S', 'P', 'E', 'C', 0, 0, 0, 9, 0, 2});
  MakeDocument(records);
  const CommandResult result = RunVex({"tree", "--json", path_});
  EXPECT_EQ(result.exitCode, 1);
  const json tree = json::parse(result.output)["records"];
  EXPECT_EQ(tree[0]["children"][0]["tag"], "SPEC");
  EXPECT_EQ(tree[0]["children"][0]["children"], json::array());
  const auto error = json::parse(result.errors)["error"];
  EXPECT_EQ(error["offset"], 1034);
  EXPECT_EQ(error["message"],
            "the record \"SPEC\" is cut short: 0 of 2 records are there (10 bytes lost)");
}

TEST_F(Tree, NestingEndsWhereTheReaderEndsIt) {
  const auto nested = [](int depth) {
    Bytes bytes = {0, 0};
    for (int i = 0; i < depth - 1; ++i) {
      Bytes outer = {0, 1};
      AppendRecord(outer, "SPEC", bytes);
      bytes = outer;
    }
    Bytes record;
    AppendRecord(record, "SPEC", bytes);
    return record;
  };
  MakeDocument(nested(64));
  EXPECT_EQ(RunVex({"tree", path_}).exitCode, 0);
  MakeDocument(nested(65));
  ExpectRefused({"tree", path_}, 1, "at byte 1664: records are nested too deep");
  MakeDocument(nested(5000));
  ExpectRefused({"tree", path_}, 1, "records are nested too deep");
}

class TreeOfSamples : public SampleDataTest {
 protected:
  static void expectSame(const json& tree, const json& components, const std::string& where) {
    ASSERT_EQ(tree.size(), components.size()) << where;
    for (std::size_t i = 0; i < tree.size(); ++i) {
      const json& record = tree[i];
      const json& component = components[i];
      const std::string at = where + "/" + component["tag"].get<std::string>();
      EXPECT_EQ(record["tag"], component["tag"]) << at;
      EXPECT_EQ(record["offset"], component["offset"]) << at;
      EXPECT_EQ(record["length"], component["declared"]) << at;
      if (record.contains("value") && component.contains("value") &&
          component["kind"] != "pureDye" && component["kind"] != "background") {
        EXPECT_EQ(record["value"], component["value"]) << at;
        ++values_;
      }
      json children = record.value("children", json::array());
      if (component["kind"] == "plate") children.erase(children.size() - 1);
      expectSame(children, component.value("children", json::array()), at);
    }
  }

  static inline int values_ = 0;
};

TEST_F(TreeOfSamples, AgreeWithWhatTheDocumentsHold) {
  for (auto path : SampleFiles("golden", ".json")) {
    const Bytes text = ReadBytes(path);
    const json sidecar = json::parse(text.begin(), text.end());
    const CommandResult result = RunVex({"tree", "--json", path.replace_extension(".vex")});
    json tree = json::parse(result.output)["records"];
    const json dropped = sidecar.value("dropped", json::array());
    for (const json& unknown : dropped) {
      for (std::size_t i = tree.size(); i-- > 0;) {
        if (tree[i]["offset"] == unknown["offset"]) tree.erase(i);
      }
    }
    expectSame(tree, sidecar["components"], path.stem());
  }
  EXPECT_GT(values_, 500);
}

}  // namespace vex2::test
