#pragma once

#include "vex2/container/CBlockValueComp.h"

/// The spectrum channel record "SPCH". The instrument defines its body, which is kept as raw bytes,
/// including a trailing zero byte.
class VEX2_API CSpectrumChannelComp final : public CBlockValueComp {
 public:
  CSpectrumChannelComp();
  int ReadBody(CFile* file) override { return readBlock(file); }
};
