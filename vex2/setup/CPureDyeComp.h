#pragma once

#include "vex2/setup/SpectrumSetComp.h"
#include "vex2/setup/Vex2PureDye.h"

/// The spectra of the pure dyes in a document, "PDYE".
class VEX2_API CPureDyeComp final : public vex2::SpectrumSetComp<Vex2PureDye> {
 public:
  /// The tag, "PDYE".
  static const std::string_view kTag;

  /// A component without pure dyes.
  CPureDyeComp() : SpectrumSetComp(kTag) {}
  /// Holds a copy of `record`, with reserved bytes of zero.
  explicit CPureDyeComp(const Vex2PureDye& record) : SpectrumSetComp(kTag, record) {}
};
