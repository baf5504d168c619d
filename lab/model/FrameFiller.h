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

/// Makes a frame of `block` from its stored records, well by well.
class FrameFiller {
 public:
  /// `block` and `recorded` must live as long as the filler.
  FrameFiller(const BlockInfo& block, const RecordedReadings& recorded, std::uint64_t index);

  /// Takes the next well's record, as it is stored.
  void Take(const std::uint8_t* bytes);
  /// The frame of the records that were taken.
  Frame Done() { return std::move(frame_); }

 private:
  const BlockInfo& block_;
  const RecordedReadings& recorded_;
  std::optional<ReadingMeaning> meaning_;
  Frame frame_;
};

/// What a reader knows of its file beside what it says of the run.
struct ReaderFile {
  FileIdentity identity;
  std::string_view log;  ///< as the document stores it; valid as long as the reader
};

ReaderFile FileOf(const RunReader& reader);

}  // namespace vex2::lab
