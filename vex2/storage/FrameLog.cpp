#include "vex2/storage/FrameLog.h"

#include <algorithm>
#include <string>

#include "vex2/container/Status.h"
#include "vex2/format/DataBlockHead.h"
#include "vex2/format/Encoding.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/format/RecordWalker.h"

namespace vex2 {

namespace {

void moveTo(CFile& file, std::uint64_t offset) {
  file.Seek(static_cast<std::int64_t>(offset), CFile::begin);
}

}  // namespace

// --- A commit, from top to bottom ---

int FrameLog::Commit(int frame, std::uint32_t& blockOffset) {
  // What makes the frame count: the block's length, or for a new block the header's offset of it.
  const std::uint64_t patchedAt =
      blockOffset != 0 ? std::uint64_t{blockOffset} + kTagLength : HeaderLayout::kRawDataOffsetAt;
  const std::uint64_t lengthBefore = file_.GetLength();
  const std::uint32_t wordBefore = WordAt(file_, patchedAt);
  const int status = store_.Attempt(kWriteFailed, [&] { return append(frame, blockOffset); });
  if (status == kSuccess) store_.NoteCommit();
  if (status == kSuccess || status == kNoSuchFrame) return status;
  file_.DiscardBuffer();
  const int takenBack = store_.Attempt(kWriteFailed, [&] {
    if (WordAt(file_, patchedAt) != wordBefore) patch(patchedAt, wordBefore);
    return kSuccess;
  });
  // A length that counts a frame which was cut off would cost the whole block. Where it cannot be
  // taken back the frame stays, and where that does not count, the next commit writes over it.
  if (takenBack == kSuccess) store_.RestoreLength(lengthBefore);
  return status;
}

int FrameLog::append(int frame, std::uint32_t& blockOffset) {
  return blockOffset != 0 ? appendFrame(frame, blockOffset) : WriteBlock(End(0), blockOffset);
}

int FrameLog::appendFrame(int frame, std::uint32_t blockOffset) {
  moveTo(file_, End(blockOffset));
  if (const int status = held_.WriteFrame(file_, frame); status != kSuccess) return status;
  cutBehindPosition();
  // The frame is on the disk before the length counts it.
  store_.Barrier();
  patch(std::uint64_t{blockOffset} + kTagLength, held_.Length());
  return kSuccess;
}

int FrameLog::WriteBlock(std::uint64_t place, std::uint32_t& blockOffset) {
  const std::uint32_t offset = DocumentOffset(file_, place);
  moveTo(file_, offset);
  // Until all of it is on the disk, the block goes without its tag and readers step over it: its
  // length may get there before its frames. The header leads to it last.
  file_.Write(kUncommittedTag.data(), kUncommittedTag.size());
  WriteField(file_, held_.Length());
  static_cast<void>(held_.WriteBody(file_));
  cutBehindPosition();
  store_.Barrier();
  moveTo(file_, offset);
  file_.Write(held_.Tag().data(), kTagLength);
  store_.Barrier();
  blockOffset = offset;
  const int status = store_.PatchHeader(HeaderLayout::kRawDataOffsetAt, offset);
  store_.Barrier();
  return status;
}

void FrameLog::cutBehindPosition() {
  if (file_.GetLength() > file_.GetPosition()) file_.SetLength(file_.GetPosition());
}

void FrameLog::patch(std::uint64_t offset, std::uint32_t word) {
  WriteWordAt(file_, offset, word);
  store_.Barrier();
}

std::uint64_t FrameLog::End(std::uint32_t blockOffset) {
  // A host may commit more than the length counts; what this store committed counts too.
  if (store_.IsAsCommitted()) return file_.GetLength();
  return CommittedEnd(file_, blockOffset, held_);
}

// --- Where the committed data end ---

namespace {

// A data block in a file, as far as the end of the file lets it be read.
struct StoredBlock {
  FileRecord record;
  DataBlockHead head;
  bool isWhole = false;          // else the file ends within the head
  std::uint64_t firstFrame = 0;  // known when it is whole

