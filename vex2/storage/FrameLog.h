#pragma once

#include <cstdint>
#include <string_view>

#include "vex2/format/DataBlockHead.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/format/RecordWalker.h"
#include "vex2/framework/CFile.h"
#include "vex2/storage/DocumentStore.h"

/// Only this code decides where the committed data of a document end. An interrupted commit leaves
/// uncommitted bytes after them, which the length of the block does not count; so does a failed
/// commit if the system refuses to truncate the file. Readers do not see such bytes. But if a frame
/// were appended after them, readers would take these bytes for the frame.
namespace vex2 {

/// Where the frames of a data block are in a file.
struct FrameRange {
  std::uint64_t firstFrame = 0;  ///< the offset of the first frame
  std::uint64_t frameSize = 0;   ///< bytes of one frame; 0 without wells
  std::uint64_t countedEnd = 0;  ///< the offset of the block's end, by its length
  std::uint64_t fileEnd = 0;     ///< the file's length
};

/// What is between the committed data of a document and the end of its file.
enum class Uncommitted : std::uint8_t {
  kNothing,
  kCommit,  ///< what one interrupted commit can leave: at most one frame
  kMore,    ///< bytes that no interrupted commit can have left
};

struct CommittedFrames {
  std::uint64_t count = 0;   ///< whole frames in the file that the block's length counts
  std::uint64_t inFile = 0;  ///< whole frames in the file, counted or not
  std::uint64_t end = 0;     ///< the offset after the last of the `count` frames
  Uncommitted behind = Uncommitted::kNothing;
};

/// Finds the committed frames of a block that is the last record of its document. Reads no file, so
/// that it can be used for damaged ones. A block without wells has no frames.
CommittedFrames FindCommittedFrames(const FrameRange& range);

/// Finds the committed frames of a block in the open `file`. If records follow the frames, no
/// commit wrote them, and `behind` is `kMore`.
CommittedFrames FindCommittedFrames(CFile& file, const FrameRange& range);

/// What is between `end`, the end of the block's frames, and the end of the file.
Uncommitted UncommittedBehind(const FrameRange& range, std::uint64_t end);

/// The maximum number of bytes that an interrupted first commit leaves: a block with this number of
/// wells and one frame.
constexpr std::uint64_t FirstCommitSize(std::uint64_t wells) {
  return kRecordHeadSize + kBlockFixedSize + (sizeof(std::uint16_t) + kStoredRecordSize) * wells;
}

/// Whether the bytes from `start` to the end of the open `file` are what an interrupted first
/// commit leaves: a block of one frame with at most `wells` wells, or the beginning of such a
/// block. Its tag may be complete, incomplete or missing. Such a block is committed only if the
/// offset in the header points to it. Moves the file position.
bool IsFirstCommit(CFile& file, std::uint64_t start, std::uint64_t wells);

/// A data block as commits write it. If the file ends early, it has the fields that could be read.
struct CommittedBlock {
  FileRecord record;
  DataBlockHead head;
  bool isWhole = false;          ///< whether the head is complete and its times have the right size
  std::uint64_t firstFrame = 0;  ///< the offset of the first frame, if `isWhole`

  /// The range of its frames in a file of `fileEnd` bytes.
  FrameRange Range(std::uint64_t fileEnd) const {
    return {firstFrame, FrameSize(head.wells), record.DeclaredEnd(), fileEnd};
  }
};

/// Reads the block whose tag is at `offset` of the open `file`. If the result is whole, the file
/// position is then at the well numbers.
CommittedBlock ReadCommittedBlock(CFile& file, std::uint64_t offset);

/// The offset of the raw readings of the document in the open `file`. If it has none, the offset at
/// which they would be written: after its other records, whose ends follow from their content. If a
/// record is damaged or incomplete, the offset of the first bytes that are not a whole record.
/// Moves the file position.
std::uint64_t FindBlockOffset(CFile& file);

/// The data block that a writer holds in memory and commits from.
class HeldBlock {
 public:
  virtual ~HeldBlock() = default;

  virtual std::string_view Tag() const = 0;
  /// The length of the held body, in bytes.
  virtual std::uint32_t Length() const = 0;
  virtual std::uint16_t Wells() const = 0;
  virtual std::uint64_t Frames() const = 0;

  /// Whether the records at the file position, one for each well, equal those of the held frame
  /// with the index `frame`, from 0, which is below `Frames`. Moves the file position to the end of
  /// the records.
  virtual bool IsFrame(CFile& file, std::uint64_t frame) const = 0;
  /// Writes the records of the frame with this index, from 0, at the file position. Returns 0, or
  /// -260 if there is no such frame.
  virtual int WriteFrame(CFile& file, int frame) const = 0;
  /// Writes the whole body at the file position.
  virtual int WriteBody(CFile& file) const = 0;
};

/// Returns the offset at which the next commit writes to the document in the open `file`.
/// `blockOffset` is the header's offset of the block's tag, or 0 before the first commit. The
/// result is the beginning of the uncommitted bytes at the end of the file, which are part of a
/// frame or an interrupted first commit. If there are none, or if it is not certain that the bytes
/// are uncommitted, the result is the length of the file: bytes that this system cannot have left
/// are never overwritten.
///
/// Moves the file position. Throws `CFileException` if the file cannot be read.
std::uint64_t CommittedEnd(CFile& file, std::uint32_t blockOffset, const HeldBlock& held);

/// Commits one data block, frame by frame, to the document that is open in `store`'s file. A frame
/// counts only when it is on the disk, so the file has every frame that counts, whenever a commit
/// is interrupted.
class FrameLog {
 public:
  FrameLog(DocumentStore& store, const HeldBlock& held)
      : store_(store), file_(store.File()), held_(held) {}

  /// Commits the frame with the index `frame`, from 0, after the committed data. `blockOffset` is
  /// the header's offset of the block's tag. If it is 0, commits the whole held block with all its
  /// frames, and sets `blockOffset`. Returns 0, -260 if there is no such frame, or -200. After a
  /// failure the file has its old length, unless the system refused to restore it.
  [[nodiscard]] int Commit(int frame, std::uint32_t& blockOffset);

  /// The offset at which the next commit writes: the end of the file if it has not changed since
  /// this store's last commit, otherwise `CommittedEnd`.
  std::uint64_t End(std::uint32_t blockOffset);

  /// Writes the whole held block as the last record of the file, at the offset `place`, and stores
  /// that offset in the header and in `blockOffset`. Returns 0 or -200. Throws `CFileException`.
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
