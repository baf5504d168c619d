// A file that was cut at any byte opens with what is whole, or with a status.

#include "tests/reliability/DamagedDocuments.h"
#include "vex2/container/CSkippedComp.h"
#include "vex2/container/TagFactory.h"

namespace vex2::test {
namespace {

constexpr std::size_t kLongest = std::size_t{64} * 1024;

// A top-level record as it is in the whole document: what it holds, saved, and where it ends.
struct WholeRecord {
  Bytes saved;
  std::size_t end = 0;
};

class CutAnywhere : public DamagedDocument {
 protected:
  Bytes saved(CComponent& component) {
    CFile file;
    EXPECT_TRUE(file.Open("/component", CFile::modeReadWrite | CFile::modeCreate));
    EXPECT_EQ(component.Write(&file), 0);
    file.Close();
    return files_.Content("/component");
  }

  std::vector<WholeRecord> recordsOf(const Bytes& document) {
    files_.Put("/whole.vex", document);
    CFile file;
    EXPECT_TRUE(file.Open("/whole.vex", CFile::modeRead));
    file.Seek(1024, CFile::begin);
    std::vector<WholeRecord> records;
    std::unique_ptr<CComponent> component;
    while (file.GetRemaining() > 0 && CreateNextComponent(file, component)) {
      const bool known = dynamic_cast<const CSkippedComp*>(component.get()) == nullptr;
      if (component->Read(&file) != 0) break;
      if (known) records.push_back({saved(*component), file.GetPosition()});
    }
    return records;
  }

  // Reading ends once as many bytes were counted as stand behind the header: a record whose length
  // says more than it holds hides what follows it.
  bool isEndedByCount(std::size_t length) const {
    std::uint64_t counted = 0;
    for (int i = 0; i < document_.GetAllComponentCount(); ++i) {
      counted += document_.GetComponent(i)->GetSize();
    }
    return length > 1024 && counted >= length - 1024;
  }

  void expectWhatIsWhole(const std::vector<WholeRecord>& records, std::size_t length) {
    const auto whole = static_cast<int>(
        std::count_if(records.begin(), records.end(),
                      [length](const WholeRecord& record) { return record.end <= length; }));
    const int found = document_.GetAllComponentCount();
    EXPECT_TRUE(found >= whole || isEndedByCount(length)) << found << " of " << whole;
    // A list may end with the file.
    EXPECT_LE(found, whole + 1);
    const int last = std::min(found, whole) - 1;
    if (last < 0) return;
    EXPECT_EQ(FirstDifference(saved(*document_.GetComponent(last)),
                              records[static_cast<std::size_t>(last)].saved),
              "");
  }
};

TEST_P(CutAnywhere, OpensWithWhatIsWholeOrAStatus) {
  const std::vector<WholeRecord> records = recordsOf(whole_);
  // A step that is no multiple of anything meets every kind of place.
  const auto step = static_cast<std::size_t>(InFullSweeps(1, 61));
  for (std::size_t length = 0; length <= std::min(whole_.size(), kLongest); length += step) {
    ++points_;
    ASSERT_TRUE(stands(Bytes(whole_.begin(), whole_.begin() + static_cast<long>(length))))
        << length;
    EXPECT_EQ(status_ == -100 && document_.GetAllComponentCount() == 0 && length < 4, length < 4);
    expectWhatIsWhole(records, length);
    ASSERT_FALSE(HasFailure()) << "cut to " << length;
  }
  report("a file is cut anywhere", FullSweeps()
                                       ? "every length of every sample document up to 64 KiB"
                                       : "each 61st length of every sample document");
}

INSTANTIATE_TEST_SUITE_P(Documents, CutAnywhere, testing::ValuesIn(SampleDocuments()), SampleName);

}  // namespace
}  // namespace vex2::test
