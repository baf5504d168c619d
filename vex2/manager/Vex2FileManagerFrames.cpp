// Frames of data blocks: added and committed while a run goes on, read back from memory.

#include <array>

#include "vex2/format/Encoding.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/framework/Host.h"
#include "vex2/manager/OrNothing.h"
#include "vex2/manager/Vex2FileManagerComponent.h"
#include "vex2/run/AcquisitionDataComp.h"

using vex2::kNoSuchFrame;
using vex2::kNotFound;
using vex2::kSuccess;

namespace {

constexpr const char* kNotInitialised =
    "The function Vex2FileManager::InitAcqDataWellNumberArray() needs to be called first, before "
    "we can call Vex2FileManager::SetAcqDataWellRecord";

// Reads back the word that a commit patches, so that a failed commit can put it back.
std::uint32_t wordAt(CFile& file, std::uint64_t offset) {
  std::uint32_t word = 0;
  file.Seek(static_cast<std::int64_t>(offset), CFile::begin);
  static_cast<void>(vex2::ReadField(file, word));
  return word;
}

bool copyRecord(const AcquisitionDataComp* block, int frameIndex, int position,
                Vex2WellRecord* record) {
  if (block == nullptr || frameIndex < 0 || frameIndex >= block->GetFrameCount() || position < 0 ||
      position >= block->GetWellCount()) {
    return false;
  }
  const Vex2WellRecord* records = block->GetFrame(frameIndex);
  if (record != nullptr) *record = records != nullptr ? records[position] : Vex2WellRecord{};
  return true;
}

}  // namespace

void Vex2FileManager::InitAcqDataWellNumberArray(const unsigned short* wellNumbers,
                                                 unsigned short count, Vex2DataType type) {
  static_cast<void>(guarded(vex2::kWriteFailed, [&] {
    if (AcquisitionDataComp* block = findBlock(type)) {
      block->SetWellNumbers(wellNumbers, count);
    } else if (!vex2::TagAt(type).empty()) {
      appendComponent(std::make_unique<AcquisitionDataComp>(vex2::TagAt(type), wellNumbers, count));
    }
    return kSuccess;
  }));
}

int Vex2FileManager::AppendAcquisitionDataFrame(const char* path, const Vex2FrameData* frame,
                                                Vex2DataType type) {
  AcquisitionDataComp* block = findBlock(type);
  const int index = block != nullptr ? block->GetFrameCount() : 0;
  const int status = guarded(vex2::kWriteFailed, [&] {
    if (frame != nullptr && block != nullptr) {
      if (!block->SetFrame(index, *frame)) return vex2::kWriteFailed;
    } else if (frame != nullptr && !vex2::TagAt(type).empty()) {
      appendComponent(std::make_unique<AcquisitionDataComp>(vex2::TagAt(type), *frame));
    }
    return kSuccess;
  });
  if (status != kSuccess) return status;
  return CommitAcqDataFrame(path, index, type);
}

int Vex2FileManager::CommitAcqDataFrame(const char* path, int frameIndex, Vex2DataType type) {
  AcquisitionDataComp* block = findBlock(type);
  if (block == nullptr) return kNotFound;
  if (type != DataRAWa) return kSuccess;
  std::uint32_t offset = 0;
  return changeFile(
      path, [&] { return findRawData(offset); },
      [&] { return commitFrame(*block, frameIndex, offset); });
}

int Vex2FileManager::commitFrame(AcquisitionDataComp& block, int frameIndex, std::uint32_t offset) {
  // What makes the frame count: the block's length, or for a new block its position.
  const std::uint64_t patchedAt =
      offset != 0 ? std::uint64_t{offset} + vex2::kTagLength : vex2::HeaderLayout::kRawDataOffsetAt;
  const std::uint64_t fileLength = GetLength();
  const std::uint32_t oldWord = wordAt(*this, patchedAt);
  const std::uint32_t heldOffset = header_.acquisitionDataOffset;
  const int status =
      guarded(vex2::kWriteFailed, [&] { return appendFrame(block, frameIndex, offset); });
  if (status == kSuccess) {
    committedFile_ = GetIdentity();
    committedLength_ = GetLength();
  }
  if (status == kSuccess || status == kNoSuchFrame) return status;
  DiscardBuffer();
  header_.acquisitionDataOffset = heldOffset;
  const int takenBack = guarded(vex2::kWriteFailed, [&] {
    if (wordAt(*this, patchedAt) != oldWord) patchWord(patchedAt, oldWord);
    return kSuccess;
  });
  // A length that counts a frame which was cut off would cost the whole block. Where it cannot be
  // taken back the frame stays, and where that does not count, the next commit writes over it.
  if (takenBack == kSuccess) restoreLength(fileLength);
  return status;
}

