#include "vex2/format/RecordKinds.h"

namespace vex2 {
namespace {

struct Entry {
  std::uint32_t key;
  int row;
};

// The four characters of `tag` as one number.
constexpr std::uint32_t keyOf(std::string_view tag) {
  std::uint32_t key = 0;
  for (std::size_t i = 0; i < kTagLength; ++i) {
    key = key << 8U | static_cast<unsigned char>(tag[i]);
  }
  return key;
}

// A tag is in the slot of its hash or in the next free one; with this many slots few tags collide.
constexpr std::size_t kSlots = 256;

constexpr std::size_t slotOf(std::uint32_t key) {
  return key * 0x9E3779B1U >> 24U;
}

constexpr auto makeLookup() {
  std::array<Entry, kSlots> lookup{};
  lookup.fill({0, -1});
  for (int row = 0; row < kTagRowCount; ++row) {
    // One tag is in two rows; a lookup of it finds the later row.
    if (row == static_cast<int>(Kind::kCellDescription)) continue;
    std::size_t slot = slotOf(keyOf(TagAt(row)));
    while (lookup[slot].row >= 0) slot = (slot + 1) % kSlots;
    lookup[slot] = {keyOf(TagAt(row)), row};
  }
  return lookup;
}

constexpr auto kLookup = makeLookup();

}  // namespace

int FindTagIndex(std::string_view tag) noexcept {
  if (tag.size() != kTagLength) return -1;
  const std::uint32_t key = keyOf(tag);
  std::size_t slot = slotOf(key);
  while (kLookup[slot].row >= 0 && kLookup[slot].key != key) slot = (slot + 1) % kSlots;
  return kLookup[slot].row;
}

}  // namespace vex2
