#include "tests/tools/DocumentFixture.h"

using testing::HasSubstr;
using testing::Not;

namespace vex2::test {

class TreeSelected : public DocumentTest {};

TEST_F(TreeSelected, DepthLeavesOutRecordsThatAreNestedDeeper) {
  MakeRun();
  const std::string all = Output({"tree", path_});
  const std::string top = Output({"tree", path_, "--depth", "1"});
  EXPECT_THAT(all, HasSubstr("LOGT"));
  EXPECT_THAT(top, HasSubstr("GLBL"));
  EXPECT_THAT(top, HasSubstr("RAWa"));
  EXPECT_THAT(top, Not(HasSubstr("LOGT")));
  const auto tree = TreeOutput({path_, "--depth", "1"});
  ASSERT_EQ(tree.size(), 2U);
  EXPECT_FALSE(tree[0].contains("children"));
  EXPECT_EQ(TreeOutput({path_, "--depth", "64"}), TreeOutput({path_}));
}

TEST_F(TreeSelected, OnlyShowsRecordsOfATagWithWhatIsInThem) {
  MakeRun();
  const auto whole = TreeOutput({path_});
  const auto only = TreeOutput({path_, "--only", "GLBL"});
  ASSERT_EQ(only.size(), 1U);
  EXPECT_EQ(only[0], whole[0]);
  const std::string inner = whole[0]["children"][0]["tag"];
  const auto nested = TreeOutput({path_, "--only", inner});
  ASSERT_GE(nested.size(), 1U);
  EXPECT_EQ(nested[0], whole[0]["children"][0]);
  EXPECT_THAT(Output({"tree", path_, "--only", "RAWa"}), Not(HasSubstr("GLBL")));
  EXPECT_FALSE(TreeOutput({path_, "--only", "GLBL", "--depth", "1"})[0].contains("children"));
}

TEST_F(TreeSelected, OnlyWithAMissingTagIsRefused) {
  MakeRun();
  ExpectRefused({"tree", path_, "--only", "glbl"}, 2,
                "it has no record \"glbl\"; did you mean 'GLBL'?");
}

TEST_F(TreeSelected, DepthOutOfRangeIsRefused) {
  MakeRun();
  for (const char* depth : {"0", "65", "-1", "deep"}) {
    EXPECT_EQ(RunVex({"tree", path_, "--depth", depth}).exitCode, 2) << depth;
  }
}

}  // namespace vex2::test
