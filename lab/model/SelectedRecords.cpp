#include "lab/model/SelectedRecords.h"

#include "lab/Text.h"

namespace vex2::lab {

void SelectedRecords::Begin(const FileRecord& record, CFile& file) {
  if (!plate_.isEmbedded || (record.offset > plate_.offset && record.offset < plate_.end)) {
    const std::string tag = ToUtf8(record.Tag());
    tags_.insert(tag);
    if (selection_.tag && !within_ && tag == *selection_.tag) within_ = record.depth;
  }
  if (const auto passed = selected(record)) {
    hasAny_ = true;
    next_.Begin(*passed, file);
  }
}

void SelectedRecords::End(const FileRecord& record) {
  if (const auto passed = selected(record)) next_.End(*passed);
  if (within_ && record.depth <= *within_) within_.reset();
}

std::optional<FileRecord> SelectedRecords::selected(FileRecord record) const {
  if (plate_.isEmbedded) {
    if (record.offset <= plate_.offset || record.offset >= plate_.end) return std::nullopt;
    // A plate's record is in the list of plates, which is at depth 1.
    constexpr int kDepthOfPlate = 2;
    if (!selection_.tag) record.depth -= kDepthOfPlate;
  }
  if (selection_.tag) {
    if (!within_) return std::nullopt;
    record.depth -= *within_ - 1;
  }
  return record.depth <= selection_.depth ? std::optional(record) : std::nullopt;
}

}  // namespace vex2::lab
