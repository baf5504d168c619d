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

/// Device and number of a file, which show whether the file at a path was replaced.
using FileIdentity = std::pair<std::uint64_t, std::uint64_t>;

/// Reads frames of one data block directly from its file, which stays open during the lifetime of
/// the reader. For a block without frames it opens no file. Throws `Error` or `CFileException`.
class FrameReader {
 public:
  /// Opens the file. `block` was read earlier from the file with this identity. Throws an error if
  /// the file was replaced or the block was changed since; frames may have been appended. `log` is
  /// the log of the block's document.
  FrameReader(std::string path, const FileIdentity& identity, const BlockInfo& block,
              std::string_view log);

  /// Reads the position of each frame in the run. Reads one record per frame, and more only if the
  /// first one is not as the recorder wrote it.
  std::vector<FramePosition> ReadAxis();
  /// Reads frame `index`, which must be below the frame count.
  Frame ReadFrame(std::uint64_t index);
  /// Reads all frames in one pass.
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

/// The meaning of the readings of a run with this log; nothing if this library did not record them.
std::optional<ReadingMeaning> MeaningOf(const std::optional<RunLog>& log);

}  // namespace vex2::lab
