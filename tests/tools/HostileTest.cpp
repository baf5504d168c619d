#include "tests/tools/DocumentFixture.h"

namespace vex2::test {

/// Runs each command on malicious files. Each must end with one of its exit codes and not crash.
class Hostile : public DocumentTest {
 protected:
  void expectEveryCommandEnds() const {
    const std::string copy = folder_ / "copy.vex";
    std::filesystem::remove(copy);
    const std::vector<std::vector<std::string>> calls = {{"info", path_},
                                                         {"info", "--json", path_},
                                                         {"tree", path_},
                                                         {"tree", "--json", path_},
                                                         {"frame", path_, "0"},
                                                         {"export", path_},
                                                         {"copy", path_, copy},
                                                         {"status", path_},
                                                         {"set", path_, "--dry-run", "comment=x"}};
    for (const auto& call : calls) {
      const CommandResult result = RunVex(call);
      EXPECT_EQ(result.endSignal, 0) << call.front();
      EXPECT_THAT(result.exitCode, testing::AnyOf(0, 1, 2)) << call.front() << result.errors;
      if (result.exitCode != 0) {
        EXPECT_THAT(result.errors, testing::HasSubstr(path_)) << call.front();
      }
      if (call[1] == "--json" && !result.output.empty()) {
        EXPECT_TRUE(nlohmann::json::accept(result.output)) << call.front();
      }
    }
  }
};

TEST_F(Hostile, DocumentsCutAtEveryOffset) {
  MakeRun();
  const Bytes whole = ReadBytes(path_);
  for (std::size_t size = 0; size < whole.size(); size += size < 1020 || size > 1140 ? 97 : 5) {
    WriteBytes(path_, Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
    expectEveryCommandEnds();
    if (HasFailure()) FAIL() << "cut to " << size << " bytes";
  }
}

TEST_F(Hostile, BytesThatAreNotWhatTheyWere) {
  MakeRun();
  const Bytes whole = ReadBytes(path_);
  // Offsets in the header, in the head of the settings and in the head of the data block.
  const std::size_t places[] = {0,    20,   22,   68,   71,   1024, 1028, 1031, 1032, 1033,
                                1038, 1120, 1124, 1127, 1128, 1130, 1131, 1144, 1145};
  for (const std::size_t place : places) {
    Bytes bytes = whole;
    bytes[place] = 0xFF;
    WriteBytes(path_, bytes);
    expectEveryCommandEnds();
    if (HasFailure()) FAIL() << "byte " << place;
  }
}

TEST_F(Hostile, RowsOfTheLargestPlate) {
  MakeDocument(Bytes(300000, 0xFF));
  Bytes bytes = ReadBytes(path_);
  bytes[20] = bytes[21] = 0xFF;
  WriteBytes(path_, bytes);
  expectEveryCommandEnds();
}

TEST_F(Hostile, OwnDocumentsOfTheTests) {
  for (const auto& document : std::filesystem::directory_iterator(SourcePath("tests/data"))) {
    if (document.path().extension() != ".vex") continue;
    WriteBytes(path_, ReadBytes(document.path()));
    expectEveryCommandEnds();
  }
}

}  // namespace vex2::test
