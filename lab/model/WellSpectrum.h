#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "lab/model/Document.h"
#include "vex2/run/Vex2WellRecord.h"

namespace vex2::lab {

/// The stored readings of one well in one frame of the raw readings.
struct WellSpectrum {
  std::string plate;  ///< name of the plate in a study, UTF-8
  bool isEmbedded = false;
  std::uint32_t well = 0;  ///< well number, from 1
  int frameCount = 0;      ///< number of frames of the block
  Vex2WellRecord record = {};
  std::vector<std::uint32_t> rates = {};  ///< only for a background document

  /// The number of readings to show: up to the last one that is not 0, at least 1. A run with one
  /// channel has only one.
  std::size_t UsedReadings() const;
};

/// The stored readings of the well with this name in frame `frame`, from 0, of a plate of
/// `document`. Throws an error if the plate has no such well or frame.
WellSpectrum SpectrumOf(const Document& document, const Document::Plate& plate,
                        const std::string& wellName, std::int64_t frame);

/// The stored readings of the well and frame, for each of `plates` that has them. Throws an error
/// if none has them.
std::vector<WellSpectrum> SpectraOf(const Document& document,
                                    const std::vector<Document::Plate>& plates,
                                    const std::string& wellName, std::int64_t frame);

}  // namespace vex2::lab
