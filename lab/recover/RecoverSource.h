#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "lab/model/BigEndian.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/framework/CFile.h"

namespace vex2::lab {

/// Reads a damaged file at any offset. Keeps a small part of it in memory.
class RecoverSource {
 public:
  /// `file` must be open for reading and outlive this object.
  explicit RecoverSource(CFile& file) : file_(file), size_(file.GetLength()) {}

  std::uint64_t Size() const { return size_; }
  /// The file itself. Its file position may be changed.
  CFile& File() { return file_; }
  /// At least `count` bytes from `offset` on; fewer only at the end of the file. Valid until the
  /// next call.
  std::span<const std::uint8_t> View(std::uint64_t offset, std::size_t count);
  /// The big-endian number at `offset`; nothing if the file ends within the number.
  std::optional<std::uint16_t> Short(std::uint64_t offset);
  std::optional<std::uint32_t> Long(std::uint64_t offset);

 private:
  CFile& file_;
  std::uint64_t size_;
  std::uint64_t start_ = 0;
  std::vector<std::uint8_t> window_;
};

/// Bytes that look like the head of a record.
struct RecoverHead {
  std::uint64_t offset = 0;  ///< offset of the tag
  std::array<char, 4> tagBytes{};
  /// Kind of the record; for an unknown tag, the kind with unknown layout.
  const RecordKind* kind = nullptr;
  std::uint32_t length = 0;  ///< declared length
  std::uint16_t count = 0;   ///< declared number of records in a list or cell
  std::uint64_t next = 0;    ///< offset of the next head: that of the first record in the list, or
                             ///< that after the record
  /// The numbers in the head agree with each other and with the size of the file.
  bool exact = false;

  std::string_view Tag() const { return {tagBytes.data(), tagBytes.size()}; }
  std::uint64_t DeclaredEnd() const { return offset + kRecordHeadSize + length; }
  /// Whether it is a list with a body, so that the records in it follow.
  bool HoldsRecords() const;
};

/// The head at `offset`. Returns nothing if the library does not know its tag, or if the body does
/// not fit into the file. If the size of the value is fixed, the declared length may differ from
/// it: readers ignore that length.
std::optional<RecoverHead> HeadAt(RecoverSource& source, std::uint64_t offset);
/// The head at `offset` of a record whose tag the library does not know. The tag must be printable,
/// and by its declared length the record must end at another head, at the end of the file, or at
/// `listEnd`, the end of the list around the record.
std::optional<RecoverHead> UnknownHeadAt(RecoverSource& source, std::uint64_t offset,
                                         std::uint64_t listEnd = 0);

/// The number of characters that are the same in `tag` and in the bytes at `offset`.
int Likeness(RecoverSource& source, std::uint64_t offset, std::string_view tag);

/// Whether a record may end at `offset`: another head begins there, or the file ends there or a few
/// bytes later.
bool IsBoundary(RecoverSource& source, std::uint64_t offset);

/// Whether the head at `offset` can be trusted although the bytes before it are damaged. Further
/// heads must follow, each at the end of the previous record. They must continue to the end of the
/// file or past `mustCross`, or be so many that readings are unlikely to look like them.
bool IsBelieved(RecoverSource& source, std::uint64_t offset, std::uint64_t mustCross = 0);

/// Looks for a head that can be trusted, at the offsets from `from` to below `before`. Returns the
/// first one; nothing if there is none.
std::optional<std::uint64_t> FindHead(RecoverSource& source, std::uint64_t from,
                                      std::uint64_t before, std::uint64_t mustCross = 0);

}  // namespace vex2::lab
