#include "vex2/run/ThermocycleProgram.h"

void ThermocycleProgram::Clear() {
  delete[] data;
  data = nullptr;
  length = 0;
}

void ThermocycleProgram::Allocate() {
  if (length == 0) return;
  delete[] data;
  data = nullptr;
  data = new std::uint8_t[length];
}
