#pragma once

#include <limits>
#include <optional>
#include <set>
#include <string>

#include "lab/model/Document.h"
#include "lab/model/RecordWalk.h"

namespace vex2::lab {

/// Which records of a document or plate are meant.
struct TreeSelection {
  /// How deep records are nested, 1 for those of the document itself.
  int depth = std::numeric_limits<int>::max();
  /// Only those with this tag, with what is in them; each is then at depth 1.
  std::optional<std::string> tag;
};

/// Passes on the records of one plate, or of the document, that were selected.
class SelectedRecords final : public RecordVisitor {
 public:
  /// All of what is handed over must live as long as the visitor does.
  SelectedRecords(const Document::Plate& plate, const TreeSelection& selection, RecordVisitor& next)
      : plate_(plate), selection_(selection), next_(next) {}

  void Begin(const FileRecord& record, CFile& file) override;
  void End(const FileRecord& record) override;

  /// Whether any record was selected.
  bool HasAny() const { return hasAny_; }
  /// The tags of all records that were met, as UTF-8.
  const std::set<std::string>& Tags() const { return tags_; }

 private:
  std::optional<FileRecord> selected(FileRecord record) const;

  const Document::Plate& plate_;
  const TreeSelection& selection_;
  RecordVisitor& next_;
  std::optional<int> within_;  // the depth of the record with the tag that was asked for
  bool hasAny_ = false;
  std::set<std::string> tags_;
};

}  // namespace vex2::lab
