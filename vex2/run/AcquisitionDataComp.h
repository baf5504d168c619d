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

/// A data block, "RAWa" or one of the reporting blocks: frames (from 0) by wells, a well record
/// each. The number of frames is not held; it follows from the body length.
class VEX2_API AcquisitionDataComp final : public CComponent {
 public:
  /// An empty block of version 2.
  explicit AcquisitionDataComp(std::string_view tag);
  /// A block without frames for `count` wells; empty when there are none.
  AcquisitionDataComp(std::string_view tag, const std::uint16_t* wellNumbers, std::uint16_t count);
  /// A block whose first frame is a copy of `frame`, with wells 1, 2, 3, ...
  AcquisitionDataComp(std::string_view tag, const Vex2FrameData& frame);
  /// A block of copies of all frames of `data`, with as many wells as the first of them has. Its
  /// `frames` points to a frame also where `frameCount` is 0: a frame for the wells alone. Null
  /// makes an empty block.
  AcquisitionDataComp(std::string_view tag, const Vex2AcquisitionData& data);

  ~AcquisitionDataComp() override;

  std::uint16_t GetVersion() const { return version_; }
  std::uint16_t GetTimeBlockSize() const { return timeBlockSize_; }
  std::uint16_t GetWellCount() const;
  /// The well number of each record position; valid until the block changes.
  std::span<const std::uint16_t> GetWellNumbers() const;
  int GetFrameCount() const;
  /// Places in the frame table.
  std::int32_t GetFrameCapacity() const { return capacity_; }

  const TimeStamp& GetStartTime() const { return startTime_; }
  const TimeStamp& GetEndTime() const { return endTime_; }
  void SetStartTime(const TimeStamp& time) { startTime_ = time; }
  void SetEndTime(const TimeStamp& time) { endTime_ = time; }

  /// Gives the block these wells. Another number of wells than before drops all frames; the body
  /// length stays as it is even then, as hosts expect.
  void SetWellNumbers(const std::uint16_t* wellNumbers, std::uint16_t count);
  /// The position of a well number, or -1.
  int FindWell(int wellNumber) const;

  /// Makes frame `index` a copy of `frame` and lengthens the body by a frame; for new frames only.
  /// Records that `frame` lacks are zero. False, and nothing changes, when the index or the body
  /// length is past what a document can hold.
  bool SetFrame(int index, const Vex2FrameData& frame);
  /// Copies `record` into frame `index` at `position`. The first filled record of a frame lengthens
  /// the body by a frame. False as for `SetFrame`.
  bool SetWellRecord(int index, int position, const Vex2WellRecord& record);
  /// The records of frame `index`, or null where none was ever filled: they are all zero then.
  const Vex2WellRecord* GetFrame(int index) const;
  /// Copies frame `index`, which must be below the frame count, into `frame`.
  void CopyFrame(int index, Vex2FrameData& frame) const;
  /// Writes the records of frame `index` at the file's position; -260 when there is no such frame.
  [[nodiscard]] int WriteFrame(CFile& file, int index) const;

  /// Whether the stored records at the file's position are those of frame `index`; the values that
  /// a record in a file does not have are not compared. Moves the position behind the records.
  bool IsStoredFrame(CFile& file, int index) const;

  /// Makes a block that was read in the old version, without times, one of version 2 whose length
  /// tells the truth. Nothing happens to others.
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
