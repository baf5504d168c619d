// Reading frames directly from a file, without loading the document.

#include "vex2/format/DataBlockHead.h"
#include "vex2/format/Encoding.h"
#include "vex2/format/ReadLimits.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/manager/ManagerState.h"
#include "vex2/run/AcquisitionDataComp.h"
#include "vex2/run/WellRecordCoding.h"

using vex2::kSuccess;

namespace {

// Where the frames of a block are in a file.
struct BlockGeometry {
  std::uint64_t frameCount = 0;
  std::uint16_t wellCount = 0;
  std::uint64_t firstFrame = 0;  // offset from the block's tag; 0 if there are no wells
};

int readGeometry(CFile& file, long blockOffset, BlockGeometry& geometry) {
  geometry = {};
  if (blockOffset <= 0) return kSuccess;
  file.Seek(blockOffset + static_cast<long>(vex2::kTagLength), CFile::begin);
  std::uint32_t length = 0;
  vex2::DataBlockHead head;
  if (!vex2::ReadField(file, length) ||
      !vex2::ReadDataBlockHead(file, vex2::TimeBlock::kAsStated, head)) {
    return vex2::kReadFailed;
  }
  if (head.wells == 0) return kSuccess;
  // ReadDataBlockHead skips a time block of any size, but this offset is the one after a time block
  // of twelve bytes: all documents have that, and hosts rely on the offset.
  geometry.wellCount = head.wells;
  geometry.firstFrame = vex2::kRecordHeadSize + vex2::FramesOffset(head.wells);
  geometry.frameCount = vex2::WholeFrames(length, head.wells);
  return kSuccess;
}

}  // namespace

int Vex2FileManager::readAFrame(int frameIndex, Vex2FrameData* frame, long blockOffset) {
  BlockGeometry geometry;
  if (const int status = readGeometry(*this, blockOffset, geometry); status != kSuccess)
    return status;
  const auto index = static_cast<std::uint64_t>(frameIndex);
  if (geometry.firstFrame < 1 || frameIndex < 0 || index >= geometry.frameCount) return kSuccess;
  const std::uint64_t frameSize = vex2::FrameSize(geometry.wellCount);
  const auto block = static_cast<std::uint64_t>(blockOffset);
  Seek(static_cast<std::int64_t>(block + geometry.firstFrame + frameSize * index), begin);
  Vex2FrameData unwanted;
  Vex2FrameData& target = frame != nullptr ? *frame : unwanted;
  // Done even if the file ends within the frame. This takes at most 5.8 MB, because a well count
  // has 16 bits.
  target.Resize(geometry.wellCount);
  return vex2::ReadWellRecords(*this, target.records, geometry.wellCount);
}

int Vex2FileManager::GetDataFrameCount(const char* path, int& count, Vex2DataType type) {
  const vex2::Operation operation(state_->store);
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
    // A block that cannot be read has no frames. Only the status of the header is returned.
    if (readGeometry(*this, offset, geometry) == kSuccess)
      count = static_cast<int>(geometry.frameCount);
    return status;
  });
}

int Vex2FileManager::ReadDataFrame(const char* path, int frameIndex, Vex2FrameData* frame,
                                   Vex2DataType type) {
  const vex2::Operation operation(state_->store);
  if (SafeOpen(path, 0, 0) == 0) return vex2::kReadFailed;
  return guardedFile(vex2::kReadFailed, [&] {
    if (!state_->IsDocument(*this)) return static_cast<int>(vex2::kReadFailed);
    if (type != DataRAWa) return readAFrame(frameIndex, frame, findReporterCompOffset(type));
    Vex2HeaderData header;
    const int status = ReadHeaderData(header, nullptr);
    if (status != kSuccess || header.acquisitionDataOffset == 0) return status;
    return readAFrame(frameIndex, frame, static_cast<long>(header.acquisitionDataOffset));
  });
}
