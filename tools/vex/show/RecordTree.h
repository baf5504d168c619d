#pragma once

#include <limits>
#include <optional>
#include <ostream>
#include <set>
#include <string>

#include "lab/model/Document.h"
#include "lab/model/RecordWalk.h"
#include "tools/vex/Lab.h"

namespace vex2::tool {

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

/// A list of objects, of everything that the document's reader would take for a record. It is
/// written as the records are met, so that a large document costs no more than a small one.
class JsonTree final : public RecordVisitor {
 public:
  /// Records at `depth` are without the records in them.
  JsonTree(std::ostream& out, int depth);

  void Begin(const FileRecord& record, CFile& file) override;
  void End(const FileRecord& record) override;
  /// To be called at the end.
  void Finish();

 private:
  bool holdsRecords(const FileRecord& record) const;
  void begin();
  void close(int depth);

  std::ostream& out_;
  int depth_;
  bool hasBegun_ = false;
  bool isFirst_ = true;
  int open_ = 0;
};

}  // namespace vex2::tool
