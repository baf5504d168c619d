#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "lab/model/ReadingScale.h"
#include "lab/model/Run.h"
#include "vex2/framework/Export.h"

namespace vex2::lab {

/// The number of values that a document stores of each well in a frame.
inline constexpr std::size_t kReadingValues = 32;

/// The meaning of the stored values, for readings that this library recorded.
struct ReadingMeaning {
  ReadingScale scale;  ///< how readings became stored values
  /// The names of the channels: value c of a well is the reading of channel c. Empty if there is
  /// only one channel and it has no name.
  std::vector<std::string> channels;

  /// The number of channels; 1 if `channels` is empty.
  std::size_t ChannelCount() const { return channels.empty() ? 1 : channels.size(); }
};

/// The readings of a data block: one contiguous matrix of 16-bit values, by frame (from 0), well
/// index (from 0, in the order of `Wells`) and value (from 0), with its axes.
///
/// Copies share the matrix, which never changes. Spans that are returned are valid as long as any
/// copy lives. Different threads can use the same object and its copies.
///
/// Operations throw `Error` with `kNoSuchFrame`, `kNoSuchWell` or `kNoSuchValue` for an index that
/// is not below the count.
class VEX2_API Readings {
 public:
  /// Makes an object without frames and wells.
  Readings();
  // There are no move operations: they would leave an object without a matrix, and copying is as
  // cheap.
  /// Shares the matrix of the other object.
  Readings(const Readings&) = default;
  /// Shares the matrix of the other object.
  Readings& operator=(const Readings&) = default;
  ~Readings() = default;

  /// The number of frames.
  std::size_t FrameCount() const;
  /// The number of wells in each frame.
  std::size_t WellCount() const;
  /// The well numbers, from 1, in the order of the matrix.
  const std::vector<std::uint16_t>& Wells() const;
  /// The index of the first well with this number; nothing if the block has no such well.
  std::optional<std::size_t> FindWell(std::uint16_t number) const;
  /// The position of each frame in the run.
  const std::vector<FramePosition>& Axis() const;

  /// The whole matrix, `FrameCount` times `WellCount` times 32 values.
  std::span<const std::uint16_t> Values() const;
  /// The values of one frame, `WellCount` times 32.
  std::span<const std::uint16_t> Values(std::size_t frame) const;
  /// The 32 values of one well in one frame.
  std::span<const std::uint16_t> Values(std::size_t frame, std::size_t well) const;
  /// The stored value with the index `value`, of the well with the index `well`, in the frame with
  /// the index `frame`. All indexes count from 0.
  std::uint16_t At(std::size_t frame, std::size_t well, std::size_t value) const;

  /// The meaning of the values; nothing if the log does not say that this library recorded them.
  const std::optional<ReadingMeaning>& Meaning() const;
  /// The number of channels; 0 if the meaning is not known.
  std::size_t ChannelCount() const;
  /// The reading in real units. Returns nothing if the reading is missing, or if the record
  /// contains something that this library would not have written.
  std::optional<double> Fluorescence(std::size_t frame, std::size_t well,
                                     std::size_t channel = 0) const;
  /// All readings of a channel in real units, `FrameCount` times `WellCount`. NaN in place of
  /// readings for which `Fluorescence` returns nothing.
  std::vector<double> FluorescenceOf(std::size_t channel = 0) const;

 private:
  friend class ReadingsFiller;
  struct Matrix;

  explicit Readings(std::shared_ptr<const Matrix> matrix);

  std::shared_ptr<const Matrix> matrix_;
};

/// What a document stores of one well in one frame.
struct WellReading {
  std::uint16_t well = 0;  ///< well number, from 1
  /// The leading values; their meaning depends on the instrument.
  std::array<std::uint16_t, 8> leading{};
  std::array<std::uint16_t, kReadingValues> values{};  ///< the data values
  /// The readings of the channels in real units, NaN for a missing one. Empty if the meaning is not
  /// known.
  std::vector<double> fluorescence;
};

/// One frame of a data block.
struct Frame {
  std::uint64_t index = 0;         ///< index in the block, from 0
  FramePosition position;          ///< position in the run
  std::vector<WellReading> wells;  ///< in the order of the block's wells
};

}  // namespace vex2::lab
