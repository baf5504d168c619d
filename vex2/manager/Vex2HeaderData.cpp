#include "vex2/manager/Vex2HeaderData.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string_view>

#include "vex2/format/HeaderLayout.h"

namespace {

constexpr std::string_view kRealTimeRun = "RtRn";
constexpr std::string_view kNewPlateType = "p9C ";

// The record has no field for the length of its table, and hosts may set `rows` to any number. So
// each table that is made here ends with a mark that no file can contain: it is computed from the
// mark's own address.
using Mark = std::array<std::uint32_t, 2>;

Mark markAt(const std::uint32_t* place) {
  const std::uint64_t address = reinterpret_cast<std::uintptr_t>(place);
  return {static_cast<std::uint32_t>(~address >> 32U), static_cast<std::uint32_t>(~address)};
}

bool isMark(const std::uint32_t* place) {
  const Mark mark = markAt(place);
  return place[0] == mark[0] && place[1] == mark[1];
}

template <std::size_t Size>
void setText(char (&field)[Size], const char (&text)[Size]) {
  std::memcpy(field, text, Size);
}

void setCode(char (&field)[vex2::kCodeLength], std::string_view code) {
  std::copy_n(code.begin(), vex2::kCodeLength, field);
}

template <std::size_t Size>
void blank(char (&field)[Size]) {
  std::fill_n(field, Size, ' ');
}

}  // namespace

Vex2HeaderData::Vex2HeaderData()
    : formatA(2),
      formatB(2),
      rows(0),
      columns(12),
      thermocycleOffset(0),
      flagG(0),
      acquisitionDataOffset(0),
      usage(nullptr) {
  setCode(magic, vex2::kMagic);
  setCode(assayCode, vex2::Assay::kAbsolute.code);
  setCode(runCode, kRealTimeRun);
  setCode(plateTypeCode, kNewPlateType);
  blank(text);
  setCode(kindMarker, vex2::KindMarker::kKestor);
  setCode(acquisitionStatus, vex2::RunStatus::kNotStarted);
  SetRows(8);
}

Vex2HeaderData::Vex2HeaderData(const Vex2HeaderData& other) : rows(0), usage(nullptr) {
  *this = other;
}

Vex2HeaderData& Vex2HeaderData::operator=(const Vex2HeaderData& other) {
  if (this == &other) return *this;
  SetRows(other.rows);
  if (usage != nullptr) std::copy_n(other.usage, other.GetMaskCount(), usage);
  setText(magic, other.magic);
  formatA = other.formatA;
  formatB = other.formatB;
  setText(assayCode, other.assayCode);
  setText(runCode, other.runCode);
  setText(plateTypeCode, other.plateTypeCode);
  columns = other.columns;
  thermocycleOffset = other.thermocycleOffset;
  flagG = other.flagG;
  setText(text, other.text);
  setText(kindMarker, other.kindMarker);
  setText(acquisitionStatus, other.acquisitionStatus);
  acquisitionDataOffset = other.acquisitionDataOffset;
  return *this;
}

Vex2HeaderData::~Vex2HeaderData() {
  delete[] usage;
}

void Vex2HeaderData::Reset() {
  blank(magic);
  formatA = 0;
  formatB = 0;
  blank(assayCode);
  blank(runCode);
  blank(plateTypeCode);
  SetRows(0);
  columns = 0;
  thermocycleOffset = 0;
  flagG = 0;
  blank(text);
  blank(kindMarker);
  blank(acquisitionStatus);
  acquisitionDataOffset = 0;
}

void Vex2HeaderData::SetRows(std::uint16_t count) {
  // If memory for the new table runs out, the old one stays.
  std::unique_ptr<std::uint32_t[]> table;
  if (count != 0) {
    table.reset(new std::uint32_t[count + Mark().size()]);
    std::fill_n(table.get(), count, kTwelveWells);
    std::ranges::copy(markAt(table.get() + count), table.get() + count);
  }
  delete[] usage;
  usage = table.release();
  rows = count;
}

std::uint16_t Vex2HeaderData::GetMaskCount() const {
  if (usage == nullptr) return 0;
  std::uint16_t count = 0;
  while (count < rows && !isMark(usage + count)) ++count;
  return count;
}
