#include "fuzz/Target.h"

#include "tests/support/DocumentBytes.h"
#include "tests/support/SilentHost.h"
#include "vex2/container/Status.h"

namespace vex2::fuzz {
namespace {

constexpr std::size_t kLargestFile = std::size_t{1} << 20U;

bool beginsWith(const test::Bytes& bytes, std::string_view text) {
  return bytes.size() >= text.size() && std::equal(text.begin(), text.end(), bytes.begin());
}

}  // namespace

test::MemoryFiles& NewFiles() {
  static const test::SilentHost host;
  static test::MemoryFiles files;
  Require(files.OpenCount() == 0, "every file was closed");
  files.Clear();
  files.SetLargestFile(kLargestFile);
  return files;
}

test::Bytes DocumentOf(const test::Bytes& input) {
  static const std::string kHeader = test::HeaderBytes();
  constexpr std::string_view kStudy = "RQSt";
  if (beginsWith(input, "Vex2")) return input;
  const bool isStudy = beginsWith(input, kStudy);
  test::Bytes bytes = test::ToBytes(kHeader);
  if (isStudy) std::copy(kStudy.begin(), kStudy.end(), bytes.begin() + 8);
  bytes.insert(bytes.end(), input.begin() + (isStudy ? 4 : 0), input.end());
  return bytes;
}

int Read(Vex2FileManager& document, const char* path) {
  Require(document.SafeOpen(path, 0, 0) == 1, "a file that is there opens");
  const int status = document.ReadComponentFile(nullptr);
  document.Close();
  Require(status == kSuccess || status == kReadFailed || status == kNotFound,
          "a read answers 0, -100 or -300");
  return status;
}

}  // namespace vex2::fuzz