int Vex2FileManager::appendFrame(AcquisitionDataComp& block, int frameIndex, std::uint32_t offset) {
  const std::uint64_t place = committedEnd(block, offset);
  if (offset == 0) return writeRawData(block, place);
  Seek(static_cast<std::int64_t>(place), begin);
  if (const int result = block.WriteFrame(*this, frameIndex); result != kSuccess) return result;
  if (GetLength() > GetPosition()) SetLength(GetPosition());
  // The frame is on the disk before the length counts it: whatever happens in between, every frame
  // that counts is there.
  barrier();
  patchWord(std::uint64_t{offset} + vex2::kTagLength, block.GetLength());
  return kSuccess;
}

void Vex2FileManager::patchWord(std::uint64_t offset, std::uint32_t word) {
  Seek(static_cast<std::int64_t>(offset), begin);
  vex2::WriteField(*this, word);
  barrier();
}

bool Vex2FileManager::SetAcqDataWellRecord(const Vex2WellRecord* record, int frameIndex,
                                           int wellNumber, Vex2DataType type) {
  AcquisitionDataComp* block = findBlock(type);
  if (block == nullptr) {
    return guarded(0, [] {
             vex2::GetHost()->ShowMessage(kNotInitialised);
             return 0;
           }) == 1;
  }
  return record != nullptr &&
         guarded(0, [&] {
           return block->SetWellRecord(frameIndex, block->FindWell(wellNumber), *record) ? 1 : 0;
         }) == 1;
}

bool Vex2FileManager::SetAcqDataStartTime(const TimeStamp& time, Vex2DataType type) {
  AcquisitionDataComp* block = findBlock(type);
  if (block != nullptr) block->SetStartTime(time);
  return block != nullptr;
}

bool Vex2FileManager::SetAcqDataEndTime(const TimeStamp& time, Vex2DataType type) {
  AcquisitionDataComp* block = findBlock(type);
  if (block != nullptr) block->SetEndTime(time);
  return block != nullptr;
}

bool Vex2FileManager::GetAcqDataStartTime(TimeStamp& time, Vex2DataType type) const {
  const AcquisitionDataComp* block = findBlock(type);
  if (block != nullptr) time = block->GetStartTime();
  return block != nullptr;
}

bool Vex2FileManager::GetAcqDataEndTime(TimeStamp& time, Vex2DataType type) const {
  const AcquisitionDataComp* block = findBlock(type);
  if (block != nullptr) time = block->GetEndTime();
  return block != nullptr;
}

int Vex2FileManager::ReadDataFrame(int frameIndex, Vex2FrameData* frame, Vex2DataType type) const {
  const AcquisitionDataComp* block = findBlock(type);
  if (block == nullptr) return kNotFound;
  if (frameIndex < 0 || frameIndex >= block->GetFrameCount()) return kNoSuchFrame;
  return guarded(vex2::kReadFailed, [&] {
    if (frame != nullptr) block->CopyFrame(frameIndex, *frame);
    return kSuccess;
  });
}

bool Vex2FileManager::GetAcqDataWellRecord(Vex2WellRecord* record, int frameIndex, int wellNumber,
                                           Vex2DataType type) const {
  const AcquisitionDataComp* block = findBlock(type);
  return block != nullptr && copyRecord(block, frameIndex, block->FindWell(wellNumber), record);
}

bool Vex2FileManager::GetAcqDataWellRecordForWellIndex(Vex2WellRecord* record, int frameIndex,
                                                       int wellIndex, Vex2DataType type) const {
  return copyRecord(findBlock(type), frameIndex, wellIndex, record);
}

int Vex2FileManager::GetDataCntInWell(int wellNumber, Vex2DataType type) const {
  const AcquisitionDataComp* block = findBlock(type);
  return block != nullptr && block->FindWell(wellNumber) >= 0 ? block->GetFrameCount() : 0;
}

int Vex2FileManager::GetDataFrameCount(Vex2DataType type) const {
  const AcquisitionDataComp* block = findBlock(type);
  return block != nullptr ? block->GetFrameCount() : 0;
}

int Vex2FileManager::GetDataFrameCountByName(const char* plateName, Vex2DataType type) const {
  if (plateName == nullptr) return GetDataFrameCount(type);
  return vex2::OrNothing([&] {
    const Vex2FileManagerComponent* plate = GetSinglePlatePtrByName(plateName);
    return plate != nullptr ? plate->GetDataFrameCount(type) : 0;
  });
}

int Vex2FileManager::GetWellCount(Vex2DataType type) const {
  const AcquisitionDataComp* block = findBlock(type);
  return block != nullptr ? block->GetWellCount() : 0;
}
