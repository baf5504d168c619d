#pragma once

#include "vex2/setup/SpectrumSetComp.h"
#include "vex2/setup/Vex2BGC.h"

/// The background in a document, "BKGD".
class VEX2_API CBackgroundComp final : public vex2::SpectrumSetComp<Vex2BGC> {
 public:
  /// The tag, "BKGD".
  static const std::string_view kTag;

  /// An empty background.
  CBackgroundComp() : SpectrumSetComp(kTag) {}
  /// Holds a copy of `record`, with reserved bytes of zero.
  explicit CBackgroundComp(const Vex2BGC& record) : SpectrumSetComp(kTag, record) {}
};
