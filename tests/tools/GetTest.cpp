#include "lab/json/JsonPath.h"
#include "tests/tools/DocumentFixture.h"

using testing::AllOf;
using testing::HasSubstr;

namespace vex2::test {

class Get : public DocumentTest {};

TEST_F(Get, PrintsTheBareValue) {
  MakeRun();
  Output({"set", path_, "comment=second series", "sample-volume=25"});
  EXPECT_EQ(Output({"get", path_, "settings.comment"}), "second series\n");
  EXPECT_EQ(Output({"get", path_, "settings.sample-volume"}), "25\n");
  EXPECT_EQ(Output({"get", path_, "settings.sample_volume"}), "25\n");
  EXPECT_EQ(Output({"get", path_, "status"}), "DONE\n");
  EXPECT_EQ(Output({"get", path_, "plate.wells_in_use"}), "96\n");
  EXPECT_EQ(Output({"get", path_, "blocks[0].frames"}), "3\n");
  EXPECT_EQ(Output({"get", path_, "blocks[RAWa].frames"}), "3\n");
  EXPECT_EQ(Output({"get", path_, "programSize"}), "\n") << "a value that is not given";
}

TEST_F(Get, PrintsJsonWhenAsked) {
  MakeRun();
  Output({"set", path_, "comment=a \"series\""});
  EXPECT_EQ(Output({"get", path_, "settings.comment", "--json"}), "\"a \\\"series\\\"\"\n");
  EXPECT_EQ(JsonOutput({"get", path_, "blocks[0]"})["tag"], "RAWa");
  EXPECT_EQ(Output({"get", path_, "programSize", "--json"}), "null\n");
}

TEST_F(Get, ReachesWellsDetectorsDyesAndRecords) {
  MakeRun();
  const std::string wells = folder_ / "wells.csv";
  WriteBytes(wells, ToBytes("well,sample,target,task,quantity,reporter\n"
                            "A1,liver,MYC,UNKN,,FAM\nB2,kidney,MYC,STND,1000,FAM\n"));
  Output({"wells", path_, "--from", wells});
  EXPECT_EQ(Output({"get", path_, "wells[A1].sample"}), "liver\n");
  EXPECT_EQ(Output({"get", path_, "wells[A01].sample"}), "liver\n");
  EXPECT_EQ(Output({"get", path_, "wells[b2].detectors[MYC].quantity"}), "1000\n");
  EXPECT_EQ(Output({"get", path_, "detectors[MYC].reporter"}), "FAM\n");
  EXPECT_EQ(Output({"get", path_, "dyes[0]"}), "FAM\n");
  EXPECT_EQ(Output({"get", path_, "tree[RAWa].frames"}), "3\n");
}

TEST_F(Get, NamesTheExistingPaths) {
  MakeRun();
  ExpectRefused({"get", path_, "statsu"}, 2, "it has no value 'statsu'; did you mean 'status'?");
  ExpectRefused({"get", path_, "plate.row"}, 2, "did you mean 'plate.rows'?");
  ExpectRefused({"get", path_, "plate.xyz"}, 2,
                "'plate.xyz'; there are plate.type, plate.rows, plate.columns, plate.wellsInUse");
  ExpectRefused({"get", path_, "blocks[4]"}, 2, "there are blocks[RAWa]");
  ExpectRefused({"get", path_, "status.more"}, 2, "'status' holds no others");
  EXPECT_EQ(RunVex({"get", path_, ""}).exitCode, 2);
  ExpectRefused({"get", path_, "blocks["}, 2, "it has no value 'blocks['");
}

TEST(ValuePath, AnIndexIsTakenAfterANameOfDigits) {
  const nlohmann::ordered_json root = {
      {"plates", {{{"name", "1"}, {"frames", 7}}, {{"name", "b"}, {"frames", 8}}}}};
  EXPECT_EQ(*lab::FindValue(root, "plates[1].frames").value, 7);
  EXPECT_EQ(*lab::FindValue(root, "plates[0].frames").value, 7);
  EXPECT_EQ(*lab::FindValue(root, "plates[B].frames").value, 8);
  EXPECT_EQ(lab::FindValue(root, "plates[2]").value, nullptr);
  EXPECT_EQ(lab::FindValue(root, "plates[99999999999999999999]").value, nullptr);
}

}  // namespace vex2::test
