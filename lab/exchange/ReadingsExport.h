#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "lab/model/Document.h"
#include "lab/model/RunLog.h"
#include "lab/model/WellSpectrum.h"

namespace vex2::lab {

/// A data block that is exported, and what is known of its readings. Valid as long as the document.
struct ExportedBlock {
  Document::Plate plate;
  const AcquisitionDataComp* records = nullptr;
  RecordedReadings readings;
};

/// How many records there are in all, and in how many stands something that is not known.
struct ExportCounts {
  std::size_t all = 0;
  std::size_t unknown = 0;
};

/// Writes the readings of the blocks as CSV, well by well, in each by frames; with the plates'
/// names where they are `ofPlates` of a study. What is not known is left empty, and counted.
ExportCounts WriteReadings(std::ostream& out, const std::vector<ExportedBlock>& blocks,
                           bool ofPlates);

/// Writes the stored values of the blocks as CSV, also those of other programs.
void WriteStored(std::ostream& out, const std::vector<ExportedBlock>& blocks, bool ofPlates);

/// Writes the spectra of the well with that name in frame `frame`, from 0, as CSV, a row for each
/// value.
void WriteSpectra(std::ostream& out, const std::vector<WellSpectrum>& spectra,
                  const std::string& well, std::int64_t frame, bool ofPlates);

}  // namespace vex2::lab
