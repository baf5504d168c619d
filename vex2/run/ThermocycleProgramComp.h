#pragma once

#include "vex2/container/CBlockValueComp.h"
#include "vex2/run/ThermocycleProgram.h"

/// The thermal cycling program in a document, "TPro". Its bytes are nobody's text: a zero byte at
/// the end belongs to the program and stays.
class VEX2_API ThermocycleProgramComp final : public CBlockValueComp {
 public:
  ThermocycleProgramComp();
  /// A copy of the program; empty unless it has both a length and a block.
  explicit ThermocycleProgramComp(const ThermocycleProgram& program);

  /// Copies the program into `program`, in place of what it held.
  void CopyTo(ThermocycleProgram& program) const;

  bool IsThermocycleComp() const override { return true; }
  /// -200, and nothing is written, when there is no block.
  int WriteBody(CFile* file) override;
  int ReadBody(CFile* file) override { return readBlock(file); }
};
