#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "vex2/format/RecordKinds.h"
#include "vex2/framework/CFile.h"

/// The only code that walks over the records of a document in a file.
namespace vex2 {

/// A record in a file.
struct FileRecord {
  std::array<char, kTagLength> tagBytes{};
  std::uint64_t offset = 0;  ///< of the tag, from the start of the file
  std::uint32_t length = 0;  ///< of the body, as the record declares it
  std::uint64_t end = 0;     ///< where the reader continues; set when `End` is called
  int depth = 1;             ///< 1 for a record of the document itself
  const RecordKind* kind = nullptr;

  std::string_view Tag() const { return {tagBytes.data(), tagBytes.size()}; }
  std::uint64_t BodyOffset() const { return offset + kRecordHeadSize; }
  std::uint64_t DeclaredEnd() const { return BodyOffset() + length; }
};

/// Reads tag and length at the file's position. Returns false if the file ends before the end of
/// the length; `record` then has its offset and the characters of the tag that were read.
[[nodiscard]] bool ReadRecordHead(CFile& file, FileRecord& record);

/// Whether `tag` has four printable characters, so that it could be a known or unknown tag.
bool IsPrintableTag(std::string_view tag);

/// Receives each record of a file, even of a damaged one. `end`, where the reader continues after a
/// record, may differ from the end that `length` declares. If `Begin` is called for a record but
/// `End` is not, the walk stopped in that record. The operations may move the file's position.
class RecordVisitor {
 public:
  virtual ~RecordVisitor() = default;
  /// The record begins; the file's position is at its body.
  virtual void Begin(const FileRecord& record, CFile& file) = 0;
  /// The record ends; called after the records inside it ended. Not called for a record in which
  /// the walk stops.
  virtual void End(const FileRecord& record) { static_cast<void>(record); }
  /// The walk skips four bytes at `offset` in a plate of a study, because they are not a known tag.
  virtual void Pass(std::uint64_t offset) { static_cast<void>(offset); }
};

/// Why the walk stopped at a record.
struct WalkFault {
  enum class Reason : std::uint8_t {
    kNoLength,        ///< the file ends within the record's tag or length
    kTooDeep,         ///< records are nested too deep
    kBytesMissing,    ///< only `available` of the `expected` bytes are in the file
    kNoCount,         ///< the file ends before the count of a list
    kRecordsMissing,  ///< only `available` of a list's `expected` records are in the file
    kNoPlateEnd,
    kNoFrames,       ///< the file ends before the frames of a data block
    kFramesMissing,  ///< only `available` of the `expected` frames are in the file
  };

  Reason reason = Reason::kNoLength;
  std::uint64_t offset = 0;  ///< of the record's tag
  std::array<char, kTagLength> tag{};
  std::uint64_t available = 0;
  std::uint64_t expected = 0;
};

/// How a walk ended.
struct RecordWalk {
  std::uint64_t offset = 0;  ///< where it ended; the file's length if all of the file was walked
  std::optional<WalkFault> fault;
};

/// Walks over the records of the document in the open `file`, beginning after its header, and over
/// the records inside them. Continues at the same offsets as the document's reader: after the bytes
/// that the layout of a body takes, whatever length the record declares. Allocates no memory, and
/// recurses at most `kMaxNesting` levels, whatever the file declares.
RecordWalk WalkRecordsOf(CFile& file, RecordVisitor& visitor);

/// The offset at which the document's reader continues after the record at `offset`; `std::nullopt`
/// if the walk would stop in that record.
std::optional<std::uint64_t> EndOfRecordAt(CFile& file, std::uint64_t offset);

/// The end of the body at `body` of pure dyes or a background, as readers compute it from the
/// lengths in its entries. If the file ends earlier, an offset after the end of the file.
std::uint64_t SpectraEnd(CFile& file, BodyLayout layout, std::uint64_t body);

/// Steps from record to record by the lengths that they declare, as an instrument does to find a
/// record.
class DeclaredRecords {
 public:
  /// Starts with the record at `offset`.
  DeclaredRecords(CFile& file, std::uint64_t offset) : file_(file), next_(offset) {}

  /// Reads the head of the next record. Returns false at the end of the file, or if the file ends
  /// within the head.
  bool Next();
  /// The record that was read last; the file's position is at its body until it is moved.
  const FileRecord& Record() const { return record_; }
  /// Whether the last `Next` returned false because the file ends within the head of a record.
  bool EndsInHead() const { return endsInHead_; }

 private:
  CFile& file_;
  std::uint64_t next_;
  FileRecord record_;
  bool endsInHead_ = false;
};

}  // namespace vex2
