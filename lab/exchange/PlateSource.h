#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lab/exchange/Losses.h"
#include "lab/model/Document.h"
#include "lab/model/Run.h"
#include "lab/model/RunLog.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::lab {

/// One plate of a document as it is exported: what exchange formats ask for, in UTF-8. Valid as
/// long as the document.
struct PlateSource {
  std::string name;  ///< of a plate in a study; empty otherwise
  Plate plate;
  bool hasSetup = false;  ///< whether there is a plate setup, even one without wells
  std::vector<Detector> detectors;
  std::vector<std::string> dyes;
  std::vector<SettingValue> settings;  ///< without comment and log
  std::string comment;
  std::string log;
  std::string assay;  ///< without trailing blanks
  std::optional<Program> program;
  const AcquisitionDataComp* raw = nullptr;  ///< null where there are no raw readings
  std::optional<RecordedReadings> recorded;
  std::optional<std::string> start;  ///< with its zone, or nothing

  /// What the log states; nothing if the meaning of the readings is not known.
  const RunLog* Log() const;
  /// The place, from 0, of the well among those of each frame, the first one.
  std::optional<std::size_t> FindPosition(std::uint16_t well) const;
  /// Names of channels; one empty name where they have none.
  std::vector<std::string> Channels() const;
};

/// The plate as it is exported.
PlateSource SourceOf(const Document::Plate& plate);

/// A reading of one channel, with the frame that it is from.
struct SourceReading {
  std::uint64_t frame = 0;  ///< from 0
  RunReading reading;
};

/// Calls `take` with each filled and known record of the well at `position`, by frames.
template <typename Take>
void ForEachReading(const PlateSource& source, std::size_t position, const Take& take) {
  if (source.Log() == nullptr) return;
  const int frames = source.raw->GetFrameCount();
  for (int frame = 0; frame < frames; ++frame) {
    const Vex2WellRecord* records = source.raw->GetFrame(frame);
    if (records == nullptr) continue;
    const auto index = static_cast<std::uint64_t>(frame);
    const auto reading = source.recorded->Read(records[position], index);
    if (reading) take(SourceReading{index, *reading});
  }
}

/// The values of the plate that no table of samples, targets and readings holds: records of other
/// kinds, further data blocks, details of detectors and wells.
void ListUntabled(const Document::Plate& plate, const PlateSource& source, Losses& losses);

/// Lists as lost what a study holds besides its plates, and the bytes after the last record of any
/// document.
void ListBesidePlates(const Document& document, Losses& losses);

/// "A1 amplification cycle 7".
std::string ReadingName(const PlateSource& source, std::uint16_t well, const RunReading& reading);

}  // namespace vex2::lab
