// Tests that a file that is cut off at any byte opens with its whole records, or returns a status.

#include "tests/reliability/DamagedDocuments.h"
#include "tests/support/RecordModel.h"

namespace vex2::test {
namespace {

constexpr std::size_t kLongest = std::size_t{64} * 1024;

class CutAnywhere : public DamagedDocument {
 protected:
  model::Text saved(CComponent& component) {
    CFile file;
    EXPECT_TRUE(file.Open("/component", CFile::modeReadWrite | CFile::modeCreate));
    EXPECT_EQ(component.Write(&file), 0);
    file.Close();
    const Bytes& bytes = files_.Content("/component");
    return {bytes.begin(), bytes.end()};
  }

  // Compares status and content with those of a second reader, which shares no code with the
  // library. Only the last record is compared completely: the others were compared at shorter
  // lengths, so only their heads are.
  void expectWhatIsWhole(const model::Text& bytes) {
    const model::Document expected = model::ReadDocument(bytes);
    EXPECT_EQ(status_, expected.status);
    const auto count = static_cast<std::size_t>(document_.GetAllComponentCount());
    ASSERT_EQ(count, expected.parts.size());
    for (std::size_t i = 0; i < count; ++i) {
      CComponent& component = *document_.GetComponent(static_cast<int>(i));
      ASSERT_EQ(component.GetTag(), expected.parts[i].tag) << i;
      ASSERT_EQ(component.GetLength(), expected.parts[i].length) << i;
      if (i + 1 == count || bytes.size() == whole_.size()) {
        ASSERT_TRUE(saved(component) == model::Written(expected.parts[i])) << component.GetTag();
      }
    }
  }
};

TEST_P(CutAnywhere, OpensWithWhatIsWholeOrAStatus) {
  const model::Text whole(whole_.begin(), whole_.end());
  // The step is a prime number, so that the cuts fall on all kinds of offsets.
  const auto step = static_cast<std::size_t>(InFullSweeps(1, 61));
  for (std::size_t length = 0; length <= std::min(whole_.size(), kLongest); length += step) {
    ++points_;
    SCOPED_TRACE("cut to " + std::to_string(length));
    expectToStand(Bytes(whole_.begin(), whole_.begin() + static_cast<long>(length)));
    expectWhatIsWhole(whole.substr(0, length));
    if (!countState()) break;
  }
  report("a file is cut anywhere", FullSweeps()
                                       ? "every length of every sample document up to 64 KiB"
                                       : "each 61st length of every sample document");
}

INSTANTIATE_TEST_SUITE_P(Documents, CutAnywhere, testing::ValuesIn(SampleDocuments()), SampleName);

}  // namespace
}  // namespace vex2::test
