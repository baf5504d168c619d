#include "vex2/run/ThermocycleProgramComp.h"

#include <cstring>

#include "vex2/container/Status.h"

ThermocycleProgramComp::ThermocycleProgramComp() : CBlockValueComp("TPro") {}

ThermocycleProgramComp::ThermocycleProgramComp(const ThermocycleProgram& program)
    : CBlockValueComp("TPro", program.length, program.data) {}

void ThermocycleProgramComp::CopyTo(ThermocycleProgram& program) const {
  program.Clear();
  program.length = GetLength();
  program.Allocate();
  if (program.data == nullptr) return;
  if (GetData() != nullptr) {
    std::memcpy(program.data, GetData(), GetLength());
  } else {
    std::memset(program.data, 0, GetLength());
  }
}

int ThermocycleProgramComp::WriteBody(CFile* file) {
  return GetData() != nullptr ? CBlockValueComp::WriteBody(file) : vex2::kWriteFailed;
}
