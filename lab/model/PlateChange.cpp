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

}  // namespace vex2::lab
