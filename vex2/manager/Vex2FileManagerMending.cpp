// What keeps a document whole when a disk or a process fails: barriers, files that are no longer
// trusted, leftovers of commits that were cut short, and changes that replace instead of patching.

#include <algorithm>
#include <array>

#include "vex2/container/TagFactory.h"
#include "vex2/format/DataBlockHead.h"
#include "vex2/format/Encoding.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/format/ReadLimits.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/framework/Host.h"
#include "vex2/manager/Vex2FileManager.h"
#include "vex2/run/AcquisitionDataComp.h"
#include "vex2/run/WellRecordCoding.h"

using vex2::kSuccess;

namespace {

// The head of a data block as it stands in a file.
struct StoredBlock {
  std::string tag;
  std::uint32_t length = 0;
  std::uint16_t version = 0;
  std::uint16_t wells = 0;
  bool isWhole = false;  // else the file ends within the head
  std::uint64_t firstFrame = 0;
};

std::string tagAt(CFile& file, std::uint64_t position) {
  file.Seek(static_cast<std::int64_t>(position), CFile::begin);
  std::string tag(vex2::kTagLength, '\0');
  tag.resize(file.Read(tag.data(), tag.size()));
  return tag;
}

StoredBlock headAt(CFile& file, std::uint64_t position) {
  StoredBlock block;
  block.tag = tagAt(file, position);
  vex2::DataBlockHead head;
  const bool isRead = vex2::ReadField(file, block.length) &&
                      vex2::ReadDataBlockHead(file, vex2::TimeBlock::kAsStated, head);
  block.version = head.version;
  if (!isRead) return block;
  block.wells = head.wells;
  block.firstFrame = file.GetPosition() + sizeof(std::uint16_t) * head.wells;
  block.isWhole = head.timeBlockSize == vex2::kTimeBlockSize;
  return block;
}

// Printable, as all tags are, also those of kinds that are not known.
bool looksLikeTag(const std::string& tag) {
  return tag.size() == vex2::kTagLength && std::all_of(tag.begin(), tag.end(), [](char letter) {
           return letter >= ' ' && letter <= '~';
         });
}

// Where the record ends that stands there; 0 when that is behind the file's end.
std::uint64_t behindRecord(CFile& file, std::uint64_t position) {
  file.Seek(static_cast<std::int64_t>(position + vex2::kTagLength), CFile::begin);
  std::uint32_t length = 0;
  if (!vex2::ReadField(file, length) || !vex2::HasBytesLeft(file, length)) return 0;
  return position + vex2::kRecordHeadSize + length;
}

// Whether a record of a known kind begins there, or records of any kind go on to the file's end.
bool recordsFrom(CFile& file, std::uint64_t position) {
  if (vex2::FindTagIndex(tagAt(file, position)) >= 0) return true;
  while (position != 0 && position < file.GetLength()) {
    if (!looksLikeTag(tagAt(file, position))) return false;
    position = behindRecord(file, position);
  }
  return position != 0;
}

// Whether they would be stored as the same bytes; what was never filled is zeros.
bool sameStored(const Vex2WellRecord& stored, const Vex2WellRecord* held) {
  const Vex2WellRecord nothing;
  if (held == nullptr) held = &nothing;
  return std::equal(std::begin(stored.leading), std::end(stored.leading), held->leading) &&
         std::equal(stored.data, stored.data + vex2::kStoredDataValues, held->data);
}

}  // namespace

void Vex2FileManager::barrier() {
  // Room first: that the disk failed must not be forgotten for want of memory.
  distrusted_.reserve(distrusted_.size() + 1);
  Flush();  // a refused write is no failed sync: it is told, and can be tried again
  try {
    SyncData();
  } catch (const CFileException&) {
    if (!isDistrusted()) distrusted_.push_back({GetIdentity(), false});
    throw;
  }
}

bool Vex2FileManager::isDistrusted() const {
  return std::any_of(distrusted_.begin(), distrusted_.end(),
                     [this](const auto& file) { return file.identity == GetIdentity(); });
}

void Vex2FileManager::trustAgain(const Identity& stored) noexcept {
  distrusted_.erase(std::remove_if(distrusted_.begin(), distrusted_.end(),
                                   [&stored](const auto& file) { return file.identity == stored; }),
                    distrusted_.end());
}

void Vex2FileManager::finishReplacement() {
  trustAgain(CloseReplacement());
  trustAgain(GetIdentity());
}

