#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "lab/model/Readings.h"
#include "lab/model/Run.h"
#include "lab/model/RunLog.h"
#include "vex2/framework/CFile.h"

namespace vex2::lab {

/// Device and number of a file: what tells one file from another at the same path.
using FileIdentity = std::pair<std::uint64_t, std::uint64_t>;

/// Reads frames of one data block straight from its file, which is open as long as the reader
/// lives; of a block without frames nothing is opened. Throws `Error` or `CFileException`.
class FrameReader {
 public:
  /// Throws an error when the document was replaced, or the block changed, since `block` was read
  /// from the file of that identity. Frames that were appended since are no change. `log` is the
  /// log of the block's document.
  FrameReader(std::string path, const FileIdentity& identity, const BlockInfo& block,
              std::string_view log);

  /// The position of each frame in the run. Reads one record of each frame; more only where the
  /// first ones are not the recorder's.
  std::vector<FramePosition> ReadAxis();
  /// `index` must be below the frame count.
  Frame ReadFrame(std::uint64_t index);
  /// All of them, in one pass.
  Readings ReadAll();

 private:
  class File final : public CFile {
   public:
    using CFile::GetIdentity;
  };

  void requireSameBlock(const FileIdentity& identity);
  void seekFrame(std::uint64_t index);
  template <typename Take>
  void readRecords(std::size_t count, Take take);
  FramePosition readPosition(std::uint64_t index);

  std::string path_;
  const BlockInfo& block_;
  RecordedReadings recorded_;
  File file_;
  std::uint64_t firstFrame_ = 0;
  std::uint64_t frameSize_ = 0;
};

/// What the log states of the readings; nothing if they are not this library's.
std::optional<ReadingMeaning> MeaningOf(const std::optional<RunLog>& log);

}  // namespace vex2::lab
