#include "lab/model/StoredCalibration.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <optional>

#include "lab/Error.h"
#include "lab/Text.h"
#include "vex2/setup/CCalibrationComp.h"

namespace vex2::lab {

namespace {

// These functions copy the fields of a spectrum. The first ones copy the fields that both kinds of
// spectrum have; the others copy the fields of one kind.

void copyOwn(const Vex2DyeSpectrum& from, CalibrationEntry& to) {
  to.bytes = {from.byte1, from.byte2};
  to.params = {from.param1, from.param2, from.param3};
}

void copyOwn(const Vex2BackgroundSpectrum& from, CalibrationEntry& to) {
  to.limit = from.limit;
}

void copyOwn(const CalibrationEntry& from, Vex2DyeSpectrum& to) {
  to.byte1 = from.bytes[0];
  to.byte2 = from.bytes[1];
  to.param1 = from.params[0];
  to.param2 = from.params[1];
  to.param3 = from.params[2];
}

void copyOwn(const CalibrationEntry& from, Vex2BackgroundSpectrum& to) {
  to.limit = from.limit;
}

template <typename Record>
CalibrationPart partOf(const Record& record) {
  CalibrationPart part;
  std::copy_n(record.code, part.head.code.size(), part.head.code.begin());
  part.head.setting = record.setting;
  part.head.option = record.option;
  part.head.value = record.value;
  std::copy_n(record.extra1, part.head.extra1.size(), part.head.extra1.begin());
  std::copy_n(record.extra2, part.head.extra2.size(), part.head.extra2.begin());
  for (int index = 0; index < record.entryCount; ++index) {
    const auto& from = record.entries[index];
    CalibrationEntry& to = part.entries.emplace_back();
    to.name = ToUtf8({from.name != nullptr ? from.name : "", from.nameLength});
    to.key1 = from.key1;
    to.key2 = from.key2;
    to.dyeIndex = from.dyeIndex;
    to.values.assign(from.values, from.values + from.valueCount);
    copyOwn(from, to);
  }
  return part;
}

std::string storedName(const CalibrationEntry& entry) {
  const auto name = ToLatin1(entry.name);
  if (name && name->size() <= std::numeric_limits<std::uint8_t>::max()) return *name;
  throw Error(ErrorCode::kInvalidValue,
              "the name of a spectrum is not a text of 255 Latin-1 characters at most");
}

template <typename Record>
void fill(Record& record, const CalibrationPart& part) {
  std::copy(part.head.code.begin(), part.head.code.end(), record.code);
  record.setting = part.head.setting;
  record.option = part.head.option;
  record.value = part.head.value;
  std::copy(part.head.extra1.begin(), part.head.extra1.end(), record.extra1);
  std::copy(part.head.extra2.begin(), part.head.extra2.end(), record.extra2);
  record.SetEntryCount(static_cast<std::uint16_t>(part.entries.size()));
  for (std::size_t index = 0; index < part.entries.size(); ++index) {
    const CalibrationEntry& from = part.entries[index];
    auto& to = record.entries[index];
    const std::string name = storedName(from);
    to.SetName(name.data(), static_cast<std::uint8_t>(name.size()));
    to.key1 = from.key1;
    to.key2 = from.key2;
    to.dyeIndex = from.dyeIndex;
    to.SetValues(from.values.data(), static_cast<std::uint8_t>(from.values.size()));
    copyOwn(from, to);
  }
}

void require(int status) {
  if (status != kSuccess) {
    throw Error(ErrorCode::kSystem, "the document cannot hold so large a calibration");
  }
}

template <typename Component>
Component* findPart(const Vex2FileManager& document) {
  for (int index = 0; index < document.GetAllComponentCount(); ++index) {
    auto* calibration = dynamic_cast<CCalibrationComp*>(document.GetComponent(index));
    if (calibration != nullptr) return calibration->Find<Component>();
  }
  return nullptr;
}

// Calls `replace`, which replaces a part of the calibration. Then restores the reserved words of
// the old part, since the new one does not have them.
template <typename Component, typename Replace>
void replacePart(const Vex2FileManager& document, const Replace& replace) {
  std::optional<std::array<std::uint8_t, 48>> reserved;
  if (const auto* before = findPart<Component>(document)) {
    std::copy_n(before->GetReserved().begin(), 48, reserved.emplace().begin());
  }
  require(replace());
  auto* after = findPart<Component>(document);
  if (reserved && after != nullptr) after->SetReserved(*reserved);
}

}  // namespace

Calibration CalibrationOf(const Vex2FileManager& document) {
  Vex2PureDye* pureDye = nullptr;
  Vex2BGC* background = nullptr;
  int hasPureDye = 0;
  int hasBackground = 0;
  const int status = document.GetCalibrationInfo(pureDye, &hasPureDye, background, &hasBackground);
  const std::unique_ptr<Vex2PureDye> ownedDye(pureDye);
  const std::unique_ptr<Vex2BGC> ownedBackground(background);
  Calibration calibration;
  if (status != kSuccess) return calibration;
  if (hasPureDye != 0) calibration.pureDyes = partOf(*pureDye);
  if (hasBackground != 0) calibration.background = partOf(*background);
  return calibration;
}

void StoreCalibration(Vex2FileManager& document, const Calibration& calibration) {
  if (calibration.pureDyes) {
    Vex2PureDye record;
    fill(record, *calibration.pureDyes);
    replacePart<CPureDyeComp>(document, [&] { return document.ReplacePureDye(&record); });
  }
  if (calibration.background) {
    Vex2BGC record;
    fill(record, *calibration.background);
    replacePart<CBackgroundComp>(document, [&] { return document.ReplaceBackground(&record); });
  }
}

std::vector<double> NumbersOf(const CalibrationEntry& entry) {
  std::vector<double> numbers;
  for (const std::uint32_t value : entry.values) numbers.push_back(double{NumberOf(value)});
  return numbers;
}

std::string ReplaceCalibration(Vex2FileManager& document, Calibration calibration) {
  const Calibration before = CalibrationOf(document);
  std::string report;
  const auto keepHead = [&](std::optional<CalibrationPart>& part,
                            const std::optional<CalibrationPart>& old, const char* name) {
    if (!part) return;
    if (old) part->head = old->head;
    report += fmt::format("{}: {} -> {}\n", name, old ? old->entries.size() : 0,
                          Counted(part->entries.size(), "spectrum", "spectra"));
  };
  keepHead(calibration.pureDyes, before.pureDyes, "pure dyes");
  keepHead(calibration.background, before.background, "background");
  StoreCalibration(document, calibration);
  return report;
}

}  // namespace vex2::lab
