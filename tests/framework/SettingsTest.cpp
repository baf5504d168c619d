// Tests the settings files of the console host.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <random>
#include <string>
#include <vector>

#include "tests/support/Files.h"
#include "tests/support/TempFolder.h"
#include "vex2/framework/ConsoleHost.h"

namespace vex2::test {
namespace {

constexpr const char* kKey = "Software\\Orbanet Scientific\\Vex2";

Setting number(std::uint32_t value) {
  return value;
}
Setting noValue() {
  return NoValue();
}
Setting text(std::string value) {
  return value;
}

class SettingsTest : public TempFolderTest {
 protected:
  // Returns the value of "Name" in a file with this content.
  Setting find(const std::string& content) {
    WriteBytes(file_, ToBytes(content));
    return FindSetting({&file_, 1}, kKey, "Name");
  }
  // Returns the value of "Name" in a file with this line in the right section.
  Setting findLine(const std::string& line) {
    return find("[Software\\Orbanet Scientific\\Vex2]\n" + line);
  }

  const std::string file_ = folder_ / "settings.ini";
};

TEST_F(SettingsTest, NumbersAreDecimalOrHexadecimal) {
  EXPECT_EQ(findLine("Name = 123"), number(123));
  EXPECT_EQ(findLine("Name=0x10\n"), number(16));
  EXPECT_EQ(findLine("  Name\t=\t0XfF  \r\n"), number(255));
  EXPECT_EQ(findLine("Name = 4294967295"), number(4294967295));
}

TEST_F(SettingsTest, OtherValuesAreText) {
  EXPECT_EQ(findLine("Name = \"123\""), text("123"));
  EXPECT_EQ(findLine("Name = \" a b \" "), text(" a b "));
  EXPECT_EQ(findLine("Name = C:\\data"), text("C:\\data"));
  EXPECT_EQ(findLine("Name = 4294967296"), text("4294967296"));
  EXPECT_EQ(findLine("Name = -1"), text("-1"));
  EXPECT_EQ(findLine("Name = 12 apples"), text("12 apples"));
  EXPECT_EQ(findLine("Name = 0x"), text("0x"));
  EXPECT_EQ(findLine("Name = \""), text("\""));
  EXPECT_EQ(findLine("Name = a=b"), text("a=b"));
  EXPECT_EQ(findLine("Name ="), text(""));
}

TEST_F(SettingsTest, OnlyTheSectionOfTheKeyCounts) {
  EXPECT_EQ(find("Name = 1\n"), Setting());
  EXPECT_EQ(find("[Software\\Orbanet Scientific]\nName = 1\n"), Setting());
  EXPECT_EQ(find("[Software\\Orbanet Scientific\\Vex2\\Sub]\nName = 1\n"), Setting());
  EXPECT_EQ(find("[Software\\Orbanet Scientific\\Vex2x\nName = 1\n"), Setting());
  EXPECT_EQ(find("[a]\nName=1\n[ Software\\Orbanet Scientific\\Vex2 ]\n[]\nName=2\n"), noValue());
  EXPECT_EQ(find("[a]\nName=1\n[software\\orbanet scientific\\vex2]\nNAME=2\n"), number(2));
}

TEST_F(SettingsTest, SectionWithoutTheNameIsAKeyWithoutTheValue) {
  EXPECT_EQ(findLine(""), noValue());
  EXPECT_EQ(findLine("Other = 1\n"), noValue());
  EXPECT_EQ(findLine("Other = 1\n[b]\nName = 1\n"), noValue());
  EXPECT_EQ(find("[software\\orbanet scientific\\vex2]"), noValue());
}

TEST_F(SettingsTest, CommentsAndOtherLinesAreSkipped) {
  EXPECT_EQ(findLine("; Name = 1\n# Name = 2\nName\n= 3\n\nName = 4\n"), number(4));
  EXPECT_EQ(find("\xEF\xBB\xBF[Software\\Orbanet Scientific\\Vex2]\nName = 5\n"), number(5));
}

TEST_F(SettingsTest, FirstLineThatFitsIsTaken) {
  EXPECT_EQ(findLine("Name = 1\nName = 2\n[Software\\Orbanet Scientific\\Vex2]\nName = 3\n"),
            number(1));
}

TEST_F(SettingsTest, FirstFileThatHasTheSettingIsTaken) {
  const std::string section = std::string("[") + kKey + "]\n";
  const std::vector<std::string> files = {folder_ / "absent", folder_ / "first", folder_ / "last"};
  WriteBytes(files[1], ToBytes(section + "A = 1\n"));
  WriteBytes(files[2], ToBytes(section + "A = 2\nB = 3\n"));
  EXPECT_EQ(FindSetting(files, kKey, "A"), number(1));
  EXPECT_EQ(FindSetting(files, kKey, "B"), number(3));
  EXPECT_EQ(FindSetting(files, kKey, "C"), noValue());
  EXPECT_EQ(FindSetting(files, "Other", "A"), Setting());
  EXPECT_EQ(FindSetting({}, kKey, "A"), Setting());
}

TEST_F(SettingsTest, WhatIsNoRegularFileHasNoSettings) {
  const std::string pipe = folder_ / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const std::vector<std::string> files = {pipe, folder_.Path().string(), "/dev/zero", ""};
  EXPECT_EQ(FindSetting(files, kKey, "Name"), Setting());
}

TEST_F(SettingsTest, HugeLinesDoNotHideOthersAndBytesPastTheLimitDoNotCount) {
  EXPECT_EQ(findLine(std::string(500000, 'x') + "\nName = 1\n"), number(1));
  EXPECT_EQ(findLine("Name = 1\n" + std::string(3 * kSettingsFileLimit, '[')), number(1));
  EXPECT_EQ(findLine(std::string(kSettingsFileLimit, '\n') + "Name = 1\n"), noValue());
}

TEST_F(SettingsTest, BinaryContentDoesNoHarm) {
  std::mt19937 random(4711);
  for (int round = 0; round < 200; ++round) {
    Bytes noise(round * 7);
    for (auto& byte : noise) byte = static_cast<std::uint8_t>("[]=;\n\"\0\xFFNa 0x"[random() % 13]);
    WriteBytes(file_, noise);
    EXPECT_EQ(FindSetting({&file_, 1}, kKey, "Name"), Setting());
  }
  EXPECT_EQ(findLine(std::string("\0\xFF\nName = 6\n\0", 13)), number(6));
}

class SettingsFilesTest : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"XDG_CONFIG_HOME", "HOME"}) {
      const char* const value = getenv(name);
      before_.emplace_back(name, value != nullptr ? value : "");
    }
  }
  void TearDown() override {
    for (const auto& [name, value] : before_) {
      value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
    }
  }

 private:
  std::vector<std::pair<std::string, std::string>> before_;
};

