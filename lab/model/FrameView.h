#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "lab/model/DataBlock.h"
#include "lab/model/Document.h"
#include "lab/model/RunLog.h"
#include "vex2/run/Vex2FrameData.h"

namespace vex2::lab {

/// One frame of a data block, with what is needed to show it.
struct FrameView {
  std::string plate;        ///< its name in a study, UTF-8
  bool isEmbedded = false;  ///< in a study
  std::uint32_t rows = 0;   ///< of the plate
  std::uint32_t columns = 0;
  std::vector<std::uint16_t> wells;  ///< well numbers, in the order of the frame's records
  std::uint64_t frameCount = 0;      ///< of the block
  Vex2FrameData frame;
  RecordedReadings recorded;
  std::uint64_t index = 0;  ///< of the frame, from 0

  /// The name of the well at `position` among `wells`, from 0.
  std::string NameOf(std::size_t position) const;
  /// What that well gave, as far as it is known.
  std::optional<RunReading> ReadingOf(std::size_t position) const;
  /// Whether the meaning of all that stands in the frame is known.
  bool IsKnown() const;
  /// How many data values there are up to the last that is not 0 in all wells, at least 1.
  std::size_t DataColumns() const;
};

/// Finds one frame, from 0, of the data blocks with one tag in the document at `path`.
class FrameQuery {
 public:
  FrameQuery(std::string path, std::string block, std::int64_t index)
      : path_(std::move(path)), block_(std::move(block)), index_(index) {}

  /// Those of the plates that have the frame. Throws an error when none has.
  std::vector<Document::Plate> PlatesWithFrame(const Document& document,
                                               std::vector<Document::Plate> plates) const;
  /// The frame of a plate that has it.
  FrameView ViewOf(const Document::Plate& plate) const;
  /// The frame of the document itself, straight from `file`, which is open and whose header was
  /// read. Throws an error when there is no such frame, or it is cut short.
  FrameView Read(DocumentFile& file) const;

 private:
  void requireIndex(std::uint64_t count) const;
  [[noreturn]] void refuseBlock() const;
  void readRecords(DocumentFile& file, const FileRecord& record, const StoredBlock& head,
                   FrameView& view) const;

  std::string path_;
  std::string block_;
  std::int64_t index_;
};

}  // namespace vex2::lab
