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

// --- Commits ---

int FrameLog::Commit(int frame, std::uint32_t& blockOffset) {
  // The word that commits the frame: the block's length or, for a new block, its offset in the
  // header.
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
  // If the file were truncated while the length still counted the frame, readers would reject the
  // whole block. So if the word cannot be restored, the frame stays. If nothing counts it, the next
  // commit overwrites it.
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
  // The frame must be on the disk before the length counts it.
  store_.Barrier();
  patch(std::uint64_t{blockOffset} + kTagLength, held_.Length());
  return kSuccess;
}

int FrameLog::WriteBlock(std::uint64_t place, std::uint32_t& blockOffset) {
  const std::uint32_t offset = DocumentOffset(file_, place);
  moveTo(file_, offset);
  // Until the whole block is on the disk, it has no valid tag, so that readers skip it: its length
  // may reach the disk before its frames. The header's offset is written last.
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
  // A host may commit frames that the block's length does not count yet; keep those too.
  if (store_.IsAsCommitted()) return file_.GetLength();
  return CommittedEnd(file_, blockOffset, held_);
}

// --- Where the committed data end ---

namespace {

// The characters of the tag at `offset`; fewer than four if the file ends there.
std::string tagAt(CFile& file, std::uint64_t offset) {
  moveTo(file, offset);
  std::string tag(kTagLength, '\0');
  tag.resize(file.Read(tag.data(), tag.size()));
  return tag;
}

// Whether a record of a known kind begins at `offset`, or whole records fill the file from there to
// its end.
bool recordsFollow(CFile& file, std::uint64_t offset) {
  if (FindTagIndex(tagAt(file, offset)) >= 0) return true;
  DeclaredRecords records(file, offset);
  while (records.Next()) {
    if (!IsPrintableTag(records.Record().Tag())) return false;
    if (records.Record().DeclaredEnd() > file.GetLength()) return false;
  }
  return !records.EndsInHead();
}

// The offset of the first record with this tag. If there is none, the offset of the first bytes
// that are not a whole record, or the end of the file.
std::uint64_t blockOffset(CFile& file, std::string_view blockTag) {
  std::uint64_t start = HeaderLayout::kSize;
  while (start < file.GetLength()) {
    const std::string tag = tagAt(file, start);
    // Bytes that are not a record have no length that gives the next record's offset, and there may
    // be gigabytes of them.
    if (tag == blockTag || !IsPrintableTag(tag)) break;
    const auto end = EndOfRecordAt(file, start);
    if (!end) break;
    start = *end;
  }
  return start;
}

// The end of the committed data if the offset in the header points to the block: the end of the
// frames that the block's length counts.
std::uint64_t endOfFrames(CFile& file, std::uint32_t offset, const HeldBlock& held) {
  const std::uint64_t fileEnd = file.GetLength();
  const CommittedBlock block = ReadCommittedBlock(file, offset);
  // This system cannot have written such a block: leave it alone.
  if (!block.isWhole || block.record.Tag() != held.Tag() ||
      block.head.version < kFirstVersionWithTimes || block.head.wells == 0 ||
      block.head.wells != held.Wells()) {
    return fileEnd;
  }
  const CommittedFrames frames = FindCommittedFrames(file, block.Range(fileEnd));
  const bool isCounted = frames.end == block.record.DeclaredEnd();
  return isCounted && frames.behind == Uncommitted::kCommit ? frames.end : fileEnd;
}

// Whether `bytes` are some of the first characters of `tag`, or none, and then only zeros.
bool beginsAsBlock(std::string_view bytes, std::string_view tag) {
  const auto unwritten = std::mismatch(bytes.begin(), bytes.end(), tag.begin()).first;
  return kUncommittedTag.starts_with({unwritten, bytes.end()});
}

// Whether the bytes from `start` to the end of the file are an interrupted first commit: a block
// whose tag is not complete, or a block whose frames are all in `held`.
bool isFirstCommitOf(CFile& file, std::uint64_t start, const HeldBlock& held) {
  if (!beginsAsBlock(tagAt(file, start), held.Tag())) return false;
  const CommittedBlock block = ReadCommittedBlock(file, start);
  if (block.record.DeclaredEnd() < file.GetLength()) return false;
  if (!block.isWhole) return file.GetLength() - start <= kRecordHeadSize + kBlockFixedSize;
  if (block.head.version < kFirstVersionWithTimes || block.head.wells != held.Wells()) return false;
  if (block.record.Tag() != held.Tag() || block.firstFrame > file.GetLength()) return true;
  moveTo(file, block.firstFrame);
  const std::uint64_t frames = FindCommittedFrames(block.Range(file.GetLength())).inFile;
  if (frames > held.Frames()) return false;
  for (std::uint64_t frame = 0; frame < frames; ++frame) {
    if (!held.IsFrame(file, frame)) return false;
  }
  return true;
}

// The end of the committed data before the first commit: the end of the last record, which readers
// find from the content of the records.
std::uint64_t endOfRecords(CFile& file, const HeldBlock& held) {
  const std::uint64_t fileEnd = file.GetLength();
  const std::uint64_t start = blockOffset(file, held.Tag());
  return start < fileEnd && isFirstCommitOf(file, start, held) ? start : fileEnd;
}

}  // namespace

