#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "lab/model/FileLayout.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/framework/CFile.h"

namespace vex2::lab {

/// A damaged file to look into anywhere. Holds a small part of it at a time.
class RecoverSource {
 public:
  /// `file` is open for reading, and outlives this.
  explicit RecoverSource(CFile& file) : file_(file), size_(file.GetLength()) {}

  std::uint64_t Size() const { return size_; }
  /// The file itself; its position is of no importance.
  CFile& File() { return file_; }
  /// The bytes from `offset` on: at least `count` of them but where the file ends before. Valid
  /// until the next call.
  std::span<const std::uint8_t> View(std::uint64_t offset, std::size_t count);
  /// Big-endian; nothing if the file ends before.
  std::optional<std::uint16_t> Short(std::uint64_t offset);
  std::optional<std::uint32_t> Long(std::uint64_t offset);

 private:
  CFile& file_;
  std::uint64_t size_;
  std::uint64_t start_ = 0;
  std::vector<std::uint8_t> window_;
};

/// What looks like the beginning of a record.
struct RecoverHead {
  std::uint64_t offset = 0;  ///< of the tag
  std::array<char, 4> tagBytes{};
  const RecordKind* kind = nullptr;  ///< of unknown layout for an unknown tag
  std::uint32_t length = 0;          ///< as declared
  std::uint16_t count = 0;           ///< of a list or cell
  std::uint64_t next = 0;            ///< where the next head is: the first one in it, or after it
  bool exact = false;                ///< its numbers agree with each other and with the file's size

  std::string_view Tag() const { return {tagBytes.data(), tagBytes.size()}; }
  std::uint64_t DeclaredEnd() const { return offset + kRecordHeadSize + length; }
  /// Whether it is open: records follow that are in it.
  bool HoldsRecords() const;
};

/// The head at `offset`, when the library knows its tag and what it takes is in the file. The
/// declared length of a value of fixed size need not be that size: readers ignore it.
std::optional<RecoverHead> HeadAt(RecoverSource& source, std::uint64_t offset);
/// The head at `offset` of a record whose tag the library does not know. The tag must be printable,
/// and the declared length must lead to another head, to the end of the file, or to `listEnd`, the
/// end of the list around the record.
std::optional<RecoverHead> UnknownHeadAt(RecoverSource& source, std::uint64_t offset,
                                         std::uint64_t listEnd = 0);

/// How many characters of `tag` the bytes at `offset` have in the same places.
int Likeness(RecoverSource& source, std::uint64_t offset, std::string_view tag);

/// Whether a record may end at `offset`: the file does, but for a few bytes, or a head follows.
bool IsBoundary(RecoverSource& source, std::uint64_t offset);

/// Whether the head at `offset` can be trusted although the bytes before it are damaged: heads
/// follow it, each at the end of the record before, up to the end of the file or past `mustCross`,
/// or so many that readings are unlikely to look like them.
bool IsBelieved(RecoverSource& source, std::uint64_t offset, std::uint64_t mustCross = 0);

/// The first head from `from` on and before `before` that can be trusted; nothing if there is none.
std::optional<std::uint64_t> FindHead(RecoverSource& source, std::uint64_t from,
                                      std::uint64_t before, std::uint64_t mustCross = 0);

}  // namespace vex2::lab
