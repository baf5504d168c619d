#pragma once

#include <string>
#include <vector>

#include "lab/check/Findings.h"
#include "lab/model/DataBlock.h"
#include "lab/model/Document.h"
#include "lab/model/HeaderFields.h"

namespace vex2::lab {

/// A record of the document itself to which the header has a position.
struct PositionedRecord {
  std::string tag;
  std::uint64_t offset = 0;
  std::uint64_t end = 0;          ///< where the reader goes on
  std::uint64_t declaredEnd = 0;  ///< where its length says that it ends
};

/// A record whose length is not what it holds.
struct WrongLength {
  std::string name;
  std::uint64_t offset = 0;
  std::uint32_t declared = 0;
  std::uint64_t held = 0;
};

/// Adds what is wrong with each record of a document, as the walk over them meets it.
class RecordCheck final : public RecordVisitor {
 public:
  /// All three must stay as long as this does.
  RecordCheck(const Document& document, const HeaderFields& header, Findings& findings);

  void Begin(const FileRecord& record, CFile& file) override;
  void End(const FileRecord& record) override;
  void Pass(std::uint64_t offset) override;
  /// After the walk: adds the lengths that are wrong, since only now it is known what to do.
  void Finish(const WalkEnd& end);

  /// The programs and raw data that were walked over.
  const std::vector<PositionedRecord>& Positioned() const { return positioned_; }
  const std::vector<WrongLength>& WrongLengths() const { return wrongLengths_; }
  /// Whether there are bytes between the document's records that are none, so that the walk may
  /// have taken for records what is none.
  bool HasGaps() const { return hasGaps_; }
  /// Whether there are wrong lengths, and a repair sets them right. Valid after `Finish`.
  bool CanRepairLengths() const { return isWalked_ && !hasGaps_ && !wrongLengths_.empty(); }
  /// The tags that lead to the record at `offset`, where the walk or the reader gave up.
  std::string NameAt(std::uint64_t offset) const;

 private:
  struct Level {
    FileRecord record;
    unsigned texts = 0;   ///< in it, at any depth
    unsigned plates = 0;  ///< directly in it
    bool holdsPlates = false;
    bool known = true;
  };

  bool isBehindRecords(const FileRecord& record) const;
  std::string path(std::size_t levels) const;
  void add(Severity severity, std::string problem, std::string consequence,
           std::string remedy = "");
  void checkUnknown(const FileRecord& record);
  void checkNoRecord(const FileRecord& record);
  void checkBlock(const FileRecord& record, CFile& file);
  void checkWells(const StoredBlock& head);
  void checkCells(const FileRecord& record, CFile& file);
  void checkLength(const Level& level);

  const Document& document_;
  Findings& findings_;
  HeaderFields plate_;         ///< the header that the records belong to
  std::vector<Level> levels_;  ///< the record that was begun last, and those that it is in
  std::vector<PositionedRecord> positioned_;
  std::vector<WrongLength> wrongLengths_;
  std::vector<Finding> lengths_;  ///< of them, but for what to do
  bool hasGaps_ = false;
  bool isWalked_ = false;         ///< to the end, or to a last block that is cut short
  std::uint64_t passedEnd_ = 0;   ///< of the bytes of a plate that were passed over last
  std::uint64_t garbageEnd_ = 0;  ///< of the last record that is none
};

}  // namespace vex2::lab
