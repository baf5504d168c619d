#include "lab/check/RecordPlaces.h"

#include <algorithm>
#include <array>

#include "vex2/format/RecordKinds.h"

namespace vex2::lab {

namespace {

struct HomeList {
  RecordHome home;
  std::string_view tag;  ///< tag of the list; empty for the document itself
};

constexpr auto kLists = std::to_array<HomeList>({
    {kTop, ""},
    {kInGlobal, TagOf(Kind::kGlobal)},
    {kInPlateSetup, TagOf(Kind::kPlateSetup)},
    {kInCell, TagOf(Kind::kCell)},
    {kInCellDetector, TagOf(Kind::kCellDetector)},
    {kInDetectorList, TagOf(Kind::kDetectorList)},
    {kInDetector, TagOf(Kind::kDetector)},
    {kInCalibration, TagOf(Kind::kCalibration)},
    {kInRequiredDyes, TagOf(Kind::kRequiredDyes)},
    {kInPlates, TagOf(Kind::kPlates)},
    {kInPlate, TagOf(Kind::kPlate)},
    {kInSpectrum, TagOf(Kind::kSpectrum)},
});

// If a tag is in two rows of the table, it has the homes of both rows.
unsigned homesOf(std::string_view tag) {
  unsigned homes = 0;
  for (const RecordKind& kind : kRecordKinds) {
    if (kind.tag == tag) homes |= kind.homes;
  }
  return homes;
}

}  // namespace

bool StandsIn(std::string_view list, std::string_view tag) {
  const unsigned homes = homesOf(tag);
  return std::any_of(kLists.begin(), kLists.end(), [&](const HomeList& each) {
    return each.tag == list && (homes & each.home) != 0;
  });
}

std::vector<std::string_view> HomesOf(std::string_view tag) {
  const unsigned homes = homesOf(tag);
  std::vector<std::string_view> tags;
  for (const HomeList& each : kLists) {
    if ((homes & each.home) != 0) tags.push_back(each.tag);
  }
  return tags;
}

std::string_view HomeOf(std::string_view tag, std::string_view near) {
  const auto homes = HomesOf(tag);
  if (homes.empty()) return {};
  const auto both = std::find_if(homes.begin(), homes.end(), [&](std::string_view home) {
    return home == near || StandsIn(home, near) || StandsIn(near, home);
  });
  return both == homes.end() ? homes.front() : *both;
}

}  // namespace vex2::lab
