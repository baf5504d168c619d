#pragma once

#include "vex2/setup/SpectrumSetComp.h"
#include "vex2/setup/Vex2BGC.h"

/// The background in a document, "BKGD".
class VEX2_API CBackgroundComp final : public vex2::SpectrumSetComp<Vex2BGC> {
 public:
  static const std::string_view kTag;

  CBackgroundComp() : SpectrumSetComp(kTag) {}
  explicit CBackgroundComp(const Vex2BGC& record) : SpectrumSetComp(kTag, record) {}
};
