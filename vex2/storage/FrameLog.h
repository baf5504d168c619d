#pragma once

#include <cstdint>
#include <string_view>

#include "vex2/framework/CFile.h"
#include "vex2/framework/FunctionRef.h"

/// The one answer to the question where the committed data of a document end. A process that dies
/// within a commit leaves bytes behind them that no length counts, and so does a failed commit
/// where the system would not even cut them off. Readers do not see such bytes, but a frame that is
/// appended behind them would be looked for in front of them.
namespace vex2 {

/// The data block that a writer holds in memory and commits from.
struct HeldBlock {
  std::string_view tag;
  std::uint16_t wells = 0;
  std::uint64_t frames = 0;
  /// Whether the records at the file's position, one for each well, are those of the held frame.
  /// Moves the position behind them. Called with frames below `frames`, from 0 on.
  FunctionRef<bool(CFile& file, std::uint64_t frame)> isFrame;
};

/// The offset at which the next commit writes to the document in the open `file`. `blockOffset` is
/// the header's offset of the block's tag, 0 before its first commit. From the result to the file's
/// end there are only uncommitted bytes: part of a frame, or a first commit that was interrupted.
/// The file's length where there are none, and where it is not certain that the bytes at the end
/// are uncommitted: bytes that this system cannot have left there are never written over.
///
/// Moves the file's position. Throws `CFileException` when the file cannot be read.
std::uint64_t CommittedEnd(CFile& file, std::uint32_t blockOffset, const HeldBlock& held);

}  // namespace vex2
