#include "vex2/run/AcquisitionDataComp.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <numeric>
#include <vector>

#include "vex2/container/Status.h"
#include "vex2/format/DataBlockHead.h"
#include "vex2/format/Encoding.h"
#include "vex2/format/ReadLimits.h"
#include "vex2/run/SkipsFrames.h"
#include "vex2/run/WellRecordCoding.h"

using vex2::kSuccess;

namespace {

// Frames are allocated uninitialised: reading fills every value exactly once.
struct Release {
  void operator()(Vex2WellRecord* records) const noexcept { ::operator delete(records); }
};
using Frame = std::unique_ptr<Vex2WellRecord, Release>;

Frame newFrame(std::size_t wells) {
  return Frame(static_cast<Vex2WellRecord*>(::operator new(wells * sizeof(Vex2WellRecord))));
}

}  // namespace

/// The well numbers and the frames of the block; a frame that was never filled is null.
struct AcquisitionDataComp::Table {
  std::vector<std::uint16_t> wellNumbers;
  std::vector<Frame> frames;
};

AcquisitionDataComp::AcquisitionDataComp(std::string_view tag)
    : CComponent(tag, vex2::kBlockFixedSize),
      version_(vex2::kBlockVersion),
      timeBlockSize_(vex2::kTimeBlockSize),
      table_(std::make_unique<Table>()) {}

AcquisitionDataComp::~AcquisitionDataComp() = default;

std::uint16_t AcquisitionDataComp::GetWellCount() const {
  return static_cast<std::uint16_t>(table_->wellNumbers.size());
}

std::span<const std::uint16_t> AcquisitionDataComp::GetWellNumbers() const {
  return table_->wellNumbers;
}

AcquisitionDataComp::AcquisitionDataComp(std::string_view tag, const std::uint16_t* wellNumbers,
                                         std::uint16_t count)
    : AcquisitionDataComp(tag) {
  if (count == 0 || wellNumbers == nullptr) return;
  allocate(count);
  std::copy_n(wellNumbers, count, table_->wellNumbers.begin());
  setLength(bodyLength(count, 0));
}

AcquisitionDataComp::AcquisitionDataComp(std::string_view tag, const Vex2FrameData& frame)
    : AcquisitionDataComp(tag) {
  allocate(frame.wellCount);
  setLength(bodyLength(frame.wellCount, 0));
  SetFrame(0, frame);
}

AcquisitionDataComp::AcquisitionDataComp(std::string_view tag, const Vex2AcquisitionData& data)
    : AcquisitionDataComp(tag) {
  if (data.frames == nullptr) return;
  allocate(data.frames[0].wellCount);
  setLength(bodyLength(data.frames[0].wellCount, 0));
  for (int index = 0; index < data.frameCount; ++index) {
    if (!SetFrame(index, data.frames[index])) return;
  }
}

std::uint64_t AcquisitionDataComp::frameSize() const {
  return vex2::FrameSize(GetWellCount());
}

std::uint32_t AcquisitionDataComp::bodyLength(std::uint16_t wells, std::uint64_t frames) {
  return static_cast<std::uint32_t>(vex2::FramesOffset(wells) + frames * vex2::FrameSize(wells));
}

int AcquisitionDataComp::GetFrameCount() const {
  return static_cast<int>(vex2::FrameCount(GetLength(), GetWellCount()));
}

bool AcquisitionDataComp::canGrow() const {
  return GetLength() + frameSize() <= std::numeric_limits<std::uint32_t>::max();
}

void AcquisitionDataComp::allocate(std::size_t wells) {
  std::vector<std::uint16_t> numbers(wells);
  std::iota(numbers.begin(), numbers.end(), std::uint16_t{1});
  std::vector<Frame> frames(wells != 0 ? static_cast<std::size_t>(capacity_) : 0);
  table_->wellNumbers = std::move(numbers);
  table_->frames = std::move(frames);
}

