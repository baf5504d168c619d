#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "lab/model/FrameReader.h"
#include "lab/model/Readings.h"
#include "lab/model/Run.h"
#include "lab/model/RunLog.h"
#include "lab/model/RunReader.h"

namespace vex2::lab {

/// Makes a `Frame` from the stored records of its wells.
class FrameFiller {
 public:
  /// `block` and `recorded` must outlive the filler.
  FrameFiller(const BlockInfo& block, const RecordedReadings& recorded, std::uint64_t index);

  /// Takes the stored record of the next well.
  void Take(const std::uint8_t* bytes);
  /// The frame made of the records that were taken.
  Frame Done() { return std::move(frame_); }

 private:
  const BlockInfo& block_;
  const RecordedReadings& recorded_;
  std::optional<ReadingMeaning> meaning_;
  Frame frame_;
};

/// What a reader knows of its file that is not part of its public interface.
struct ReaderFile {
  FileIdentity identity;
  std::string_view log;  ///< as the document stores it; valid as long as the reader
};

ReaderFile FileOf(const RunReader& reader);

}  // namespace vex2::lab
