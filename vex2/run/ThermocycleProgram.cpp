#include "vex2/run/ThermocycleProgram.h"

void ThermocycleProgram::Clear() {
  delete[] data;
  data = nullptr;
  length = 0;
}

void ThermocycleProgram::Allocate() {
  if (length == 0) return;
  const std::uint32_t wanted = length;
  Clear();
  data = new std::uint8_t[wanted];
  length = wanted;
}
