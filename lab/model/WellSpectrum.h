#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "lab/model/Document.h"
#include "vex2/run/Vex2WellRecord.h"

namespace vex2::lab {

/// The stored readings of one well in one frame of the raw data.
struct WellSpectrum {
  std::string plate;  ///< its name in a study, UTF-8
  bool isEmbedded = false;
  std::uint32_t well = 0;  ///< its number, from 1
  int frameCount = 0;      ///< of the block
  Vex2WellRecord record = {};
  std::vector<std::uint32_t> rates = {};  ///< of a background document

  /// How many readings there are up to the last that is not 0, at least 1: a run of one channel
  /// has no others.
  std::size_t UsedReadings() const;
};

/// The spectrum of the well with that name in frame `frame`, from 0, of a plate of `document`.
/// Throws an error when the plate has no such well or frame.
WellSpectrum SpectrumOf(const Document& document, const Document::Plate& plate,
                        const std::string& wellName, std::int64_t frame);

/// The spectra of those of the plates that have one. Throws an error when none has.
std::vector<WellSpectrum> SpectraOf(const Document& document,
                                    const std::vector<Document::Plate>& plates,
                                    const std::string& wellName, std::int64_t frame);

}  // namespace vex2::lab
