#pragma once

#include <string>
#include <vector>

#include "lab/check/Findings.h"
#include "lab/model/DataBlock.h"
#include "lab/model/Document.h"
#include "lab/model/HeaderFields.h"

namespace vex2::lab {

/// A top-level record to which an offset in the header can lead.
struct PositionedRecord {
  std::string tag;
  std::uint64_t offset = 0;
  std::uint64_t end = 0;          ///< the offset at which the reader continues
  std::uint64_t declaredEnd = 0;  ///< the offset at which the record ends by its declared length
};

/// A record whose declared length differs from the bytes that it holds.
struct WrongLength {
  std::string name;
  std::uint64_t offset = 0;
  std::uint32_t declared = 0;
  std::uint64_t held = 0;
};

/// Adds what is wrong with each record of a document, in the order of the walk.
class RecordCheck final : public RecordVisitor {
 public:
  /// `document`, `header` and `findings` must outlive the check.
  RecordCheck(const Document& document, const HeaderFields& header, Findings& findings);

  void Begin(const FileRecord& record, CFile& file) override;
  void End(const FileRecord& record) override;
  void Pass(std::uint64_t offset) override;
  /// Adds the findings about wrong lengths, whose advice depends on the whole walk. Call it after
  /// the walk.
  void Finish(const WalkEnd& end);

  /// The records `TPro` and `RAWa` in the document itself.
  const std::vector<PositionedRecord>& Positioned() const { return positioned_; }
  const std::vector<WrongLength>& WrongLengths() const { return wrongLengths_; }
  /// Whether the document has bytes among its records that are not records. The walk may then also
  /// have taken other such bytes for records.
  bool HasGaps() const { return hasGaps_; }
  /// Whether a repair can correct the wrong lengths. False if there are none. Valid after `Finish`.
  bool CanRepairLengths() const { return isWalked_ && !hasGaps_ && !wrongLengths_.empty(); }
  /// The tags from the outermost list to the record at `offset`, such as "GLBL/VERS". `offset` is
  /// where the walk or the reader stopped.
  std::string NameAt(std::uint64_t offset) const;

 private:
  struct Level {
    FileRecord record;
    unsigned texts = 0;   ///< texts in it, at any depth
    unsigned plates = 0;  ///< plates directly in it
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
  HeaderFields plate_;         ///< the header to which the current records belong
  std::vector<Level> levels_;  ///< the current record, last, and the lists around it
  std::vector<PositionedRecord> positioned_;
  std::vector<WrongLength> wrongLengths_;
  std::vector<Finding> lengths_;  ///< findings about wrong lengths, whose advice is not known yet
  bool hasGaps_ = false;
  bool isWalked_ = false;         ///< the walk got to the end, or to a last block that is cut off
  std::uint64_t passedEnd_ = 0;   ///< end of the bytes that the walk skipped last in a plate
  std::uint64_t garbageEnd_ = 0;  ///< end of the last bytes that are not a record
};

}  // namespace vex2::lab
