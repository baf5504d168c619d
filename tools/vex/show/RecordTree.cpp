#include "tools/vex/show/RecordTree.h"

#include "tools/vex/Lab.h"
#include "tools/vex/show/RecordValue.h"
#include "tools/vex/text/Json.h"
#include "tools/vex/text/Text.h"

namespace vex2::tool {

namespace {

using nlohmann::ordered_json;

std::string indent(int depth) {
  return std::string(2 * static_cast<std::size_t>(depth), ' ');
}

ordered_json fields(const FileRecord& record, CFile& file) {
  ordered_json object = {
      {"tag", ToUtf8(record.Tag())}, {"offset", record.offset}, {"length", record.length}};
  if (!IsKnownTag(record.Tag())) object["known"] = false;
  ordered_json value = ReadRecordValue(file, record);
  if (!value.is_null()) object["value"] = std::move(value);
  object.update(ReadRecordFields(file, record));
  return object;
}

}  // namespace

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
    // A plate is a record in the record of all plates.
    constexpr int kDepthOfPlate = 2;
    if (!selection_.tag) record.depth -= kDepthOfPlate;
  }
  if (selection_.tag) {
    if (!within_) return std::nullopt;
    record.depth -= *within_ - 1;
  }
  return record.depth <= selection_.depth ? std::optional(record) : std::nullopt;
}

JsonTree::JsonTree(std::ostream& out, int depth) : out_(out), depth_(depth) {}

void JsonTree::Begin(const FileRecord& record, CFile& file) {
  begin();
  out_ << (isFirst_ ? "\n" : ",\n") << indent(record.depth);
  std::string text = fields(record, file).dump();
  if (holdsRecords(record)) {
    text.back() = ',';
    text += "\"children\":[";
    ++open_;
  }
  out_ << text;
  isFirst_ = holdsRecords(record);
}

void JsonTree::End(const FileRecord& record) {
  if (holdsRecords(record)) close(record.depth);
}

void JsonTree::Finish() {
  begin();
  // A record that could not be followed to its end left its lists open.
  while (open_ > 0) close(open_);
  out_ << "\n]\n";
}

bool JsonTree::holdsRecords(const FileRecord& record) const {
  if (record.depth >= depth_) return false;
  const BodyLayout layout = record.kind->layout;
  return layout == BodyLayout::kList || layout == BodyLayout::kCell || layout == BodyLayout::kPlate;
}

// With the first record, so that an error before it is all that is written.
void JsonTree::begin() {
  if (!hasBegun_) out_ << '[';
  hasBegun_ = true;
}

void JsonTree::close(int depth) {
  out_ << (isFirst_ ? "]}" : "\n" + indent(depth) + "]}");
  isFirst_ = false;
  --open_;
}

}  // namespace vex2::tool
