#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tools/vex/document/FileLayout.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/framework/CFile.h"

namespace vex2::tool {

/// A record as it stands in a file.
struct FileRecord {
  std::array<char, 4> tagBytes{};
  std::uint64_t offset = 0;  ///< of the tag, from the file's begin
  std::uint32_t length = 0;  ///< as the record declares it
  std::uint64_t end = 0;     ///< where the reader goes on; known once the record ends
  int depth = 1;             ///< 1 for a record of the document itself
  const RecordKind* kind = nullptr;

  std::string_view Tag() const { return {tagBytes.data(), tagBytes.size()}; }
  std::uint64_t BodyOffset() const { return offset + kRecordHeadSize; }
  std::uint64_t DeclaredEnd() const { return BodyOffset() + length; }
};

/// Is told of each record of a file, also of a damaged one: what the records declare (`length`) and
/// where the reader goes on behind them (`end`) are two things, and a record that begins and does
/// not end is where the walk gave up. No operation need leave the file's position.
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

/// What is wrong at a place in a file.
struct FileFault {
  std::uint64_t offset = 0;
  std::string what;
};

/// How a walk ended.
struct WalkEnd {
  std::uint64_t offset = 0;        ///< where; the file's length when all of it was records
  std::optional<FileFault> fault;  ///< of the record that could not be walked over
};

/// Walks over the records of the document in the open `file`, from behind its header on, and over
/// those in them, to the same places as the document's reader: past the bytes that a body's layout
/// has, whatever length the record declares. Neither allocates nor recurses on the word of a file.
WalkEnd WalkRecords(CFile& file, RecordVisitor& visitor);

/// Where the body at `body` of pure dyes or a background ends, by what its entries say: readers go
/// by that. Behind the file's end when the file ends before.
std::uint64_t SpectraEnd(CFile& file, BodyLayout layout, std::uint64_t body);

/// The next 16 or 32 bits, big-endian; nothing where the file ends before.
std::optional<std::uint16_t> ReadShort(CFile& file);
std::optional<std::uint32_t> ReadLong(CFile& file);

}  // namespace vex2::tool
