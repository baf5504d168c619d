#pragma once

#include "vex2/container/CBlockValueComp.h"
#include "vex2/run/ThermocycleProgram.h"

/// The thermal cycling program in a document, "TPro". It is not a text: a trailing zero byte
/// belongs to the program and is kept.
class VEX2_API ThermocycleProgramComp final : public CBlockValueComp {
 public:
  ThermocycleProgramComp();
  /// Holds a copy of the program; empty unless `program` has both a length and bytes.
  explicit ThermocycleProgramComp(const ThermocycleProgram& program);

  /// Replaces the content of `program` by a copy of this program.
  void CopyTo(ThermocycleProgram& program) const;

  /// True.
  bool IsThermocycleComp() const override { return true; }
  /// Returns -200 and writes nothing if there are no bytes.
  int WriteBody(CFile* file) override;
  int ReadBody(CFile* file) override { return readBlock(file); }
};
