#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "lab/recover/RecoverReport.h"
#include "lab/recover/RecoverSource.h"

namespace vex2::lab {

/// A tag in quotes, as a text for the user.
std::string InQuotes(std::string_view tag);

/// Writes the new document: bytes that are copied from the damaged file, and new ones. Finally sets
/// the count and the length of each list to what the list holds.
class RecoverTree {
 public:
  /// `out` must be empty and open for writing.
  RecoverTree(RecoverSource& source, CFile& out, RecoverReport& report)
      : source_(source), out_(out), report_(report) {}

  std::uint64_t Position() const { return position_; }
  void Copy(std::uint64_t from, std::uint64_t to);
  void Append(const std::vector<std::uint8_t>& bytes);
  /// Overwrites bytes that were already written, at offset `at` of the new document.
  void Patch(std::uint64_t at, std::span<const std::uint8_t> bytes);

  /// Closes the lists that end before `offset` of the damaged file. `tag` is the tag of the record
  /// that begins there, or empty if no record does. `afterLoss` says whether bytes before `offset`
  /// were lost.
  void Settle(std::uint64_t offset, std::string_view tag, bool afterLoss);
  /// Opens new lists for a record with this tag, to replace lost lists around it.
  void Wrap(std::uint64_t offset, std::string_view tag);
  /// Opens the list with this head under `tag`. The first `bytes` bytes of the list are already
  /// written.
  void Open(const RecoverHead& head, std::string_view tag, std::uint64_t bytes, bool isTrusted);
  /// Writes `count` empty cells into the open plate setup, in place of the same number of lost
  /// cells.
  void AddEmptyCells(std::uint64_t offset, std::uint64_t count);
  /// Sets the number of columns of the plate, for new cells; 0 if it is not known.
  void SetColumns(std::uint16_t columns) { columns_ = columns; }
  /// Corrects the tag of the open list in the new document, if the tag is damaged in the file.
  void RightTag(const RecoverHead& head);
  /// Counts a record in the open list.
  void Count(std::string_view tag);
  /// Closes the open plate, whose end record is already written.
  void ClosePlate();
  void CloseAll();

  bool IsInPlate() const;
  std::size_t Depth() const { return open_.size(); }
  /// Whether data blocks may be here: directly in the document or in a plate.
  bool IsAtTop() const { return open_.empty() || open_.back().isPlate; }
  /// The tags of the records directly in the document, or in the plate if one is open.
  const std::set<std::string>& TagsAtTop() const;
  /// Whether an open list ends at `offset` by its declared length.
  bool EndsAt(std::uint64_t offset) const;
  /// Whether `offset` is after the declared end of an open list.
  bool IsPastEnd(std::uint64_t offset) const;
  /// The tag of the open list; empty if no list is open.
  std::string_view OpenTag() const {
    return open_.empty() ? "" : std::string_view(open_.back().tag);
  }
  /// The number of records that the open list still lacks; 0 if its declared end cannot be trusted.
  std::uint64_t Missing() const;
  std::uint64_t OpenEnd() const { return open_.empty() ? 0 : open_.back().end; }
  /// The declared end of the outermost open list in the document or in the plate; 0 if none can be
  /// trusted.
  std::uint64_t OutermostEnd() const;

 private:
  struct List {
    std::string tag;
    std::uint64_t offset = 0;   // in the damaged file
    std::uint64_t written = 0;  // offset of its head in the new document
    std::uint64_t end = 0;      // declared end, in the damaged file
    std::uint32_t length = 0;   // length that was written
    std::uint16_t count = 0;    // count that was written
    std::uint64_t seen = 0;
    bool isTrusted = false;  // its declared end can be trusted
    bool isMade = false;     // it is not in the damaged file
    bool isPlate = false;
    bool hasPlates = false;
    std::set<std::string> tags;  // tags of the records in a plate
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
  std::set<std::string> tags_;  // tags of the records directly in the document
};

}  // namespace vex2::lab
