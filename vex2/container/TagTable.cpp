#include "vex2/container/TagTable.h"

#include <algorithm>

namespace vex2 {
namespace {

struct Entry {
  std::uint32_t key;
  int row;
};

constexpr std::uint32_t keyOf(std::string_view tag) {
  std::uint32_t key = 0;
  for (const char character : tag) key = key << 8U | static_cast<unsigned char>(character);
  return key;
}

// Sorted by tag; of a tag that stands twice only the later row.
constexpr auto makeLookup() {
  std::array<Entry, kTagTable.size() - 1> lookup{};
  std::size_t used = 0;
  for (int row = 0; row < kTagRowCount; ++row) {
    if (row == kShadowedDescriptionRow) continue;
    lookup[used++] = {keyOf(TagAt(row)), row};
  }
  std::sort(lookup.begin(), lookup.end(),
            [](const Entry& left, const Entry& right) { return left.key < right.key; });
  return lookup;
}

constexpr auto kLookup = makeLookup();

}  // namespace

int FindTagIndex(std::string_view tag) noexcept {
  if (tag.size() != kTagLength) return -1;
  const std::uint32_t key = keyOf(tag);
  const auto* found =
      std::lower_bound(kLookup.begin(), kLookup.end(), key,
                       [](const Entry& entry, std::uint32_t wanted) { return entry.key < wanted; });
  return found != kLookup.end() && found->key == key ? found->row : -1;
}

}  // namespace vex2
