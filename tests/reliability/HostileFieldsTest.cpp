// Tests that lengths, counts and nesting that no file can hold are refused before memory is
// allocated.

#include <pthread.h>

#include <algorithm>
#include <functional>

#include "tests/reliability/DamagedDocuments.h"
#include "tests/support/DocumentBytes.h"
#include "tests/support/SampleData.h"

namespace vex2::test {
namespace {

class HostileFields : public DamagedDocument {
 protected:
  /// The values that are tried in a field of this width that has `left` bytes after it.
  static std::vector<std::uint64_t> valuesFor(const Field& field, std::size_t left) {
    const std::uint64_t most = (std::uint64_t{1} << 8 * field.width) - 1;
    const std::uint64_t half = most / 2 + 1;
    std::vector<std::uint64_t> values = {0,        1,    left - 1, left, left + 1,
                                         half - 1, half, half + 1, most};
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    std::erase_if(values, [most](std::uint64_t value) { return value > most; });
    return values;
  }

  static void set(Bytes& bytes, const Field& field, std::uint64_t value) {
    const std::string text = BigEndian(value, static_cast<int>(field.width));
    std::copy(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(field.offset));
  }
};

TEST_P(HostileFields, AreTrustedOnlyUpToTheBytesThatExist) {
  const auto step = static_cast<std::size_t>(InFullSweeps(1, 23));
  std::size_t turn = 0;
  const std::vector<Field> fields = StructureOf(whole_).fields;
  EXPECT_GE(fields.size(), 1U);
  for (const Field& field : fields) {
    for (const std::uint64_t value : valuesFor(field, whole_.size() - field.offset - field.width)) {
      if (turn++ % step != 0) continue;
      Bytes bytes = whole_;
      set(bytes, field, value);
      ++points_;
      SCOPED_TRACE(field.what + " at " + std::to_string(field.offset) + " set to " +
                   std::to_string(value));
      expectToStand(bytes);
      if (!countState()) break;
    }
  }
  report("lengths, counts and nesting are wrong",
         FullSweeps() ? "nine values in every length and count field of every sample document"
                      : "each 23rd of nine values in every length and count field");
}

INSTANTIATE_TEST_SUITE_P(Documents, HostileFields, testing::ValuesIn(SampleDocuments()),
                         SampleName);

/// Runs `operation` on a stack of 256 KiB.
void OnASmallStack(std::function<void()> operation) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::size_t{256} * 1024), 0);
  pthread_t thread{};
  const auto run = [](void* argument) -> void* {
    (*static_cast<std::function<void()>*>(argument))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, run, &operation), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

using Nesting = DamagedDocument;

TEST_P(Nesting, EndsAt64OnASmallStack) {
  for (const auto* tag :
       {"SPEC", "GLBL", "CNTL", "CPLT", "CPNM", "DETT", "CALI", "DETL", "DETX", "RqDy"}) {
    for (const int depth : {63, 64, 65, 1'000'000}) {
      if (depth > 65 && tag != std::string_view("SPEC") && !FullSweeps()) continue;
      ++points_;
      Bytes bytes = whole_;
      const std::string lists = NestedLists(tag, depth);
      bytes.insert(bytes.end(), lists.begin(), lists.end());
      SCOPED_TRACE(tag + std::string(" ") + std::to_string(depth));
      OnASmallStack([&] { expectToStand(bytes); });
      EXPECT_EQ(status_, depth <= 64 ? 0 : -300);
      EXPECT_EQ(document_.GetAllComponentCount(), depth <= 64 ? 2 : 1);
      countState();
    }
  }
  report("lengths, counts and nesting are wrong",
         "depth 63, 64, 65 and 1,000,000 of each kind of list, on a stack of 256 KiB");
}

TEST_P(Nesting, OfListsThatCountTheMostTakesNoRoom) {
  constexpr std::size_t kListSize = 10;
  constexpr std::size_t kCountAt = 8;
  const std::string lists = NestedLists("DETL", 64);
  Bytes bytes = whole_;
  bytes.insert(bytes.end(), lists.begin(), lists.end());
  for (std::size_t at = whole_.size() + kCountAt; at < bytes.size(); at += kListSize) {
    bytes[at] = bytes[at + 1] = 0xFF;
  }
  expectToStand(bytes);
  EXPECT_EQ(status_, 0);
}

INSTANTIATE_TEST_SUITE_P(Documents, Nesting,
                         testing::Values(SourcePath("tests/data/old-block.vex")), SampleName);

}  // namespace
}  // namespace vex2::test
