#pragma once

#include "vex2/container/CBlockValueComp.h"

/// The spectrum channel record "SPCH". Its body belongs to the instrument: it is carried as raw
/// bytes, a zero at the end included.
class VEX2_API CSpectrumChannelComp final : public CBlockValueComp {
 public:
  CSpectrumChannelComp();
  int ReadBody(CFile* file) override { return readBlock(file); }
};
