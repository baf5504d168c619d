#include "lab/model/PlateContents.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <set>

#include "lab/Error.h"
#include "lab/Text.h"
#include "lab/model/Codes.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/setup/CPlateSetupComp.h"

namespace vex2::lab {

namespace {

std::string textOf(const char* characters, std::int32_t length) {
  return characters != nullptr && length > 0
             ? std::string(characters, static_cast<std::size_t>(length))
             : std::string();
}

std::string textOf(const CString& text) {
  return std::string(text.View());
}

std::int32_t lengthOf(const std::string& text) {
  return static_cast<std::int32_t>(text.size());
}

// One row for each detector of the cell.
std::vector<WellRow> rowsOf(const Vex2WellSetup& cell, const WellRow& common,
                            const std::map<std::string, std::string>& reporters) {
  std::vector<WellRow> rows;
  for (POSITION at = cell.detectors.GetHeadPosition(); at != nullptr;) {
    const Vex2WellDetector* detector = cell.detectors.GetNext(at);
    WellRow& row = rows.emplace_back(common);
    row.target = textOf(detector->detectorName, detector->detectorNameLength);
    row.task = textOf(detector->task, detector->taskLength);
    row.quantity = detector->quantity;
    const auto reporter = reporters.find(row.target);
    if (reporter != reporters.end()) row.reporter = reporter->second;
  }
  return rows;
}

// The wells of the cells, by their coordinates, which are row and column from 0. Returns nothing if
// the coordinates are not those of different wells on the plate: some hosts do not set them.
std::vector<unsigned short> wellsByCoordinates(const Vex2PlateSetup& setup, PlateLayout plate) {
  std::vector<unsigned short> wells;
  std::set<unsigned> seen;
  for (unsigned index = 0; index < setup.count; ++index) {
    const Vex2WellSetup& cell = setup.cells[index];
    const unsigned well = cell.coord1 * plate.columns + cell.coord2 + 1U;
    if (cell.coord1 >= plate.rows || cell.coord2 >= plate.columns) return {};
    if (!seen.insert(well).second) return {};
    wells.push_back(static_cast<unsigned short>(well));
  }
  return wells;
}

// Calls `take` for each cell of the document's plate setup, ascending by well. Passes a row with
// the well and its sample, and one row for each detector of the well.
template <typename Take>
void forEachCell(const Vex2FileManager& document, PlateLayout plate, const Take& take) {
  Vex2PlateSetup setup;
  if (document.GetPlateSetupInfo(&setup) != kSuccess) return;
  std::map<std::string, std::string> reporters;
  for (const Vex2Detector& detector : DetectorsOf(document)) {
    reporters.emplace(textOf(detector.name), textOf(detector.reporterDye));
  }
  const auto wells = wellsByCoordinates(setup, plate);
  std::vector<std::pair<unsigned short, const Vex2WellSetup*>> cells;
  for (unsigned index = 0; index < setup.count; ++index) {
    cells.emplace_back(wells.empty() ? static_cast<unsigned short>(index + 1) : wells[index],
                       &setup.cells[index]);
  }
  std::stable_sort(cells.begin(), cells.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  for (const auto& [well, cell] : cells) {
    WellRow common;
    common.well = well;
    common.sample = textOf(cell->name, cell->nameLength);
    take(common, rowsOf(*cell, common, reporters));
  }
}

void addDetector(Vex2WellSetup& cell, const WellRow& row) {
  auto detector = std::make_unique<Vex2WellDetector>();
  detector->SetDetectorName(row.target.data(), lengthOf(row.target));
  detector->SetTask(row.task.data(), lengthOf(row.task));
  detector->quantity = row.quantity;
  cell.detectors.AddTail(detector.get());
  static_cast<void>(detector.release());
}

void requireRoom(int status) {
  if (status != kSuccess) {
    throw Error(ErrorCode::kSystem, "the plate setup is too large for a document");
  }
}

// Copies the `used` flags of the detectors. If a well has a detector several times, its entries are
// matched in their order.
void keepUses(const Vex2WellSetup& from, Vex2WellSetup& to) {
  std::map<std::string, std::vector<const Vex2WellDetector*>> known;
  for (POSITION at = from.detectors.GetHeadPosition(); at != nullptr;) {
    const Vex2WellDetector* before = from.detectors.GetNext(at);
    known[textOf(before->detectorName, before->detectorNameLength)].push_back(before);
  }
  std::map<std::string, std::size_t> turns;
  for (POSITION at = to.detectors.GetHeadPosition(); at != nullptr;) {
    Vex2WellDetector* detector = to.detectors.GetNext(at);
    const std::string name = textOf(detector->detectorName, detector->detectorNameLength);
    const auto& before = known[name];
    if (before.empty()) continue;
    detector->used = before[std::min(turns[name]++, before.size() - 1)]->used;
  }
}

// Keeps what a table of wells does not show, and what storing the table must therefore not remove:
// the descriptions of wells, and the flags of wells and detectors that stay.
void keepUnshown(const Vex2FileManager& document, const PlateContents& contents,
                 Vex2PlateSetup& setup) {
  const CPlateSetupComp* component = document.GetPlateSetupComp();
  Vex2PlateSetup old;
  if (component == nullptr || document.GetPlateSetupInfo(&old) != kSuccess) return;
  const auto wells = wellsByCoordinates(old, contents.plate);
  for (unsigned index = 0; index < old.count; ++index) {
    const unsigned place = wells.empty() ? index : wells[index] - 1U;
    if (place >= setup.count) continue;
    const Vex2WellSetup& from = old.cells[index];
    Vex2WellSetup& to = setup.cells[place];
    const bool wasSetUp = from.nameLength > 0 || !from.detectors.IsEmpty();
    if (to.flag && wasSetUp) to.flag = from.flag;
    keepUses(from, to);
    // The library has no operation that returns a description, so read it from the record itself.
    const auto* cell = dynamic_cast<CContainerComp*>(component->GetChild(static_cast<int>(index)));
    auto* description = cell != nullptr ? cell->FindChild(TagOf(Kind::kCellDescription)) : nullptr;
    if (description == nullptr) continue;
    const std::string text = textOf(description->GetValueString());
    to.SetDescription(text.data(), lengthOf(text));
  }
}

void storeSetup(Vex2FileManager& document, const PlateContents& contents) {
  const PlateLayout plate = contents.plate;
  Vex2PlateSetup setup;
  setup.Resize(static_cast<std::uint16_t>(plate.WellCount()));
  for (unsigned index = 0; index < setup.count; ++index) {
    Vex2WellSetup& cell = setup.cells[index];
    cell.coord1 = static_cast<std::uint16_t>(index / plate.columns);
    cell.coord2 = static_cast<std::uint16_t>(index % plate.columns);
    cell.flag = false;
  }
  for (const WellRow& row : contents.rows) {
    Vex2WellSetup& cell = setup.cells[row.well - 1];
    cell.flag = true;
    cell.SetName(row.sample.data(), lengthOf(row.sample));
    if (row.HasDetector()) addDetector(cell, row);
  }
  keepUnshown(document, contents, setup);
  requireRoom(document.ReplacePlateSetup(&setup));
}

// `named` are the targets that the wells had before.
void storeDetectors(Vex2FileManager& document, const PlateContents& contents,
                    const std::set<std::string>& named) {
  std::map<std::string, Vex2Detector> known;
  for (const Vex2Detector& detector : DetectorsOf(document)) {
    known.emplace(textOf(detector.name), detector);
  }
  for (const WellRow& row : contents.rows) {
    if (row.target.empty()) continue;
    // A table that was exported and comes back unchanged must not add detectors that the document
    // never had.
    const bool stays = row.reporter.empty() && named.contains(row.target);
    if (stays && !known.contains(row.target)) continue;
    const auto [entry, isNew] = known.emplace(row.target, Vex2Detector());
    Vex2Detector& detector = entry->second;
    if (!isNew && textOf(detector.reporterDye) == row.reporter) continue;
    detector.name = CString(row.target);
    detector.reporterDye = CString(row.reporter);
    requireRoom(document.AppendDetectorInfo(&detector));
  }
}

}  // namespace

bool WellRow::HasQuantity() const {
  return quantity != 0 || !std::signbit(quantity);
}

bool WellRow::HasDetector() const {
  return !target.empty() || !task.empty() || HasQuantity();
}

std::vector<unsigned short> PlateContents::Wells() const {
  std::vector<unsigned short> wells;
  for (const WellRow& row : rows) {
    if (wells.empty() || wells.back() != row.well) wells.push_back(row.well);
  }
  return wells;
}

std::set<unsigned short> PlateContents::WellsOf(std::string_view target) const {
  std::set<unsigned short> wells;
  for (const WellRow& row : rows) {
    if (row.target == target) wells.insert(row.well);
  }
  return wells;
}

std::set<std::string> PlateContents::Targets() const {
  std::set<std::string> targets;
  for (const WellRow& row : rows) {
    if (!row.target.empty()) targets.insert(row.target);
  }
  return targets;
}

PlateLayout LayoutOf(const Vex2FileManager& document) {
  const int size = document.GetPlateSize();
  if (size == 96) return kPlate96;
  if (size == 384) return kPlate384;
  return {static_cast<unsigned>(document.GetHeaderRows()),
          static_cast<unsigned>(document.GetHeaderCols())};
}

PlateContents ContentsOf(const Vex2FileManager& document) {
  PlateContents contents;
  contents.plate = LayoutOf(document);
  forEachCell(document, contents.plate, [&](const WellRow& well, const std::vector<WellRow>& rows) {
    contents.rows.insert(contents.rows.end(), rows.begin(), rows.end());
    if (rows.empty() && !well.sample.empty()) contents.rows.push_back(well);
  });
  return contents;
}

Plate PlateOf(const Vex2FileManager& document) {
  const PlateLayout layout = LayoutOf(document);
  Plate plate{.rows = layout.rows,
              .columns = layout.columns,
              .type = CodeText(document.GetHeaderData().plateTypeCode),
              .wells = {}};
  forEachCell(document, layout, [&](const WellRow& cell, const std::vector<WellRow>& rows) {
    Well& well = plate.wells.emplace_back();
    well.number = cell.well;
    well.name = WellName(cell.well, layout.columns);
    well.sample = ToUtf8(cell.sample);
    for (const WellRow& row : rows) {
      well.targets.push_back({ToUtf8(row.target), ToUtf8(row.task),
                              row.HasQuantity() ? std::optional(row.quantity) : std::nullopt,
                              ToUtf8(row.reporter)});
    }
  });
  return plate;
}

void StoreContents(Vex2FileManager& document, const PlateContents& contents) {
  const PlateContents before = ContentsOf(document);
  if (document.GetPlateSetupComp() != nullptr && contents.rows == before.rows) return;
  std::set<std::string> named;
  for (const WellRow& row : before.rows) named.insert(row.target);
  storeSetup(document, contents);
  storeDetectors(document, contents, named);
  for (const WellRow& row : contents.rows) {
    if (row.reporter.empty()) continue;
    document.AppendRequiredDyenfo(CString(row.reporter));
  }
}

std::vector<Vex2Detector> DetectorsOf(const Vex2FileManager& document) {
  int count = 0;
  Vex2Detector* list = nullptr;
  if (document.GetNumberOfDetectors(count) != kSuccess || count == 0) return {};
  requireRoom(document.GetDetectorListInfo(list));
  const std::unique_ptr<Vex2Detector[]> owner(list);
  return {list, list + count};
}

std::vector<std::string> RequiredDyesOf(const Vex2FileManager& document) {
  int count = 0;
  CString* list = nullptr;
  if (document.GetNumberOfRequiredDyes(count) != kSuccess || count == 0) return {};
  requireRoom(document.GetRequiredDyeListInfo(list));
  const std::unique_ptr<CString[]> owner(list);
  std::vector<std::string> dyes;
  std::transform(list, list + count, std::back_inserter(dyes),
                 [](const CString& dye) { return textOf(dye); });
  return dyes;
}

}  // namespace vex2::lab
