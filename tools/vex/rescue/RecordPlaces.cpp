#include "tools/vex/rescue/RecordPlaces.h"

#include <algorithm>
#include <array>

namespace vex2::tool {

namespace {

struct Place {
  std::string_view list;
  std::string_view tags;  ///< of four characters each
};

constexpr auto kPlaces = std::to_array<Place>({
    {"",
     "GLBLTProRAWaREPrREPnREPdREPtCELSDETLCALIPDYEBKGDRqDyMPLCCALRENDORQATConfEOF "
     "SPECCNTLCPLTCPNM"},
    {"GLBL", "VERSCOMMPCRVRefNUOMCFTRDDRKSPRERPOSRLOGT"},
    {"CELS", "CELL"},
    {"CELL", "NAMEDESCDETT"},
    {"DETT", "DNAMTASKQANTDUSE"},
    {"DETL", "DETX"},
    {"DETX", "DETNDYERDYEQDESCCOMTCOLRDATCDATMOWNRLOCSDASBDAEBDATHDAABDAATDAQF"},
    {"CALI", "PDYEBKGD"},
    {"RqDy", "aDye"},
    {"MPLC", "RQPl"},
    {"RQPl",
     "GLBLTProRAWaREPrREPnREPdREPtCELSDETLCALIPDYEBKGDRqDyCALRENDORQATConfSPECPathRQPDEOPl"},
    {"SPEC", "TSMPRFIDSPNMSPONSPRVSPCH"},
});

bool holds(const Place& place, std::string_view tag) {
  for (std::size_t i = 0; i + 4 <= place.tags.size(); i += 4) {
    if (place.tags.substr(i, 4) == tag) return true;
  }
  return false;
}

}  // namespace

bool StandsIn(std::string_view list, std::string_view tag) {
  return std::any_of(kPlaces.begin(), kPlaces.end(),
                     [&](const Place& place) { return place.list == list && holds(place, tag); });
}

std::vector<std::string_view> HomesOf(std::string_view tag) {
  std::vector<std::string_view> homes;
  for (const Place& place : kPlaces) {
    if (holds(place, tag)) homes.push_back(place.list);
  }
  return homes;
}

std::string_view HomeOf(std::string_view tag, std::string_view near) {
  const auto homes = HomesOf(tag);
  if (homes.empty()) return {};
  const auto both = std::find_if(homes.begin(), homes.end(), [&](std::string_view home) {
    return home == near || StandsIn(home, near) || StandsIn(near, home);
  });
  return both == homes.end() ? homes.front() : *both;
}

}  // namespace vex2::tool
