#pragma once

#include <cstdint>
#include <string_view>

#include "vex2/format/DataBlockHead.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/format/RecordWalker.h"
#include "vex2/framework/CFile.h"
#include "vex2/storage/DocumentStore.h"

/// The one place that decides where the committed data of a document end. A process that dies
/// within a commit leaves bytes after them that no length counts, and so does a failed commit if
/// the system cannot even cut them off. Readers do not see such bytes, but a frame that is appended
/// after them would be looked for in front of them.
namespace vex2 {

/// Where the frames of a data block are in a file.
struct FrameRange {
  std::uint64_t firstFrame = 0;  ///< offset of it
  std::uint64_t frameSize = 0;   ///< bytes; 0 without wells
  std::uint64_t countedEnd = 0;  ///< the offset at which the block ends by its length
  std::uint64_t fileEnd = 0;     ///< the file's length
};

/// What is between the committed data of a document and the end of its file.
enum class Uncommitted : std::uint8_t {
  kNothing,
  kCommit,  ///< no more than one interrupted commit leaves: a frame or a part of it
  kMore,    ///< nothing that a commit can have left
};

struct CommittedFrames {
  std::uint64_t count = 0;   ///< frames that the length counts and the file holds whole
  std::uint64_t inFile = 0;  ///< frames that the file holds whole, counted or not
  std::uint64_t end = 0;     ///< the offset after the last of the `count`
  Uncommitted behind = Uncommitted::kNothing;
};

/// The committed frames of a block that is the last record of its document. Needs no file, so that
/// it works for damaged ones too; a block without wells has no frames.
CommittedFrames FindCommittedFrames(const FrameRange& range);

/// The committed frames of a block in the open `file`, where records may follow the frames: no
/// commit wrote those.
CommittedFrames FindCommittedFrames(CFile& file, const FrameRange& range);

/// What follows the frames of such a block if they end at `end`.
Uncommitted UncommittedBehind(const FrameRange& range, std::uint64_t end);

/// The most bytes that an interrupted first commit leaves: a block of this number of wells with one
/// frame.
constexpr std::uint64_t FirstCommitSize(std::uint64_t wells) {
  return kRecordHeadSize + kBlockFixedSize + (sizeof(std::uint16_t) + kStoredRecordSize) * wells;
}

/// Whether the bytes from `start` to the end of the open `file` are what an interrupted first
/// commit leaves there: the block of one frame of at most `wells` wells, or its beginning, still
/// without its tag or with it. Nothing counts them unless the header leads to them. Moves the
/// position.
bool IsFirstCommit(CFile& file, std::uint64_t start, std::uint64_t wells);

/// A data block as commits write it, as far as the end of its file lets it be read.
struct CommittedBlock {
  FileRecord record;
  DataBlockHead head;
  bool isWhole = false;          ///< else the file ends within the head, or its times are no times
  std::uint64_t firstFrame = 0;  ///< known when it is whole

  /// Where its frames are in a file of this length.
  FrameRange Range(std::uint64_t fileEnd) const {
    return {firstFrame, FrameSize(head.wells), record.DeclaredEnd(), fileEnd};
  }
};

/// The block whose tag is at `offset` of the open `file`. The position is left at its well numbers
/// when it is whole.
CommittedBlock ReadCommittedBlock(CFile& file, std::uint64_t offset);

/// The offset at which the raw readings of the document in the open `file` are, or would be
/// written: after its other records, which are found by what they hold. If these are damaged or the
/// file ends in them, the offset of the first bytes that are not a whole record. Moves the
/// position.
std::uint64_t FindBlockOffset(CFile& file);

/// The data block that a writer holds in memory and commits from.
class HeldBlock {
 public:
  virtual ~HeldBlock() = default;

  virtual std::string_view Tag() const = 0;
  /// Bytes of the body as it is held.
  virtual std::uint32_t Length() const = 0;
  virtual std::uint16_t Wells() const = 0;
  virtual std::uint64_t Frames() const = 0;

  /// Whether the records at the file's position, one for each well, are those of the held frame.
  /// Moves the position after them. Called with frames below `Frames`, from 0 on.
  virtual bool IsFrame(CFile& file, std::uint64_t frame) const = 0;
  /// Writes the frame's records at the file's position; -260 when there is no such frame.
  virtual int WriteFrame(CFile& file, int frame) const = 0;
  /// Writes the whole body at the file's position.
  virtual int WriteBody(CFile& file) const = 0;
};

/// The offset at which the next commit writes to the document in the open `file`. `blockOffset` is
/// the header's offset of the block's tag, 0 before its first commit. From the result to the file's
/// end there are only uncommitted bytes: part of a frame, or a first commit that was interrupted.
/// The file's length where there are none, and where it is not certain that the bytes at the end
/// are uncommitted: bytes that this system cannot have left there are never written over.
///
/// Moves the file's position. Throws `CFileException` when the file cannot be read.
std::uint64_t CommittedEnd(CFile& file, std::uint32_t blockOffset, const HeldBlock& held);

/// The commits of one data block to the document that is open in `store`'s file. Nothing counts
/// before it is on the disk: whatever happens in between, every frame that counts is there.
class FrameLog {
 public:
  FrameLog(DocumentStore& store, const HeldBlock& held)
      : store_(store), file_(store.File()), held_(held) {}

  /// Commits a frame after the committed data. `blockOffset` is the header's offset of the block's
  /// tag; at 0 the block is committed as it is held, with all its frames, and `blockOffset` becomes
  /// its offset. 0, -260 when there is no such frame, or -200, and then the file has the length
  /// that it had.
  [[nodiscard]] int Commit(int frame, std::uint32_t& blockOffset);

  /// Where the next commit writes: `CommittedEnd`, and a file that is as this store committed it
  /// ends there.
  std::uint64_t End(std::uint32_t blockOffset);

  /// Writes the whole block as the file's last record, at `place`, and has the header lead to it;
  /// then `blockOffset` is `place`. 0 or -200. Throws `CFileException`.
  [[nodiscard]] int WriteBlock(std::uint64_t place, std::uint32_t& blockOffset);

 private:
  int append(int frame, std::uint32_t& blockOffset);
  int appendFrame(int frame, std::uint32_t blockOffset);
  void cutBehindPosition();
  void patch(std::uint64_t offset, std::uint32_t word);

  DocumentStore& store_;
  CFile& file_;
  const HeldBlock& held_;
};

}  // namespace vex2
