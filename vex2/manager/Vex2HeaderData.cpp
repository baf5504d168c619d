#include "vex2/manager/Vex2HeaderData.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::uint32_t kTwelveWells = 4095;

template <std::size_t Size>
void setText(char (&field)[Size], const char* text) {
  std::memcpy(field, text, Size);
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
  setText(magic, "Vex2");
  setText(assayCode, "AbsQ");
  setText(runCode, "RtRn");
  setText(plateTypeCode, "p9C ");
  blank(text);
  setText(kindMarker, "Kest");
  setText(acquisitionStatus, "ZERO");
  SetRows(8);
}

Vex2HeaderData::Vex2HeaderData(const Vex2HeaderData& other) : rows(0), usage(nullptr) {
  *this = other;
}

Vex2HeaderData& Vex2HeaderData::operator=(const Vex2HeaderData& other) {
  if (this == &other) return *this;
  SetRows(other.usage != nullptr ? other.rows : std::uint16_t{0});
  if (usage != nullptr) std::copy_n(other.usage, rows, usage);
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
  delete[] usage;
  usage = nullptr;
  rows = 0;
  if (count == 0) return;
  usage = new std::uint32_t[count];
  rows = count;
  std::fill_n(usage, count, kTwelveWells);
}