TEST_F(SettingsFilesTest, UsersIsInTheConfigurationFolder) {
  setenv("HOME", "/home/ada", 1);
  setenv("XDG_CONFIG_HOME", "/home/ada/conf", 1);
  EXPECT_EQ(SettingsFiles(false), std::vector<std::string>{"/home/ada/conf/vex2/settings.ini"});
  setenv("XDG_CONFIG_HOME", "relative", 1);
  EXPECT_EQ(SettingsFiles(false), std::vector<std::string>{"/home/ada/.config/vex2/settings.ini"});
  unsetenv("XDG_CONFIG_HOME");
  EXPECT_EQ(SettingsFiles(false), std::vector<std::string>{"/home/ada/.config/vex2/settings.ini"});
}

TEST_F(SettingsFilesTest, MachinesComesBeforeTheUsers) {
  setenv("XDG_CONFIG_HOME", "/conf", 1);
  EXPECT_EQ(SettingsFiles(true),
            (std::vector<std::string>{"/etc/vex2/settings.ini", "/conf/vex2/settings.ini"}));
}

TEST_F(SettingsFilesTest, UserWithoutAHomeHasNone) {
  unsetenv("HOME");
  unsetenv("XDG_CONFIG_HOME");
  EXPECT_TRUE(SettingsFiles(false).empty());
  EXPECT_EQ(SettingsFiles(true).size(), 1U);
}

}  // namespace
}  // namespace vex2::test
