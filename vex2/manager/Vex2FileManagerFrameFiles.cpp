// Frames read straight from a file, without loading the document.

#include "vex2/container/Encoding.h"
#include "vex2/container/TagTable.h"
#include "vex2/manager/Vex2FileManager.h"
#include "vex2/run/AcquisitionDataComp.h"
#include "vex2/run/WellRecordCoding.h"

using vex2::kSuccess;

/// Where a block's frames stand in a file.
struct Vex2FileManager::BlockGeometry {
  std::uint64_t frameCount = 0;
  std::uint16_t wellCount = 0;
  std::uint64_t firstFrame = 0;  ///< counted from the block's tag; 0 when there are no wells
};

int Vex2FileManager::readGeometry(long blockOffset, BlockGeometry& geometry) {
  geometry = {};
  if (blockOffset <= 0) return kSuccess;
  Seek(blockOffset + static_cast<long>(vex2::kTagLength), begin);
  std::uint32_t length = 0;
  std::uint16_t version = 0;
  std::uint16_t timeBlockSize = 0;
  std::uint16_t wells = 0;
  int status = vex2::ReadValue(*this, length);
  if (status == kSuccess) status = vex2::ReadValue(*this, version);
  if (status == kSuccess) status = vex2::ReadValue(*this, timeBlockSize);
  if (status != kSuccess) return status;
  Seek(timeBlockSize, current);
  status = vex2::ReadValue(*this, wells);
  if (status != kSuccess || wells == 0) return status;
  // The time block was stepped over by its size, but frames are looked for where they stand behind
  // one of twelve bytes: all documents have that, and hosts count on the position.
  const std::uint64_t head = AcquisitionDataComp::kFixedLength + 2U * std::uint64_t{wells};
  geometry.wellCount = wells;
  geometry.firstFrame = head + 8;
  if (length > head) {
    geometry.frameCount = (length - head) / (vex2::kStoredRecordSize * wells);
  }
  return kSuccess;
}

int Vex2FileManager::readAFrame(int frameIndex, Vex2FrameData* frame, long blockOffset) {
  BlockGeometry geometry;
  if (const int status = readGeometry(blockOffset, geometry); status != kSuccess) return status;
  const auto index = static_cast<std::uint64_t>(frameIndex);
  if (geometry.firstFrame < 1 || frameIndex < 0 || index >= geometry.frameCount) return kSuccess;
  const std::uint64_t frameSize = vex2::kStoredRecordSize * geometry.wellCount;
  const auto block = static_cast<std::uint64_t>(blockOffset);
  Seek(static_cast<std::int64_t>(block + geometry.firstFrame + frameSize * index), begin);
  Vex2FrameData unwanted;
  Vex2FrameData& target = frame != nullptr ? *frame : unwanted;
  // Also for a frame that the file's end cuts off: at most 5.8 MB, since a count has 16 bits.
  target.Resize(geometry.wellCount);
  return vex2::ReadWellRecords(*this, target.records, geometry.wellCount);
}

int Vex2FileManager::GetDataFrameCount(const char* path, int& count, Vex2DataType type) {
  count = 0;
  if (SafeOpen(path, 0, 0) == 0) return vex2::kReadFailed;
  return guardedFile(vex2::kReadFailed, [&] {
    int status = kSuccess;
    long offset = 0;
    if (type == DataRAWa) {
      Vex2HeaderData header;
      header.Reset();
      status = ReadHeaderData(header, nullptr);
      offset = static_cast<long>(header.acquisitionDataOffset);
    } else {
      offset = findReporterCompOffset(type);
    }
    BlockGeometry geometry;
    // A block that cannot be read has no frames; only the header's status is handed on.
    if (readGeometry(offset, geometry) == kSuccess) count = static_cast<int>(geometry.frameCount);
    return status;
  });
}

int Vex2FileManager::ReadDataFrame(const char* path, int frameIndex, Vex2FrameData* frame,
                                   Vex2DataType type) {
  if (SafeOpen(path, 0, 0) == 0) return vex2::kReadFailed;
  return guardedFile(vex2::kReadFailed, [&] {
    if (!IsVex2Format()) return static_cast<int>(vex2::kReadFailed);
    if (type != DataRAWa) return readAFrame(frameIndex, frame, findReporterCompOffset(type));
    Vex2HeaderData header;
    const int status = ReadHeaderData(header, nullptr);
    if (status != kSuccess || header.acquisitionDataOffset == 0) return status;
    return readAFrame(frameIndex, frame, static_cast<long>(header.acquisitionDataOffset));
  });
}
