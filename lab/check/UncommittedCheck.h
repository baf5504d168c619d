#pragma once

#include <optional>

#include "lab/check/Findings.h"
#include "lab/check/RecordCheck.h"
#include "lab/model/DataBlock.h"
#include "lab/model/Document.h"
#include "lab/model/HeaderFields.h"
#include "vex2/storage/FrameLog.h"

namespace vex2::lab {

/// What is left to do about damage that no repair touches.
inline constexpr const char* kRecoverWhole = "{recover} takes what is whole into a new document";

/// The block that frames are appended to, where a document ends with it.
struct LastBlock {
  FileRecord record;
  StoredBlock head;

  /// Where its frames are in a file of this length.
  FrameRange Range(std::uint64_t fileEnd) const {
    return {head.firstFrame, head.frameSize, record.DeclaredEnd(), fileEnd};
  }
};

/// That of the open document; nothing if another record is the last one, or the block has no wells
/// or ends before its frames.
std::optional<LastBlock> FindLastBlock(CFile& file, const Document& document);

/// Whether what follows the last record is a first commit that was interrupted: the document has no
/// block yet, and no header leads to one.
bool EndsInFirstCommit(CFile& file, const Document& document, const HeaderFields& header);

/// Adds what is wrong with the end of a document: where the reader gives up before it, and bytes
/// after the last record. What an interrupted commit leaves there is a warning: nothing that was
/// committed is lost.
void CheckEnd(CFile& file, const Document& document, const HeaderFields& header,
              const RecordCheck& records, Findings& findings);

}  // namespace vex2::lab
