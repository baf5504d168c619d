#pragma once

#include "vex2/setup/SpectrumSetComp.h"
#include "vex2/setup/Vex2PureDye.h"

/// The spectra of the pure dyes in a document, "PDYE".
class VEX2_API CPureDyeComp final : public vex2::SpectrumSetComp<Vex2PureDye> {
 public:
  static const std::string_view kTag;

  CPureDyeComp() : SpectrumSetComp(kTag) {}
  explicit CPureDyeComp(const Vex2PureDye& record) : SpectrumSetComp(kTag, record) {}
};
