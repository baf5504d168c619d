#pragma once

#include <limits>
#include <optional>
#include <set>
#include <string>

#include "lab/model/Document.h"
#include "lab/model/DocumentWalk.h"

namespace vex2::lab {

/// A selection of the records of a document or plate.
struct TreeSelection {
  /// The greatest depth of the selected records. Top-level records have depth 1.
  int depth = std::numeric_limits<int>::max();
  /// If set, selects only records with this tag and the records in them. These records then have
  /// depth 1.
  std::optional<std::string> tag;
};

/// Passes on the selected records of one plate, or of the document, to another visitor.
class SelectedRecords final : public RecordVisitor {
 public:
  /// All arguments must outlive the visitor.
  SelectedRecords(const Document::Plate& plate, const TreeSelection& selection, RecordVisitor& next)
      : plate_(plate), selection_(selection), next_(next) {}

  void Begin(const FileRecord& record, CFile& file) override;
  void End(const FileRecord& record) override;

  /// Whether any record was selected.
  bool HasAny() const { return hasAny_; }
  /// The tags of all records that were visited, as UTF-8.
  const std::set<std::string>& Tags() const { return tags_; }

 private:
  std::optional<FileRecord> selected(FileRecord record) const;

  const Document::Plate& plate_;
  const TreeSelection& selection_;
  RecordVisitor& next_;
  std::optional<int> within_;  // the depth of the current record with the selected tag
  bool hasAny_ = false;
  std::set<std::string> tags_;
};

}  // namespace vex2::lab