bool Vex2FileManager::refusesChanges() {
  if (!isDistrusted()) return false;
  Abort();
  static_cast<void>(guarded(vex2::kWriteFailed, [this] {
    const std::string text = "The disk failed to store a change to " +
                             std::string(filePath_.View()) +
                             ". Nothing more is written into that file. Please save the document "
                             "under another name.";
    for (auto& file : distrusted_) {
      if (file.identity != GetIdentity()) continue;
      // Once for the user: a run that goes on would tell it with every frame.
      if (std::exchange(file.told, true)) {
        vex2::GetHost()->Trace(text + "\n");
      } else {
        vex2::GetHost()->ShowMessage(text);
      }
    }
    return kSuccess;
  }));
  return true;
}

// A process that dies within a commit leaves bytes that nothing counts behind what counts, and so
// does a failed commit where the system would not even cut them off. Readers do not see them, but
// what was appended behind them would be looked for in front.
std::uint64_t Vex2FileManager::endOfWhatCounts(const AcquisitionDataComp& block,
                                               std::uint32_t offset) {
  // A host may commit more than the length counts; what succeeded here is no leftover.
  if (GetIdentity() == committedFile_ && GetLength() == committedLength_) return GetLength();
  return offset != 0 ? endOfFrames(block, offset) : endOfRecords(block);
}

std::uint64_t Vex2FileManager::endOfFrames(const AcquisitionDataComp& block, std::uint32_t offset) {
  const std::uint64_t fileEnd = GetLength();
  const StoredBlock head = headAt(*this, offset);
  // A block of another making is none of ours to mend.
  if (!head.isWhole || head.tag != block.GetTag() || head.version < 2 || head.wells == 0 ||
      head.wells != block.GetWellCount()) {
    return fileEnd;
  }
  const std::uint64_t frame = vex2::FrameSize(head.wells);
  const std::uint64_t counted = offset + vex2::kRecordHeadSize + head.length;
  if (counted < head.firstFrame || (counted - head.firstFrame) % frame != 0) return fileEnd;
  // A commit leaves no more than its frame, and what others put behind the data are records.
  if (counted >= fileEnd || fileEnd - counted > frame) return fileEnd;
  return recordsFrom(*this, counted) ? fileEnd : counted;
}

// From record to record as readers go: by what a record holds, whatever it says of its length.
std::uint64_t Vex2FileManager::endOfRecords(const AcquisitionDataComp& block) {
  const std::uint64_t fileEnd = GetLength();
  for (std::uint64_t start = vex2::HeaderLayout::kSize; start < fileEnd; start = GetPosition()) {
    const std::string tag = tagAt(*this, start);
    if (tag == block.GetTag() || tag == vex2::kUncommittedTag.substr(0, tag.size())) {
      return isLeftover(block, start) ? start : fileEnd;
    }
    // What is no record is no way to the next one, and may go on for gigabytes.
    if (!looksLikeTag(tag)) break;
    Seek(static_cast<std::int64_t>(start), begin);
    std::unique_ptr<CComponent> record;
    if (!vex2::CreateNextComponent(*this, record) || record->Read(this) != kSuccess) break;
  }
  return fileEnd;
}

// Whether what stands there, to the file's end, is a first commit that was cut short: a block that
// has no tag yet, or nothing in it that `block` does not hold.
bool Vex2FileManager::isLeftover(const AcquisitionDataComp& block, std::uint64_t start) {
  const StoredBlock head = headAt(*this, start);
  if (start + vex2::kRecordHeadSize + head.length < GetLength()) return false;
  if (!head.isWhole) return GetLength() - start <= vex2::kRecordHeadSize + vex2::kBlockFixedSize;
  if (head.version < 2 || head.wells != block.GetWellCount()) return false;
  if (head.tag == vex2::kUncommittedTag || head.firstFrame > GetLength()) return true;
  Seek(static_cast<std::int64_t>(head.firstFrame), begin);
  const std::uint64_t frame = vex2::FrameSize(head.wells);
  const std::uint64_t frames = frame != 0 ? GetRemaining() / frame : 0;
  if (frames > static_cast<std::uint64_t>(block.GetFrameCount())) return false;
  std::vector<Vex2WellRecord> records(head.wells);
  for (int index = 0; index < static_cast<int>(frames); ++index) {
    const Vex2WellRecord* held = block.GetFrame(index);
    if (vex2::ReadWellRecords(*this, records.data(), records.size()) != kSuccess) return false;
    for (std::size_t i = 0; i < records.size(); ++i) {
      if (!sameStored(records[i], held != nullptr ? held + i : nullptr)) return false;
    }
  }
  return true;
}

int Vex2FileManager::rewrite(std::uint64_t kept, vex2::FunctionRef<int()> write) {
  const bool replaces = ReplaceOpenFile();
  if (replaces) CopyReplaced(kept);
  const int status = write();
  if (status != kSuccess) return status;
  if (replaces) {
    finishReplacement();
  } else {
    barrier();
  }
  return kSuccess;
}