bool AcquisitionDataComp::makeRoom(int index) {
  const std::uint64_t end = (std::uint64_t{static_cast<std::uint32_t>(index)} + 1) * frameSize();
  if (index < 0 || end > std::numeric_limits<std::uint32_t>::max()) return false;
  if (index >= capacity_) {
    capacity_ += kCapacityStep * ((index - capacity_ + 1) / kCapacityStep + 1);
  }
  if (table_->frames.size() < static_cast<std::size_t>(capacity_)) {
    table_->frames.resize(static_cast<std::size_t>(capacity_));
  }
  return true;
}

Vex2WellRecord* AcquisitionDataComp::frameToFill(int index) {
  Frame& frame = table_->frames[static_cast<std::size_t>(index)];
  if (frame == nullptr) {
    frame = newFrame(table_->wellNumbers.size());
    std::fill_n(frame.get(), table_->wellNumbers.size(), Vex2WellRecord{});
  }
  return frame.get();
}

void AcquisitionDataComp::SetWellNumbers(const std::uint16_t* wellNumbers, std::uint16_t count) {
  if (wellNumbers == nullptr || count == 0) return;
  if (count != table_->wellNumbers.size()) allocate(count);
  std::copy_n(wellNumbers, count, table_->wellNumbers.begin());
}

int AcquisitionDataComp::FindWell(int wellNumber) const {
  const auto found = std::find(table_->wellNumbers.begin(), table_->wellNumbers.end(), wellNumber);
  return found != table_->wellNumbers.end() ? static_cast<int>(found - table_->wellNumbers.begin())
                                            : -1;
}

bool AcquisitionDataComp::SetFrame(int index, const Vex2FrameData& frame) {
  if (table_->wellNumbers.empty()) return true;
  if (!canGrow() || !makeRoom(index)) return false;
  Vex2WellRecord* records = frameToFill(index);
  const std::size_t given = frame.records != nullptr
                                ? std::min<std::size_t>(frame.wellCount, table_->wellNumbers.size())
                                : 0;
  std::copy_n(frame.records, given, records);
  std::fill(records + given, records + table_->wellNumbers.size(), Vex2WellRecord{});
  setLength(static_cast<std::uint32_t>(GetLength() + frameSize()));
  return true;
}

bool AcquisitionDataComp::SetWellRecord(int index, int position, const Vex2WellRecord& record) {
  if (position < 0 || position >= GetWellCount() || !canGrow() || !makeRoom(index)) return false;
  Vex2WellRecord* records = frameToFill(index);
  records[position] = record;
  int filled = 0;
  for (std::size_t i = 0; i < table_->wellNumbers.size() && filled < 2; ++i) {
    if (records[i].leading[0] != 0) ++filled;
  }
  if (filled == 1) setLength(static_cast<std::uint32_t>(GetLength() + frameSize()));
  return true;
}

const Vex2WellRecord* AcquisitionDataComp::GetFrame(int index) const {
  const auto place = static_cast<std::size_t>(index);
  return index >= 0 && place < table_->frames.size() ? table_->frames[place].get() : nullptr;
}

void AcquisitionDataComp::CopyFrame(int index, Vex2FrameData& frame) const {
  frame.Resize(GetWellCount());
  if (const Vex2WellRecord* records = GetFrame(index)) {
    std::copy_n(records, table_->wellNumbers.size(), frame.records);
  }
}

int AcquisitionDataComp::WriteFrame(CFile& file, int index) const {
  if (index < 0 || index >= GetFrameCount()) return vex2::kNoSuchFrame;
  vex2::WriteWellRecords(file, GetFrame(index), table_->wellNumbers.size());
  return kSuccess;
}

bool AcquisitionDataComp::IsStoredFrame(CFile& file, int index) const {
  const Vex2WellRecord nothing;
  const Vex2WellRecord* held = GetFrame(index);
  std::vector<Vex2WellRecord> stored(table_->wellNumbers.size());
  if (vex2::ReadWellRecords(file, stored.data(), stored.size()) != kSuccess) return false;
  for (std::size_t i = 0; i < stored.size(); ++i) {
    const Vex2WellRecord& record = held != nullptr ? held[i] : nothing;
    if (!std::equal(std::begin(record.leading), std::end(record.leading), stored[i].leading) ||
        !std::equal(record.data, record.data + vex2::kStoredDataValues, stored[i].data)) {
      return false;
    }
  }
  return true;
}

