#include <algorithm>

#include "python/src/raw/RawValues.h"

// Converts the values of plate setups, detectors and calibrations.
namespace vex2::python {

namespace {

py::str charactersOf(const char* text, std::int32_t length) {
  const bool isThere = text != nullptr && length > 0;
  return FromText(CString(std::string_view(text, isThere ? static_cast<std::size_t>(length) : 0)));
}

py::object fromWellDetector(const Vex2WellDetector& detector) {
  return MakeRaw(
      "Vex2WellDetector", charactersOf(detector.detectorName, detector.detectorNameLength),
      charactersOf(detector.task, detector.taskLength), detector.quantity, detector.used);
}

std::unique_ptr<Vex2WellDetector> toWellDetector(const py::handle& from) {
  auto detector = std::make_unique<Vex2WellDetector>();
  const CString name = ToText(from.attr("detectorName"));
  detector->SetDetectorName(name, name.GetLength());
  const CString task = ToText(from.attr("task"));
  detector->SetTask(task, task.GetLength());
  detector->quantity = from.attr("quantity").cast<float>();
  detector->used = from.attr("used").cast<bool>();
  return detector;
}

py::object fromWellSetup(const Vex2WellSetup& well) {
  py::list detectors;
  for (POSITION at = well.detectors.GetHeadPosition(); at != nullptr;) {
    detectors.append(fromWellDetector(*well.detectors.GetNext(at)));
  }
  return MakeRaw("Vex2WellSetup", well.coord1, well.coord2, well.flag,
                 charactersOf(well.name, well.nameLength),
                 charactersOf(well.description, well.descriptionLength), detectors);
}

void toWellSetup(const py::handle& from, Vex2WellSetup& well) {
  well.coord1 = from.attr("coord1").cast<std::uint16_t>();
  well.coord2 = from.attr("coord2").cast<std::uint16_t>();
  well.flag = from.attr("flag").cast<bool>();
  const CString name = ToText(from.attr("name"));
  if (!name.IsEmpty()) well.SetName(name, name.GetLength());
  const CString description = ToText(from.attr("description"));
  if (!description.IsEmpty()) well.SetDescription(description, description.GetLength());
  for (const py::handle detector : from.attr("detectors")) {
    auto made = toWellDetector(detector);
    well.detectors.AddTail(made.get());
    static_cast<void>(made.release());
  }
}

// The fields that both kinds of spectra have.
void toSpectrum(const py::handle& from, Spectrum& spectrum) {
  spectrum.key1 = from.attr("key1").cast<std::uint16_t>();
  spectrum.key2 = from.attr("key2").cast<std::uint16_t>();
  spectrum.dyeIndex = from.attr("dyeIndex").cast<std::uint16_t>();
  const CString name = ToText(from.attr("name"));
  const auto values = from.attr("values").cast<std::vector<std::uint32_t>>();
  if (name.GetLength() > 255 || values.size() > 255) {
    throw py::value_error("a spectrum has at most 255 characters and 255 values");
  }
  spectrum.SetName(name, static_cast<std::uint8_t>(name.GetLength()));
  spectrum.SetValues(values.data(), static_cast<std::uint8_t>(values.size()));
}

std::vector<std::uint32_t> valuesOf(const Spectrum& spectrum) {
  if (spectrum.values == nullptr) return {};
  return {spectrum.values, spectrum.values + spectrum.valueCount};
}

py::object fromEntry(const Vex2DyeSpectrum& entry) {
  return MakeRaw("Vex2DyeSpectrum", entry.key1, entry.key2, entry.dyeIndex,
                 charactersOf(entry.name, entry.nameLength), valuesOf(entry), entry.byte1,
                 entry.byte2, entry.param1, entry.param2, entry.param3);
}

py::object fromEntry(const Vex2BackgroundSpectrum& entry) {
  return MakeRaw("Vex2BackgroundSpectrum", entry.key1, entry.key2, entry.dyeIndex,
                 charactersOf(entry.name, entry.nameLength), valuesOf(entry), entry.limit);
}

void toEntry(const py::handle& from, Vex2DyeSpectrum& entry) {
  toSpectrum(from, entry);
  entry.byte1 = from.attr("byte1").cast<std::uint8_t>();
  entry.byte2 = from.attr("byte2").cast<std::uint8_t>();
  entry.param1 = from.attr("param1").cast<std::uint16_t>();
  entry.param2 = from.attr("param2").cast<std::uint16_t>();
  entry.param3 = from.attr("param3").cast<std::uint16_t>();
}

void toEntry(const py::handle& from, Vex2BackgroundSpectrum& entry) {
  toSpectrum(from, entry);
  entry.limit = from.attr("limit").cast<std::uint16_t>();
}

template <typename Set>
py::object fromSet(const char* name, const Set& set) {
  py::list entries;
  for (std::uint16_t i = 0; set.entries != nullptr && i < set.entryCount; ++i) {
    entries.append(fromEntry(set.entries[i]));
  }
  return MakeRaw(name, FromBytes(set.code, sizeof set.code), set.setting, set.option, set.value,
                 FromBytes(set.extra1, sizeof set.extra1), FromBytes(set.extra2, sizeof set.extra2),
                 entries);
}

void toFour(const py::handle& from, const char* name, std::uint8_t (&bytes)[4]) {
  const auto given = py::cast<std::string>(from.attr(name));
  if (given.size() != sizeof bytes) throw py::value_error(std::string(name) + " has 4 bytes");
  std::copy(given.begin(), given.end(), bytes);
}

template <typename Set>
std::unique_ptr<Set> toSet(const py::handle& from) {
  if (from.is_none()) return nullptr;
  auto set = std::make_unique<Set>();
  toFour(from, "code", set->code);
  set->setting = from.attr("setting").cast<std::uint32_t>();
  set->option = from.attr("option").cast<std::uint16_t>();
  set->value = from.attr("value").cast<std::uint32_t>();
  toFour(from, "extra1", set->extra1);
  toFour(from, "extra2", set->extra2);
  const py::list entries(from.attr("entries"));
  if (entries.size() > 65535) throw py::value_error("a calibration has at most 65535 entries");
  set->SetEntryCount(static_cast<std::uint16_t>(entries.size()));
  for (std::size_t i = 0; i < entries.size(); ++i) toEntry(entries[i], set->entries[i]);
  return set;
}

}  // namespace

py::list FromSetup(const Vex2PlateSetup& setup) {
  py::list wells;
  for (std::uint16_t i = 0; setup.cells != nullptr && i < setup.count; ++i) {
    wells.append(fromWellSetup(setup.cells[i]));
  }
  return wells;
}

void ToSetup(const py::handle& wells, Vex2PlateSetup& setup) {
  const py::list list(py::reinterpret_borrow<py::object>(wells));
  if (list.size() > 65535) throw py::value_error("a plate setup has at most 65535 wells");
  setup.Resize(static_cast<std::uint16_t>(list.size()));
  for (std::size_t i = 0; i < list.size(); ++i) toWellSetup(list[i], setup.cells[i]);
}

py::object FromDetector(const Vex2Detector& detector) {
  return MakeRaw("Vex2Detector", detector.name, detector.reporterDye, detector.quencherDye,
                 detector.description, detector.comment, detector.owner, detector.location,
                 FromBytes(detector.color, sizeof detector.color), detector.dateCreated,
                 detector.dateModified, detector.baselineStart, detector.baselineEnd,
                 detector.threshold, detector.analysisFlags, detector.autoBaseline,
                 detector.autoThreshold);
}

Vex2Detector ToRawDetector(const py::handle& from) {
  Vex2Detector detector;
  detector.name = ToText(from.attr("name"));
  detector.reporterDye = ToText(from.attr("reporterDye"));
  detector.quencherDye = ToText(from.attr("quencherDye"));
  detector.description = ToText(from.attr("description"));
  detector.comment = ToText(from.attr("comment"));
  detector.owner = ToText(from.attr("owner"));
  detector.location = ToText(from.attr("location"));
  const auto color = from.attr("color").cast<std::string>();
  if (color.size() != sizeof detector.color) throw py::value_error("color has 3 bytes");
  std::copy(color.begin(), color.end(), detector.color);
  detector.dateCreated = from.attr("dateCreated").cast<std::int32_t>();
  detector.dateModified = from.attr("dateModified").cast<std::int32_t>();
  detector.baselineStart = from.attr("baselineStart").cast<std::uint16_t>();
  detector.baselineEnd = from.attr("baselineEnd").cast<std::uint16_t>();
  detector.threshold = from.attr("threshold").cast<float>();
  detector.analysisFlags = from.attr("analysisFlags").cast<std::uint16_t>();
  detector.autoBaseline = from.attr("autoBaseline").cast<std::int32_t>();
  detector.autoThreshold = from.attr("autoThreshold").cast<std::int32_t>();
  return detector;
}

py::object FromPureDye(const Vex2PureDye& dye) {
  return fromSet("Vex2PureDye", dye);
}

py::object FromBackground(const Vex2BGC& background) {
  return fromSet("Vex2BGC", background);
}

std::unique_ptr<Vex2PureDye> ToPureDye(const py::handle& record) {
  return toSet<Vex2PureDye>(record);
}

std::unique_ptr<Vex2BGC> ToBackground(const py::handle& record) {
  return toSet<Vex2BGC>(record);
}

}  // namespace vex2::python
