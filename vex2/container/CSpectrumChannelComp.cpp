#include "vex2/container/CSpectrumChannelComp.h"

#include "vex2/format/RecordKinds.h"

CSpectrumChannelComp::CSpectrumChannelComp()
    : CBlockValueComp(vex2::TagOf(vex2::Kind::kSpectrumChannel)) {}
