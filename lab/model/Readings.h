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

/// How many values a document stores of a well in a frame.
inline constexpr std::size_t kReadingValues = 32;

/// The meaning of the stored values of readings that this library recorded.
struct ReadingMeaning {
  ReadingScale scale;  ///< how readings became stored numbers
  /// The names of the channels, of which each well has a reading in every frame: channel c is value
  /// c. Empty where there is one channel without a name.
  std::vector<std::string> channels;

  /// The number of channels; 1 where there is one without a name.
  std::size_t ChannelCount() const { return channels.empty() ? 1 : channels.size(); }
};

/// The readings of a data block: one contiguous matrix of 16-bit values, by frame (from 0), well
/// index (from 0, in the order of `Wells`) and value (from 0), with its axes.
///
/// A value: copies share the matrix, which never changes. Spans that are handed out are valid as
/// long as any copy lives. Different threads can use the same object and its copies.
///
/// Operations throw `Error` with `kNoSuchFrame`, `kNoSuchWell` or `kNoSuchValue` for an index that
/// is not below the count.
class VEX2_API Readings {
 public:
  /// No frames and no wells.
  Readings();
  // No moves, which would leave an object without a matrix: a copy costs as little.
  /// Shares the matrix of the other.
  Readings(const Readings&) = default;
  /// Shares the matrix of the other.
  Readings& operator=(const Readings&) = default;
  ~Readings() = default;

  /// The number of frames.
  std::size_t FrameCount() const;
  /// The number of wells in each frame.
  std::size_t WellCount() const;
  /// The well numbers, from 1, in the order of the matrix.
  const std::vector<std::uint16_t>& Wells() const;
  /// The well index of a well number, the first one; nothing for a well without readings.
  std::optional<std::size_t> FindWell(std::uint16_t number) const;
  /// The position of each frame in the run.
  const std::vector<FramePosition>& Axis() const;

  /// The whole matrix, `FrameCount` times `WellCount` times 32 values.
  std::span<const std::uint16_t> Values() const;
  /// Of one frame, `WellCount` times 32 values.
  std::span<const std::uint16_t> Values(std::size_t frame) const;
  /// Of one well in one frame, 32 values.
  std::span<const std::uint16_t> Values(std::size_t frame, std::size_t well) const;
  /// The stored value `value`, from 0, of the well at the index `well`, from 0, in a frame, from 0.
  std::uint16_t At(std::size_t frame, std::size_t well, std::size_t value) const;

  /// The meaning of the values; nothing if the log does not say that this library recorded them.
  const std::optional<ReadingMeaning>& Meaning() const;
  /// 0 where the meaning is not known.
  std::size_t ChannelCount() const;
  /// The reading in real units. Returns nothing if it is missing, or if the record holds anything
  /// that this library would not have written.
  std::optional<double> Fluorescence(std::size_t frame, std::size_t well,
                                     std::size_t channel = 0) const;
  /// All readings of a channel, `FrameCount` times `WellCount`; NaN for nothing.
  std::vector<double> FluorescenceOf(std::size_t channel = 0) const;

 private:
  friend class ReadingsFiller;
  struct Matrix;

  explicit Readings(std::shared_ptr<const Matrix> matrix);

  std::shared_ptr<const Matrix> matrix_;
};

/// What a document stores of one well in one frame.
struct WellReading {
  std::uint16_t well = 0;  ///< number, from 1
  /// The fields before the values; their meaning depends on the instrument.
  std::array<std::uint16_t, 8> leading{};
  std::array<std::uint16_t, kReadingValues> values{};  ///< the stored readings
  /// The readings of the channels in real units, NaN where one is missing; empty where the meaning
  /// is not known.
  std::vector<double> fluorescence;
};

/// One frame of a data block.
struct Frame {
  std::uint64_t index = 0;         ///< from 0
  FramePosition position;          ///< the position of the frame in the run
  std::vector<WellReading> wells;  ///< in the order of the block
};

}  // namespace vex2::lab
