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

/// A data block to be exported, and what is known of its readings. Valid as long as the document.
struct ExportedBlock {
  Document::Plate plate;
  const AcquisitionDataComp* records = nullptr;
  RecordedReadings readings;
};

/// The number of all records, and of those with an unknown meaning.
struct ExportCounts {
  std::size_t all = 0;
  std::size_t unknown = 0;
};

/// Writes the readings of the blocks as CSV: well by well, and for each well in the order of the
/// frames. If `ofPlates`, each row begins with the name of the plate. Readings whose meaning is not
/// known are left empty and counted.
ExportCounts WriteReadings(std::ostream& out, const std::vector<ExportedBlock>& blocks,
                           bool ofPlates);

/// Writes the stored values of the blocks as CSV, including those of other programs.
void WriteStored(std::ostream& out, const std::vector<ExportedBlock>& blocks, bool ofPlates);

/// Writes the spectra of the well with this name in frame `frame`, from 0, as CSV: one row for each
/// value.
void WriteSpectra(std::ostream& out, const std::vector<WellSpectrum>& spectra,
                  const std::string& well, std::int64_t frame, bool ofPlates);

}  // namespace vex2::lab
