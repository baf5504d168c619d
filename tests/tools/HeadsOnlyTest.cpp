// Commands that show no readings do not read them.

#include <string_view>

#include "tests/support/DocumentBytes.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/tools/DocumentFixture.h"
#include "tools/vex/Errors.h"
#include "tools/vex/command/CommandLine.h"

namespace vex2::test {
namespace {

constexpr std::size_t kFrame = std::size_t{96} * 80;

class HeadsOnly : public DocumentTest {
 protected:
  /// The path of a document with so many frames behind those that were recorded.
  std::string documentOf(std::size_t frames) const {
    std::string path = folder_ / (std::to_string(frames) + ".vex");
    EXPECT_EQ(RunVex({"simulate", path, "--cycles", "2"}).exitCode, 0);
    Bytes bytes = ReadBytes(path);
    constexpr std::string_view kTag = "RAWa";
    const auto block = std::find_end(bytes.begin(), bytes.end(), kTag.begin(), kTag.end());
    const auto length = static_cast<std::size_t>(block - bytes.begin()) + 4;
    SetLongAt(bytes, length, LongAt(bytes, length) + frames * kFrame);
    bytes.resize(bytes.size() + frames * kFrame);
    WriteBytes(path, bytes);
    return path;
  }

  /// The bytes that the command reads.
  static std::uint64_t read(const std::vector<std::string>& arguments) {
    std::vector<const char*> line = {"vex"};
    for (const std::string& argument : arguments) line.push_back(argument.c_str());
    const FaultyFileSystem files;
    testing::internal::CaptureStdout();
    EXPECT_EQ(tool::RunCommandLine(static_cast<int>(line.size()), line.data()), 0);
    EXPECT_NE(testing::internal::GetCapturedStdout(), "");
    tool::SetMessageForm(tool::MessageForm::kText);
    std::uint64_t bytes = 0;
    for (const FileOperation& operation : files.Log()) {
      if (operation.call != FileCall::read || operation.result <= 0) continue;
      bytes += static_cast<std::uint64_t>(operation.result);
    }
    return bytes;
  }
};

TEST_F(HeadsOnly, CommandsWithoutReadingsReadNoFrames) {
  const std::string few = documentOf(60);
  const std::string many = documentOf(600);
  const std::vector<std::vector<std::string>> commands = {
      {"info"},      {"info", "--json"},      {"tree"}, {"tree", "--json"},
      {"wells"},     {"wells", "--csv"},      {"dyes"}, {"detectors", "--json"},
      {"detectors"}, {"calibration", "--json"}};
  for (std::vector<std::string> command : commands) {
    SCOPED_TRACE(command.front());
    command.push_back(few);
    const std::uint64_t fewBytes = read(command);
    command.back() = many;
    EXPECT_EQ(read(command), fewBytes);
  }
}

TEST_F(HeadsOnly, OneValueIsReadWithoutFrames) {
  const std::string path = documentOf(600);
  EXPECT_LT(read({"get", path, "frames"}), 100 * kFrame);
}

}  // namespace
}  // namespace vex2::test
