#include "vex2/run/ThermocycleProgramComp.h"

#include <cstring>

#include "vex2/container/Status.h"
#include "vex2/format/RecordKinds.h"

using vex2::Kind;
using vex2::TagOf;

ThermocycleProgramComp::ThermocycleProgramComp() : CBlockValueComp(TagOf(Kind::kProgram)) {}

ThermocycleProgramComp::ThermocycleProgramComp(const ThermocycleProgram& program)
    : CBlockValueComp(TagOf(Kind::kProgram), program.length, program.data) {}

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
