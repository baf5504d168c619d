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

/// One frame of a data block, with all that is needed to show it.
struct FrameView {
  std::string plate;        ///< name of the plate in a study, UTF-8
  bool isEmbedded = false;  ///< it is from a plate of a study
  std::uint32_t rows = 0;   ///< number of rows of the plate
  std::uint32_t columns = 0;
  std::vector<std::uint16_t> wells;  ///< well numbers, in the order of the frame's records
  std::uint64_t frameCount = 0;      ///< number of frames of the block
  Vex2FrameData frame;
  RecordedReadings recorded;
  std::uint64_t index = 0;  ///< index of the frame, from 0

  /// The name of the well with this index, from 0, in `wells`.
  std::string NameOf(std::size_t position) const;
  /// The reading of the well with this index in `wells`; nothing if it has none, or if the meaning
  /// is not known.
  std::optional<RunReading> ReadingOf(std::size_t position) const;
  /// Whether the meaning of all readings in the frame is known.
  bool IsKnown() const;
  /// The number of data values to show: up to the last one that is not 0 in any well, at least 1.
  std::size_t DataColumns() const;
};

/// Finds one frame, by its index from 0, in the data blocks with one tag in the document at `path`.
class FrameQuery {
 public:
  FrameQuery(std::string path, std::string block, std::int64_t index)
      : path_(std::move(path)), block_(std::move(block)), index_(index) {}

  /// Returns those of `plates` that have the frame. Throws an error if none has it.
  std::vector<Document::Plate> PlatesWithFrame(const Document& document,
                                               std::vector<Document::Plate> plates) const;
  /// The frame of a plate that has it.
  FrameView ViewOf(const Document::Plate& plate) const;
  /// Reads the frame of the document itself directly from `file`, which must be open with its
  /// header already read. Throws an error if there is no such frame, or if it is cut off.
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
