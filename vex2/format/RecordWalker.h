#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "vex2/format/RecordKinds.h"
#include "vex2/framework/CFile.h"

/// The one loop over the records of a document in a file.
namespace vex2 {

/// A record in a file.
struct FileRecord {
  std::array<char, kTagLength> tagBytes{};
  std::uint64_t offset = 0;  ///< of the tag, from the start of the file
  std::uint32_t length = 0;  ///< as the record declares it
  std::uint64_t end = 0;     ///< where the reader goes on; known once the record ends
  int depth = 1;             ///< 1 for a record of the document itself
  const RecordKind* kind = nullptr;

  std::string_view Tag() const { return {tagBytes.data(), tagBytes.size()}; }
  std::uint64_t BodyOffset() const { return offset + kRecordHeadSize; }
  std::uint64_t DeclaredEnd() const { return BodyOffset() + length; }
};

/// Reads tag and length at the file's position. False when the file ends before, and then `record`
/// has its offset and as much of the tag as there is.
[[nodiscard]] bool ReadRecordHead(CFile& file, FileRecord& record);

/// Whether these characters could be a tag, known or not: four printable ones.
bool IsPrintableTag(std::string_view tag);

/// Called for each record of a file, even of a damaged one. What a record declares (`length`) and
/// where the reader continues after it (`end`) may differ. A record that begins and does not end is
/// where the walk gave up. No operation need keep the file's position.
class RecordVisitor {
 public:
  virtual ~RecordVisitor() = default;
  /// The record begins; the file's position is at its body.
  virtual void Begin(const FileRecord& record, CFile& file) = 0;
  /// It ends, after the records in it. Not called for a record that ends the walk.
  virtual void End(const FileRecord& record) { static_cast<void>(record); }
  /// Four bytes of a plate in a study are passed over: they begin no record that its reader knows.
  virtual void Pass(std::uint64_t offset) { static_cast<void>(offset); }
};

/// Why a record could not be walked over.
struct WalkFault {
  enum class Reason : std::uint8_t {
    kNoLength,        ///< the file ends before its length
    kTooDeep,         ///< records are nested too deep
    kBytesMissing,    ///< `available` of `expected` bytes
    kNoCount,         ///< the file ends before the count of a list
    kRecordsMissing,  ///< `available` of `expected` records of a list
    kNoPlateEnd,
    kNoFrames,       ///< the file ends before the frames of a data block
    kFramesMissing,  ///< `available` of `expected` frames
  };

  Reason reason = Reason::kNoLength;
  std::uint64_t offset = 0;  ///< of the record's tag
  std::array<char, kTagLength> tag{};
  std::uint64_t available = 0;
  std::uint64_t expected = 0;
};

/// How a walk ended.
struct RecordWalk {
  std::uint64_t offset = 0;  ///< where; the file's length when all of it was records
  std::optional<WalkFault> fault;
};

/// Walks over the records of the document in the open `file`, from the end of its header on, and
/// over those in them, to the same offsets as the document's reader: past the bytes that a body's
/// layout has, whatever length the record declares. Neither allocates nor recurses on the word of a
/// file.
RecordWalk WalkRecordsOf(CFile& file, RecordVisitor& visitor);

/// Where the record at `offset` ends, by what it holds; nothing for one that cannot be walked over.
std::optional<std::uint64_t> EndOfRecordAt(CFile& file, std::uint64_t offset);

/// Where the body at `body` of pure dyes or a background ends, by what its entries state: readers
/// go by that. After the file's end when the file ends before.
std::uint64_t SpectraEnd(CFile& file, BodyLayout layout, std::uint64_t body);

/// Steps over records by the lengths that they declare, as an instrument looks for a record.
class DeclaredRecords {
 public:
  /// Starts with the record at `offset`.
  DeclaredRecords(CFile& file, std::uint64_t offset) : file_(file), next_(offset) {}

  /// Reads the head of the next record. False at the file's end and where it ends within a head.
  bool Next();
  /// The record that was read last; the file's position is at its body until it is moved.
  const FileRecord& Record() const { return record_; }
  /// Whether the file ends within the head of a record.
  bool EndsInHead() const { return endsInHead_; }

 private:
  CFile& file_;
  std::uint64_t next_;
  FileRecord record_;
  bool endsInHead_ = false;
};

}  // namespace vex2
