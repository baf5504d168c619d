// Tests that no flipped bit in a document causes undefined behaviour or breaks a promise.

#include <numeric>

#include "tests/reliability/DamagedDocuments.h"

namespace vex2::test {
namespace {

constexpr std::size_t kSmall = std::size_t{16} * 1024;

using FlippedBits = DamagedDocument;

TEST_P(FlippedBits, HaveAStatusAndBreakNothing) {
  std::vector<std::size_t> places = StructureOf(whole_).bytes;
  if (whole_.size() <= kSmall) {
    places.resize(whole_.size());
    std::iota(places.begin(), places.end(), std::size_t{0});
  }
  Bytes bytes = whole_;
  const auto step = static_cast<std::size_t>(InFullSweeps(1, 331));
  for (std::size_t bit = 0; bit < 8 * places.size(); bit += step) {
    const std::size_t place = places[bit / 8];
    bytes[place] = static_cast<std::uint8_t>(bytes[place] ^ 1U << bit % 8);
    ++points_;
    SCOPED_TRACE("byte " + std::to_string(place) + " bit " + std::to_string(bit % 8));
    expectToStand(bytes);
    if (!countState()) break;
    bytes[place] = whole_[place];
  }
  report("any bit is flipped", FullSweeps()
                                   ? "every bit up to 16 KiB, above that of every structural byte"
                                   : "each 331st of these bits");
}

INSTANTIATE_TEST_SUITE_P(Documents, FlippedBits, testing::ValuesIn(SampleDocuments()), SampleName);

}  // namespace
}  // namespace vex2::test