  std::uint64_t FrameBytes() const { return FrameSize(head.wells); }
};

StoredBlock blockAt(CFile& file, std::uint64_t offset) {
  StoredBlock block;
  moveTo(file, offset);
  if (!ReadRecordHead(file, block.record) ||
      !ReadDataBlockHead(file, TimeBlock::kAsStated, block.head)) {
    return block;
  }
  block.firstFrame = file.GetPosition() + sizeof(std::uint16_t) * block.head.wells;
  block.isWhole = block.head.timeBlockSize == kTimeBlockSize;
  return block;
}

// As much of a tag as the file has there.
std::string tagAt(CFile& file, std::uint64_t offset) {
  moveTo(file, offset);
  std::string tag(kTagLength, '\0');
  tag.resize(file.Read(tag.data(), tag.size()));
  return tag;
}

// Whether a record of a known kind begins there, or records of any kind follow up to the file's
// end.
bool recordsFollow(CFile& file, std::uint64_t offset) {
  if (FindTagIndex(tagAt(file, offset)) >= 0) return true;
  DeclaredRecords records(file, offset);
  while (records.Next()) {
    if (!IsPrintableTag(records.Record().Tag())) return false;
    if (records.Record().DeclaredEnd() > file.GetLength()) return false;
  }
  return !records.EndsInHead();
}

// For a block that the header leads to: behind the frames that its length counts.
std::uint64_t endOfFrames(CFile& file, std::uint32_t offset, const HeldBlock& held) {
  const std::uint64_t fileEnd = file.GetLength();
  const StoredBlock block = blockAt(file, offset);
  // Leave blocks alone that this system cannot have written.
  if (!block.isWhole || block.record.Tag() != held.Tag() ||
      block.head.version < kFirstVersionWithTimes || block.head.wells == 0 ||
      block.head.wells != held.Wells()) {
    return fileEnd;
  }
  const std::uint64_t counted = block.record.DeclaredEnd();
  const CommittedFrames frames =
      FindCommittedFrames({block.firstFrame, block.FrameBytes(), counted, fileEnd});
  if (frames.end != counted || frames.behind != Uncommitted::kCommit) return fileEnd;
  // What others put behind the data are records.
  return recordsFollow(file, counted) ? fileEnd : counted;
}

// Whether the bytes from `start` to the file's end are a first commit that was interrupted: a block
// that has no tag yet, or one without a frame that `held` does not have.
bool isInterruptedFirstCommit(CFile& file, std::uint64_t start, const HeldBlock& held) {
  const StoredBlock block = blockAt(file, start);
  if (block.record.DeclaredEnd() < file.GetLength()) return false;
  if (!block.isWhole) return file.GetLength() - start <= kRecordHeadSize + kBlockFixedSize;
  if (block.head.version < kFirstVersionWithTimes || block.head.wells != held.Wells()) return false;
  if (block.record.Tag() == kUncommittedTag || block.firstFrame > file.GetLength()) return true;
  moveTo(file, block.firstFrame);
  const std::uint64_t size = block.FrameBytes();
  const std::uint64_t frames = size != 0 ? file.GetRemaining() / size : 0;
  if (frames > held.Frames()) return false;
  for (std::uint64_t frame = 0; frame < frames; ++frame) {
    if (!held.IsFrame(file, frame)) return false;
  }
  return true;
}

// Before the first commit: behind the last record, which readers find by what records hold.
std::uint64_t endOfRecords(CFile& file, const HeldBlock& held) {
  const std::uint64_t fileEnd = file.GetLength();
  std::uint64_t start = HeaderLayout::kSize;
  while (start < fileEnd) {
    const std::string tag = tagAt(file, start);
    if (tag == held.Tag() || tag == kUncommittedTag.substr(0, tag.size())) {
      return isInterruptedFirstCommit(file, start, held) ? start : fileEnd;
    }
    // Bytes that are not a record lead to no other one, and may go on for gigabytes.
    if (!IsPrintableTag(tag)) break;
    const auto end = EndOfRecordAt(file, start);
    if (!end) break;
    start = *end;
  }
  return fileEnd;
}

}  // namespace

CommittedFrames FindCommittedFrames(const FrameRange& range) {
  const std::uint64_t last = std::min(range.countedEnd, range.fileEnd);
  CommittedFrames frames;
  frames.count = (std::max(last, range.firstFrame) - range.firstFrame) / range.frameSize;
  frames.end = range.firstFrame + frames.count * range.frameSize;
  frames.behind = UncommittedBehind(range, frames.end);
  return frames;
}

Uncommitted UncommittedBehind(const FrameRange& range, std::uint64_t end) {
  if (range.fileEnd <= end) return Uncommitted::kNothing;
  return range.fileEnd - end <= range.frameSize ? Uncommitted::kCommit : Uncommitted::kMore;
}

std::uint64_t CommittedEnd(CFile& file, std::uint32_t blockOffset, const HeldBlock& held) {
  return blockOffset != 0 ? endOfFrames(file, blockOffset, held) : endOfRecords(file, held);
}

}  // namespace vex2
