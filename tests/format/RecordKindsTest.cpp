#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>
#include <string>

#include "tests/support/SampleData.h"
#include "vex2/format/RecordKinds.h"

namespace vex2::test {
namespace {

// The rows of the tag table in docs/format.md. Each line of the table holds two kinds.
std::map<int, std::string> documentedTags() {
  std::ifstream document(SourcePath("docs/format.md"));
  const std::regex cell("\\| (\\d+) \\| `(.{4})` \\|");
  std::map<int, std::string> tags;
  for (std::string line; std::getline(document, line);) {
    for (std::sregex_iterator each(line.begin(), line.end(), cell), end; each != end; ++each) {
      tags[std::stoi((*each)[1])] = (*each)[2];
    }
  }
  return tags;
}

TEST(RecordKinds, EveryRowIsInTheFormatDocument) {
  const auto tags = documentedTags();
  ASSERT_EQ(tags.size(), kRecordKinds.size());
  for (const auto& [row, tag] : tags) EXPECT_EQ(TagAt(row), tag) << row;
}

TEST(RecordKinds, LookupFindsTheLaterRowOfARepeatedTag) {
  EXPECT_EQ(FindTagIndex(TagOf(Kind::kCellDescription)), static_cast<int>(Kind::kDescription));
  for (const RecordKind& kind : kRecordKinds) {
    if (kind.kind == Kind::kCellDescription) continue;
    EXPECT_EQ(FindTagIndex(kind.tag), static_cast<int>(kind.kind)) << kind.tag;
  }
}

TEST(RecordKinds, TagWithoutAClassIsUnknown) {
  EXPECT_FALSE(IsKnownTag(TagOf(Kind::kMaxDyesPerWell)));
  EXPECT_EQ(KindOf(TagOf(Kind::kMaxDyesPerWell)).layout, BodyLayout::kUnknown);
  EXPECT_FALSE(IsKnownTag("ABCD"));
  EXPECT_FALSE(IsKnownTag("glbl"));
}

TEST(RecordKinds, EveryKindThatIsWrittenInsideAListNamesAKnownLayout) {
  for (const RecordKind& kind : kRecordKinds) {
    if (kind.homes == kNowhere) continue;
    EXPECT_NE(kind.layout, BodyLayout::kUnknown) << kind.tag;
  }
}

}  // namespace
}  // namespace vex2::test
