#include "tests/tools/DocumentFixture.h"

namespace vex2::test {

class StatusCommand : public DocumentTest {};

TEST_F(StatusCommand, PrintsTheStatus) {
  MakeRun("PROG");
  EXPECT_EQ(Output({"status", path_}), "PROG\n");
}

TEST_F(StatusCommand, SetsItInPlaceAndNothingElse) {
  MakeRun("PROG");
  Bytes expected = ReadBytes(path_);
  EXPECT_EQ(Output({"status", path_, "DONE"}), "PROG -> DONE\n");
  std::copy_n("DONE", 4, expected.begin() + 64);
  EXPECT_EQ(FirstDifference(ReadBytes(path_), expected), "");
}

TEST_F(StatusCommand, RefusesWhatIsNotFourPlainCharacters) {
  MakeRun("PROG");
  const Bytes before = ReadBytes(path_);
  for (const char* code : {"", "DON", "DONE ", "D\nNE",
                           "\xc3\xa4"
                           "ab"}) {
    ExpectRefused({"status", path_, code}, 2, "is not four plain characters");
  }
  EXPECT_EQ(FirstDifference(ReadBytes(path_), before), "");
}

TEST_F(StatusCommand, RefusesADocumentWithoutRoomForOne) {
  WriteBytes(path_, ToBytes("Vex2" + std::string(60, ' ')));
  ExpectRefused({"status", path_, "DONE"}, 1, "at byte 64: the header is cut short");
}

TEST_F(StatusCommand, RefusesADocumentThatMayNotBeWritten) {
  MakeRun();
  std::filesystem::permissions(path_, std::filesystem::perms::owner_read);
  ExpectRefused({"status", path_, "ZERO"}, 2, "Permission denied");
}

}  // namespace vex2::test
