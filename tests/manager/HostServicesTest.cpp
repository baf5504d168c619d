#include <gtest/gtest.h>

#include "tests/support/RecordingHost.h"
#include "vex2/manager/FileChooser.h"
#include "vex2/manager/RegistryFlag.h"

namespace {

using namespace std::string_literals;

class Chooser : public testing::Test {
 protected:
  bool choose(const char* initialName = nullptr, const char* initialFolder = nullptr) {
    return ChooseDocumentFile(&owner_, path_, folder_, "Text\0*.txt\0", initialName, "txt",
                              initialFolder, "Pick", 1);
  }

  vex2::test::RecordingHost host_;
  CWnd owner_;
  CString path_ = "before";
  CString folder_ = "before";
};

TEST_F(Chooser, CancelledEmptiesThePathAndLeavesTheFolder) {
  EXPECT_FALSE(choose());
  EXPECT_EQ(path_, "");
  EXPECT_EQ(folder_, "before");
}

TEST_F(Chooser, PassesItsArgumentsToTheHost) {
  choose("run.txt", "/home");
  ASSERT_EQ(host_.chooserRequests.size(), 1U);
  const auto& request = host_.chooserRequests[0];
  EXPECT_EQ(request.owner, &owner_);
  EXPECT_EQ(request.title, "Pick");
  EXPECT_EQ(request.filter, "Text\0*.txt\0\0"s);
  EXPECT_EQ(request.defaultExtension, "txt");
  EXPECT_EQ(request.initialName, "run.txt");
  EXPECT_EQ(request.initialFolder, "/home");
}

TEST_F(Chooser, TakesTheFirst260CharactersOfTheInitialName) {
  choose(std::string(300, 'n').c_str());
  EXPECT_EQ(host_.chooserRequests[0].initialName, std::string(260, 'n'));
}

TEST_F(Chooser, GivesTheFolderWithItsSeparator) {
  host_.choice = vex2::ChooserResult{"C:\\data\\run1.vex", "run1.vex"};
  EXPECT_TRUE(choose());
  EXPECT_EQ(path_, "C:\\data\\run1.vex");
  EXPECT_EQ(folder_, "C:\\data\\");
}

TEST_F(Chooser, ReturnsNoFolderForATitleWithoutOne) {
  for (const auto* title : {"", "run1.vex", "other"}) {
    host_.choice = vex2::ChooserResult{"run1.vex", title};
    EXPECT_TRUE(choose());
    EXPECT_EQ(folder_, "before") << title;
  }
}

class RegistryFlag : public testing::Test {
 protected:
  vex2::test::RecordingHost host_;
};

TEST_F(RegistryFlag, AsksForTheProductsKey) {
  ReadRegistryFlag(true, "Blue LED Array Illumination", 0, nullptr);
  ReadRegistryFlag(false, "Other", 0, "Sub\\Key");
  using Query = vex2::test::RecordingHost::SettingQuery;
  EXPECT_EQ(host_.settingQueries,
            (std::vector<Query>{
                {true, "Software\\Orbanet Scientific\\Vex2", "Blue LED Array Illumination"},
                {false, "Software\\Orbanet Scientific\\Vex2\\Sub\\Key", "Other"}}));
}

TEST_F(RegistryFlag, IsFalseWithoutTheKey) {
  EXPECT_FALSE(ReadRegistryFlag(true, "Flag", 0, nullptr));
  EXPECT_FALSE(ReadRegistryFlag(true, "Flag", 1, nullptr));
}

TEST_F(RegistryFlag, IsWhetherTheNumberIsNotZero) {
  host_.setting = 0U;
  EXPECT_FALSE(ReadRegistryFlag(true, "Flag", 1, nullptr));
  host_.setting = 0x80000000U;
  EXPECT_TRUE(ReadRegistryFlag(true, "Flag", 0, nullptr));
}

TEST_F(RegistryFlag, MissingValueOfAKeyCountsAsTheDefault) {
  host_.setting = vex2::NoValue();
  EXPECT_FALSE(ReadRegistryFlag(true, "Flag", 0, nullptr));
  EXPECT_TRUE(ReadRegistryFlag(true, "Flag", 1, nullptr));
}

TEST_F(RegistryFlag, AValueOfAnotherTypeCountsAsTheDefault) {
  host_.setting = "1"s;
  EXPECT_FALSE(ReadRegistryFlag(true, "Flag", 0, nullptr));
  EXPECT_TRUE(ReadRegistryFlag(true, "Flag", 1, nullptr));
}

}  // namespace
