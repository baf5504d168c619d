#include <gtest/gtest.h>

#include "vex2/manager/SplitPath.h"

namespace vex2::test {
namespace {

struct Parts {
  bool found;
  CString folder, title, extension;
};

Parts split(const char* path) {
  Parts parts{};
  parts.folder = parts.title = parts.extension = "before";
  parts.found = SplitPath(path, parts.folder, parts.title, parts.extension);
  return parts;
}

TEST(SplitPath, TitleIsTheNameWithoutItsLastExtension) {
  const Parts parts = split("C:\\runs\\plate.7.vex");
  EXPECT_TRUE(parts.found);
  EXPECT_EQ(parts.folder, "C:\\runs");
  EXPECT_EQ(parts.title, "plate.7");
  EXPECT_EQ(parts.extension, "vex");
}

TEST(SplitPath, SlashSeparatesToo) {
  const Parts parts = split("/runs/plate7.vex");
  EXPECT_EQ(parts.folder, "/runs");
  EXPECT_EQ(parts.title, "plate7");
}

TEST(SplitPath, LastSeparatorOfEitherKindCounts) {
  EXPECT_EQ(split("/runs\\plate7.vex").title, "plate7");
  EXPECT_EQ(split("C:\\runs/plate7.vex").title, "plate7");
}

TEST(SplitPath, NameWithoutFolderIsNoName) {
  for (const char* path : {"plate7.vex", "\\plate7.vex", "/plate7.vex", ""}) {
    const Parts parts = split(path);
    EXPECT_FALSE(parts.found) << path;
    EXPECT_EQ(parts.folder, "") << path;
    EXPECT_EQ(parts.title, "") << path;
    EXPECT_EQ(parts.extension, "") << path;
  }
}

TEST(SplitPath, NameWithoutExtensionHasNoTitle) {
  for (const char* path : {"C:\\runs\\plate7", "C:\\runs\\.vex"}) {
    const Parts parts = split(path);
    EXPECT_TRUE(parts.found) << path;
    EXPECT_EQ(parts.folder, "C:\\runs") << path;
    EXPECT_EQ(parts.title, "") << path;
    EXPECT_EQ(parts.extension, "") << path;
  }
}

TEST(SplitPath, FolderOfOneCharacterIsNoFolderButNames) {
  const Parts parts = split("a\\plate7.vex");
  EXPECT_TRUE(parts.found);
  EXPECT_EQ(parts.folder, "");
  EXPECT_EQ(parts.title, "plate7");
  EXPECT_TRUE(split("runs\\").found);
  EXPECT_EQ(split("runs\\").title, "");
}

TEST(SplitPath, PathMayBeOneOfTheTextsThatAreSet) {
  Parts parts{};
  for (CString* path : {&parts.folder, &parts.title, &parts.extension}) {
    *path = "C:\\runs\\plate7.vex";
    EXPECT_TRUE(SplitPath(*path, parts.folder, parts.title, parts.extension));
    EXPECT_EQ(parts.folder, "C:\\runs");
    EXPECT_EQ(parts.title, "plate7");
    EXPECT_EQ(parts.extension, "vex");
  }
}

}  // namespace
}  // namespace vex2::test
