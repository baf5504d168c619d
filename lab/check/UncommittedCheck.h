#pragma once

#include <optional>

#include "lab/check/Findings.h"
#include "lab/check/RecordCheck.h"
#include "lab/model/DataBlock.h"
#include "lab/model/Document.h"
#include "lab/model/HeaderFields.h"
#include "vex2/storage/FrameLog.h"

namespace vex2::lab {

/// The advice for damage that a repair cannot correct.
inline constexpr const char* kRecoverWhole = "{recover} takes what is whole into a new document";

/// The data block at the end of the document, to which a recorder appends frames.
struct LastBlock {
  FileRecord record;
  StoredBlock head;

  /// The range of its frames in a file of this length.
  FrameRange Range(std::uint64_t fileEnd) const {
    return {head.firstFrame, head.frameSize, record.DeclaredEnd(), fileEnd};
  }
};

/// Finds the last block of the open document `file`. Returns nothing if another record is the last
/// one, or if the block has no wells or ends before its first frame.
std::optional<LastBlock> FindLastBlock(CFile& file, const Document& document);

/// Whether the bytes after the last record are those of an interrupted first commit. This is
/// possible only if the document has no data block yet, and the header has no offset of one.
bool EndsInFirstCommit(CFile& file, const Document& document, const HeaderFields& header);

/// Adds what is wrong with the end of a document: a record at which the reader stops, and bytes
/// after the last record. The uncommitted bytes of an interrupted commit are only a warning, since
/// no committed frame is lost.
void CheckEnd(CFile& file, const Document& document, const HeaderFields& header,
              const RecordCheck& records, Findings& findings);

}  // namespace vex2::lab