CommittedFrames FindCommittedFrames(const FrameRange& range) {
  CommittedFrames frames;
  const auto wholeUpTo = [&](std::uint64_t end) -> std::uint64_t {
    if (range.frameSize == 0 || end < range.firstFrame) return 0;
    return (end - range.firstFrame) / range.frameSize;
  };
  frames.inFile = wholeUpTo(range.fileEnd);
  frames.count = std::min(wholeUpTo(range.countedEnd), frames.inFile);
  frames.end = range.firstFrame + frames.count * range.frameSize;
  frames.behind = UncommittedBehind(range, frames.end);
  return frames;
}

CommittedFrames FindCommittedFrames(CFile& file, const FrameRange& range) {
  CommittedFrames frames = FindCommittedFrames(range);
  // Bytes that other programs appended after the data are records.
  if (frames.behind == Uncommitted::kCommit && recordsFollow(file, frames.end)) {
    frames.behind = Uncommitted::kMore;
  }
  return frames;
}

Uncommitted UncommittedBehind(const FrameRange& range, std::uint64_t end) {
  if (range.fileEnd <= end) return Uncommitted::kNothing;
  return range.fileEnd - end <= range.frameSize ? Uncommitted::kCommit : Uncommitted::kMore;
}

bool IsFirstCommit(CFile& file, std::uint64_t start, std::uint64_t wells) {
  const std::uint64_t fileEnd = file.GetLength();
  if (start >= fileEnd || !beginsAsBlock(tagAt(file, start), TagOf(Kind::kRawData))) return false;
  // The bytes after the head may be on the disk although the head is not.
  const CommittedBlock block = ReadCommittedBlock(file, start);
  const bool hasWells = block.isWhole && block.head.wells > 0;
  const std::uint64_t most = hasWells ? std::min<std::uint64_t>(block.head.wells, wells) : wells;
  return fileEnd - start <= FirstCommitSize(most);
}

CommittedBlock ReadCommittedBlock(CFile& file, std::uint64_t offset) {
  CommittedBlock block;
  moveTo(file, offset);
  if (!ReadRecordHead(file, block.record) ||
      !ReadDataBlockHead(file, TimeBlock::kAsStated, block.head)) {
    return block;
  }
  block.firstFrame = file.GetPosition() + sizeof(std::uint16_t) * block.head.wells;
  block.isWhole = block.head.timeBlockSize == kTimeBlockSize;
  return block;
}

std::uint64_t FindBlockOffset(CFile& file) {
  return blockOffset(file, TagOf(Kind::kRawData));
}

std::uint64_t CommittedEnd(CFile& file, std::uint32_t blockOffset, const HeldBlock& held) {
  return blockOffset != 0 ? endOfFrames(file, blockOffset, held) : endOfRecords(file, held);
}

}  // namespace vex2
