// Frames of data blocks: adding and committing them during a run, and reading them from memory.

#include "vex2/format/RecordKinds.h"
#include "vex2/framework/Host.h"
#include "vex2/manager/HeldRawData.h"
#include "vex2/manager/ManagerState.h"
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
  const vex2::Operation operation(state_->store);
  AcquisitionDataComp* block = findBlock(type);
  const int index = block != nullptr ? block->GetFrameCount() : 0;
  const int status = attempt(vex2::kWriteFailed, [&] {
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
  const vex2::Operation operation(state_->store);
  AcquisitionDataComp* block = findBlock(type);
  if (block == nullptr) return kNotFound;
  if (type != DataRAWa) return kSuccess;
  std::uint32_t offset = 0;
  return changeFile(
      path, [&] { return state_->FindRawData(*this, offset); },
      [&] {
        const bool isFirst = offset == 0;
        const vex2::HeldRawData held(*block);
        const int status = vex2::FrameLog(state_->store, held).Commit(frameIndex, offset);
        if (isFirst && status == kSuccess) header_.acquisitionDataOffset = offset;
        return status;
      });
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
