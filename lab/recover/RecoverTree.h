#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "lab/recover/RecoverReport.h"
#include "lab/recover/RecoverSource.h"

namespace vex2::lab {

/// A tag for people.
std::string InQuotes(std::string_view tag);

/// The document that is being put together: bytes copied from the damaged file and made ones, in
/// lists that are given the counts and lengths of what they came to hold.
class RecoverTree {
 public:
  /// `out` is empty and open for writing; what is written begins at its begin.
  RecoverTree(RecoverSource& source, CFile& out, RecoverReport& report)
      : source_(source), out_(out), report_(report) {}

  std::uint64_t Position() const { return position_; }
  void Copy(std::uint64_t from, std::uint64_t to);
  void Append(const std::vector<std::uint8_t>& bytes);
  /// Overwrites what was written at `at`.
  void Patch(std::uint64_t at, std::span<const std::uint8_t> bytes);

  /// Closes the lists that end before `offset` of the damaged file, where a record with this tag
  /// begins; an empty tag means that no record begins there. `afterLoss`: bytes before it were
  /// lost.
  void Settle(std::uint64_t offset, std::string_view tag, bool afterLoss);
  /// Opens lists around a record whose own was lost.
  void Wrap(std::uint64_t offset, std::string_view tag);
  /// Opens the list with this head, whose first `bytes` were written already, under `tag`.
  void Open(const RecoverHead& head, std::string_view tag, std::uint64_t bytes, bool isTrusted);
  /// Writes `count` empty cells into the open plate setup, in place of the same number of lost
  /// cells.
  void AddEmptyCells(std::uint64_t offset, std::uint64_t count);
  /// Sets the number of columns of a plate, for the cells that are made; 0 if it is not known.
  void SetColumns(std::uint16_t columns) { columns_ = columns; }
  /// Writes the open list's tag anew where the damaged file has another.
  void RightTag(const RecoverHead& head);
  /// Counts a record in the list that is open.
  void Count(std::string_view tag);
  /// Closes the open plate, which already has its end record.
  void ClosePlate();
  void CloseAll();

  bool IsInPlate() const;
  std::size_t Depth() const { return open_.size(); }
  /// Whether data blocks may stand here: right in the document or in a plate.
  bool IsAtTop() const { return open_.empty() || open_.back().isPlate; }
  /// Tags that stand right in the document or the plate that is open.
  const std::set<std::string>& TagsAtTop() const;
  /// Whether the list that ends at `offset` is one that is open, by its declared length.
  bool EndsAt(std::uint64_t offset) const;
  /// Whether `offset` is after the end of a list that is open.
  bool IsPastEnd(std::uint64_t offset) const;
  /// The tag of the list that is open; empty in the document itself.
  std::string_view OpenTag() const {
    return open_.empty() ? "" : std::string_view(open_.back().tag);
  }
  /// Records that the open list declares and that have not come; 0 when its end is not known.
  std::uint64_t Missing() const;
  std::uint64_t OpenEnd() const { return open_.empty() ? 0 : open_.back().end; }
  /// The declared end of the outermost open list in the document or the plate; 0 when none is sure.
  std::uint64_t OutermostEnd() const;

 private:
  struct List {
    std::string tag;
    std::uint64_t offset = 0;   // in the damaged file
    std::uint64_t written = 0;  // where its head is in the new one
    std::uint64_t end = 0;      // in the damaged file, as declared
    std::uint32_t length = 0;   // as written
    std::uint16_t count = 0;    // as written
    std::uint64_t seen = 0;
    bool isTrusted = false;  // its declared end is one
    bool isMade = false;     // not in the damaged file
    bool isPlate = false;
    bool hasPlates = false;
    std::set<std::string> tags;  // in a plate
  };

  bool isComplete(const List& list, std::uint64_t offset, std::string_view tag,
                  bool afterLoss) const;
  bool isEndPlausible(const List& list, std::string_view tag) const;
  bool isPlateOver(const List& plate, std::string_view tag, bool afterLoss) const;
  bool isAtHomeOutside(const List& list, std::string_view tag) const;
  bool isCounted(const List& list, std::uint64_t offset, std::string_view tag,
                 bool afterLoss) const;
  std::string_view tagAround(const List& list) const;
  std::vector<std::uint8_t> cellFields() const;
  void openMade(std::uint64_t offset, std::string_view tag);
  void close();
  void closeOrEnd();
  std::uint32_t rightLength(const List& list) const;

  RecoverSource& source_;
  CFile& out_;
  RecoverReport& report_;
  std::uint64_t position_ = 0;
  std::uint16_t columns_ = 0;
  std::vector<List> open_;
  std::set<std::string> tags_;  // in the document itself
};

}  // namespace vex2::lab
