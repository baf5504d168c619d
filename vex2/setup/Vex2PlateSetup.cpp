#include "vex2/setup/Vex2PlateSetup.h"

void Vex2PlateSetup::Clear() {
  delete[] cells;
  cells = nullptr;
  count = 0;
}

void Vex2PlateSetup::Resize(std::uint16_t newCount) {
  if (newCount == 0) return;
  Clear();
  cells = new Vex2WellSetup[newCount];
  count = newCount;
}