void AcquisitionDataComp::Upgrade() {
  if (version_ >= vex2::kFirstVersionWithTimes) return;
  version_ = vex2::kBlockVersion;
  setLength(bodyLength(GetWellCount(), static_cast<std::uint64_t>(GetFrameCount())));
}

CComponent& AcquisitionDataComp::Assign(const CComponent& source) {
  const auto* same = dynamic_cast<const AcquisitionDataComp*>(&source);
  if (same == nullptr || same == this || source.GetTag() != GetTag()) return *this;
  CComponent::Assign(source);
  version_ = same->version_;
  timeBlockSize_ = same->timeBlockSize_;
  startTime_ = same->startTime_;
  endTime_ = same->endTime_;
  capacity_ = same->capacity_;
  allocate(same->table_->wellNumbers.size());
  table_->wellNumbers = same->table_->wellNumbers;
  for (std::size_t i = 0; i < same->table_->frames.size(); ++i) {
    if (same->table_->frames[i] == nullptr) continue;
    table_->frames[i] = newFrame(table_->wellNumbers.size());
    std::copy_n(same->table_->frames[i].get(), table_->wellNumbers.size(), table_->frames[i].get());
  }
  return *this;
}

int AcquisitionDataComp::WriteBody(CFile* file) {
  if (file == nullptr) return vex2::kWriteFailed;
  vex2::WriteField(*file, version_);
  vex2::WriteField(*file, timeBlockSize_);
  file->Write(startTime_.fields, sizeof startTime_.fields);
  file->Write(endTime_.fields, sizeof endTime_.fields);
  vex2::WriteField(*file, GetWellCount());
  for (const std::uint16_t number : table_->wellNumbers) vex2::WriteField(*file, number);
  const int frames = GetFrameCount();
  for (int index = 0; index < frames; ++index) {
    vex2::WriteWellRecords(*file, GetFrame(index), table_->wellNumbers.size());
  }
  return kSuccess;
}

int AcquisitionDataComp::ReadBody(CFile* file) {
  if (file == nullptr) return vex2::kReadFailed;
  vex2::DataBlockHead head;
  std::vector<std::uint16_t> numbers;
  if (!vex2::ReadDataBlockHead(*file, vex2::TimeBlock::kAsWritten, head) ||
      !vex2::ReadWellNumbers(*file, head.wells, numbers)) {
    return vex2::kReadFailed;
  }
  version_ = head.version;
  if (head.version >= vex2::kFirstVersionWithTimes) {
    timeBlockSize_ = head.timeBlockSize;
    std::copy_n(head.times.begin(), sizeof startTime_.fields, startTime_.fields);
    std::copy_n(head.times.begin() + sizeof startTime_.fields, sizeof endTime_.fields,
                endTime_.fields);
  }
  allocate(head.wells);
  table_->wellNumbers = std::move(numbers);
  return readFrames(*file);
}

int AcquisitionDataComp::readFrames(CFile& file) {
  const int frames = GetFrameCount();
  const std::uint64_t size = static_cast<std::uint64_t>(frames) * frameSize();
  if (!vex2::HasBytesLeft(file, size)) {
    static_cast<void>(vex2::ShortRead(file));
    return vex2::kReadFailed;
  }
  if (dynamic_cast<const vex2::SkipsFrames*>(&file) != nullptr) {
    file.Seek(static_cast<std::int64_t>(size), CFile::current);
    return kSuccess;
  }
  if (frames > 0 && !makeRoom(frames - 1)) return vex2::kReadFailed;
  for (int index = 0; index < frames; ++index) {
    Frame frame = newFrame(table_->wellNumbers.size());
    const int status = vex2::ReadWellRecords(file, frame.get(), table_->wellNumbers.size());
    if (status != kSuccess) return status;
    table_->frames[static_cast<std::size_t>(index)] = std::move(frame);
  }
  return kSuccess;
}
