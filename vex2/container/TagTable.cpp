#include "vex2/container/TagTable.h"

namespace vex2 {
namespace {

struct Entry {
  std::uint32_t key;
  int row;
};

// Of four characters.
constexpr std::uint32_t keyOf(std::string_view tag) {
  std::uint32_t key = 0;
  for (std::size_t i = 0; i < kTagLength; ++i) {
    key = key << 8U | static_cast<unsigned char>(tag[i]);
  }
  return key;
}

// A tag's place is its hash, or the next free one behind: so many places that few are taken twice.
constexpr std::size_t kPlaces = 256;

constexpr std::size_t placeOf(std::uint32_t key) {
  return key * 0x9E3779B1U >> 24U;
}

constexpr auto makeLookup() {
  std::array<Entry, kPlaces> lookup{};
  lookup.fill({0, -1});
  for (int row = 0; row < kTagRowCount; ++row) {
    if (row == kShadowedDescriptionRow) continue;
    std::size_t place = placeOf(keyOf(TagAt(row)));
    while (lookup[place].row >= 0) place = (place + 1) % kPlaces;
    lookup[place] = {keyOf(TagAt(row)), row};
  }
  return lookup;
}

constexpr auto kLookup = makeLookup();

}  // namespace

int FindTagIndex(std::string_view tag) noexcept {
  if (tag.size() != kTagLength) return -1;
  const std::uint32_t key = keyOf(tag);
  std::size_t place = placeOf(key);
  while (kLookup[place].row >= 0 && kLookup[place].key != key) place = (place + 1) % kPlaces;
  return kLookup[place].row;
}

}  // namespace vex2
