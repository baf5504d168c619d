#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "vex2/container/CComponent.h"
#include "vex2/run/TimeStamp.h"
#include "vex2/run/Vex2AcquisitionData.h"
#include "vex2/run/Vex2FrameData.h"
#include "vex2/run/Vex2WellRecord.h"

/// A data block, "RAWa" or a reporting block: frames, with indexes from 0, each with a well record
/// for every well. The number of frames is not stored; it follows from the length of the body.
class VEX2_API AcquisitionDataComp final : public CComponent {
 public:
  /// An empty block of version 2.
  explicit AcquisitionDataComp(std::string_view tag);
  /// A block without frames for `count` wells; an empty block if `count` is 0.
  AcquisitionDataComp(std::string_view tag, const std::uint16_t* wellNumbers, std::uint16_t count);
  /// A block whose first frame is a copy of `frame`, with wells 1, 2, 3, ...
  AcquisitionDataComp(std::string_view tag, const Vex2FrameData& frame);
  /// A block with copies of all frames of `data`. It has as many wells as the first frame. If
  /// `frameCount` is 0, the frame at `frames` only sets the number of wells. A null `frames` makes
  /// an empty block.
  AcquisitionDataComp(std::string_view tag, const Vex2AcquisitionData& data);

  ~AcquisitionDataComp() override;

  /// The version of the block: 1 without times, 2 with them. A block that was read keeps the value
  /// in the file.
  std::uint16_t GetVersion() const { return version_; }
  /// The size of the two times, in bytes; 12 in every block that this library makes.
  std::uint16_t GetTimeBlockSize() const { return timeBlockSize_; }
  /// The number of wells in every frame.
  std::uint16_t GetWellCount() const;
  /// The well numbers in the order of the well records; valid until the block changes.
  std::span<const std::uint16_t> GetWellNumbers() const;
  /// The number of frames, which follows from the length of the body.
  int GetFrameCount() const;
  /// The capacity of the frame table.
  std::int32_t GetFrameCapacity() const { return capacity_; }

  /// The start time of the run; valid until the block changes.
  const TimeStamp& GetStartTime() const { return startTime_; }
  /// The end time of the run; valid until the block changes.
  const TimeStamp& GetEndTime() const { return endTime_; }
  /// Sets the start time of the run.
  void SetStartTime(const TimeStamp& time) { startTime_ = time; }
  /// Sets the end time of the run.
  void SetEndTime(const TimeStamp& time) { endTime_ = time; }

  /// Sets the well numbers. If their number changes, drops all frames but keeps the length of the
  /// body, as hosts expect.
  void SetWellNumbers(const std::uint16_t* wellNumbers, std::uint16_t count);
  /// The index, from 0, of `wellNumber` among the wells of the block; -1 if the block does not have
  /// this well.
  int FindWell(int wellNumber) const;

  /// Makes frame `index`, from 0, a copy of `frame` and extends the body by one frame, so call it
  /// only for new frames. Well records that `frame` lacks become zero. Returns false and changes
  /// nothing if the index or the length of the body would exceed what a document can hold.
  bool SetFrame(int index, const Vex2FrameData& frame);
  /// Copies `record` into frame `index`, as the well record at index `position`; both indexes count
  /// from 0. The first filled record of a frame extends the body by one frame. Returns false and
  /// changes nothing if `position` is out of range, or if the index or the length of the body would
  /// exceed what a document can hold.
  bool SetWellRecord(int index, int position, const Vex2WellRecord& record);
  /// The well records of frame `index`; null if no record of the frame was ever filled, which means
  /// that all are zero.
  const Vex2WellRecord* GetFrame(int index) const;
  /// Copies frame `index`, which must be below the frame count, into `frame`.
  void CopyFrame(int index, Vex2FrameData& frame) const;
  /// Writes the well records of frame `index` at the file position. Returns 0, or -260 if the frame
  /// does not exist.
  [[nodiscard]] int WriteFrame(CFile& file, int index) const;

  /// Whether the well records at the file position equal those of frame `index`. Does not compare
  /// the values that files do not store. Moves the file position to the end of the records.
  bool IsStoredFrame(CFile& file, int index) const;

  /// Converts a block of version 1, which has no times, to version 2 with the true length. Does
  /// nothing to other blocks.
  void Upgrade();

  CComponent& Assign(const CComponent& source) override;
  int WriteBody(CFile* file) override;
  int ReadBody(CFile* file) override;

 private:
  struct Table;

  static constexpr std::int32_t kCapacityStep = 40;

  static std::uint32_t bodyLength(std::uint16_t wells, std::uint64_t frames);
  std::uint64_t frameSize() const;
  bool canGrow() const;
  void allocate(std::size_t wells);
  bool makeRoom(int index);
  Vex2WellRecord* frameToFill(int index);
  int readFrames(CFile& file);

  std::uint16_t version_;
  std::uint16_t timeBlockSize_;
  TimeStamp startTime_;
  TimeStamp endTime_;
  std::unique_ptr<Table> table_;
  std::int32_t capacity_ = kCapacityStep;
};
