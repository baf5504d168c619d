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

/// One plate of a document to be exported: the values that exchange formats need, in UTF-8. Valid
/// as long as the document.
struct PlateSource {
  std::string name;  ///< name of a plate in a study; empty otherwise
  Plate plate;
  bool hasSetup = false;  ///< whether there is a plate setup, even one without wells
  std::vector<Detector> detectors;
  std::vector<std::string> dyes;
  std::vector<SettingValue> settings;  ///< without comment and log
  std::string comment;
  std::string log;
  std::string assay;  ///< without trailing blanks
  std::optional<Program> program;
  const AcquisitionDataComp* raw = nullptr;  ///< null if there are no raw readings
  std::optional<RecordedReadings> recorded;
  std::optional<std::string> start;  ///< start of the run with its zone; nothing if it is not known

  /// What the log states; null if the meaning of the readings is not known.
  const RunLog* Log() const;
  /// The index, from 0, of the first record of this well in each frame; nothing if there is none.
  std::optional<std::size_t> FindPosition(std::uint16_t well) const;
  /// The names of the channels. A single channel may have an empty name.
  std::vector<std::string> Channels() const;
};

/// Collects the values of the plate.
PlateSource SourceOf(const Document::Plate& plate);

/// A reading of one well with the frame that it is from.
struct SourceReading {
  std::uint64_t frame = 0;  ///< from 0
  RunReading reading;
};

/// Calls `take` for each reading with a known meaning, in the order of the frames. `position` is
/// the index of the well.
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

/// Lists as lost the values of the plate that are in no table of samples, targets or readings:
/// records of other kinds, further data blocks, details of detectors and wells.
void ListUntabled(const Document::Plate& plate, const PlateSource& source, Losses& losses);

/// Lists as lost what a study holds besides its plates. For any document, also lists the bytes
/// after the last record.
void ListBesidePlates(const Document& document, Losses& losses);

/// The name of a reading: "A1 amplification cycle 7".
std::string ReadingName(const PlateSource& source, std::uint16_t well, const RunReading& reading);

}  // namespace vex2::lab
