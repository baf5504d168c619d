#include "vex2/run/Vex2FrameData.h"

#include <utility>

Vex2FrameData::Vex2FrameData(Vex2FrameData&& other) noexcept
    : records(std::exchange(other.records, nullptr)),
      wellCount(std::exchange(other.wellCount, std::uint16_t{0})) {}

Vex2FrameData& Vex2FrameData::operator=(Vex2FrameData&& other) noexcept {
  std::swap(records, other.records);
  std::swap(wellCount, other.wellCount);
  return *this;
}

void Vex2FrameData::Resize(std::uint16_t count) {
  delete[] records;
  records = nullptr;
  wellCount = 0;
  if (count == 0) return;
  records = new Vex2WellRecord[count];
  wellCount = count;
}
