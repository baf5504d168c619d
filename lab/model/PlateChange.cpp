#include "lab/model/PlateChange.h"

#include <fmt/core.h>

#include <map>

#include "lab/Error.h"

namespace vex2::lab {

namespace {

using RowsByWell = std::map<unsigned short, std::vector<WellRow>>;

RowsByWell rowsByWell(const PlateContents& contents) {
  RowsByWell rows;
  for (const WellRow& row : contents.rows) rows[row.well].push_back(row);
  return rows;
}

std::string differences(const PlateContents& before, const PlateContents& after) {
  constexpr std::size_t kMostNamed = 8;
  const std::vector<unsigned short> wells = ChangedWells(before, after);
  std::string names = wells.empty() ? "" : ":";
  for (const unsigned short well : wells) {
    if (names.size() > kMostNamed * 4 + 1) {
      names += " and more";
      break;
    }
    names += ' ' + after.plate.NameOf(well);
  }
  return fmt::format("wells changed: {}{}\n", wells.size(), names);
}

}  // namespace

PlateContents PlacedOn(PlateLayout plate, PlateContents contents, const std::string& source) {
  for (WellRow& row : contents.rows) {
    const std::string name = contents.plate.NameOf(row.well);
    const auto well = plate.Find(name);
    if (!well) {
      throw Error(ErrorCode::kUsage, source,
                  fmt::format("well {} is not on the document's plate of {} wells", name,
                              plate.WellCount()));
    }
    row.well = *well;
  }
  contents.plate = plate;
  return contents;
}

std::vector<unsigned short> ChangedWells(const PlateContents& before, const PlateContents& after) {
  RowsByWell old = rowsByWell(before);
  RowsByWell now = rowsByWell(after);
  // Wells that lost all their rows have changed too.
  for (const auto& [well, rows] : old) now.try_emplace(well);
  std::vector<unsigned short> wells;
  for (const auto& [well, rows] : now) {
    if (old[well] != rows) wells.push_back(well);
  }
  return wells;
}

std::string ReplaceWells(Vex2FileManager& document, const PlateContents& contents,
                         const std::string& source) {
  const PlateContents before = ContentsOf(document);
  const PlateContents after = PlacedOn(LayoutOf(document), contents, source);
  StoreContents(document, after);
  return fmt::format("wells set up: {} -> {}\n{}", before.Wells().size(), after.Wells().size(),
                     differences(before, after));
}

}  // namespace vex2::lab
