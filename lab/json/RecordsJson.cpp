#include "lab/json/RecordsJson.h"

#include <utility>
#include <vector>

#include "lab/Text.h"
#include "lab/json/Json.h"
#include "lab/json/JsonOutput.h"
#include "lab/model/RecordValue.h"

namespace vex2::lab {

namespace {

using nlohmann::ordered_json;

std::string indent(int depth) {
  return std::string(2 * static_cast<std::size_t>(depth), ' ');
}

struct ValueJson {
  ordered_json operator()(std::monostate /*none*/) const { return nullptr; }
  ordered_json operator()(const RecordBytes& value) const { return ToHex(value.bytes); }
  template <typename Content>
  ordered_json operator()(const Content& content) const {
    return content;
  }
};

void addFields(ordered_json& object, const RecordFields& fields) {
  if (const auto* cell = std::get_if<CellFields>(&fields)) {
    object["coord1"] = OrNull(cell->coord1);
    object["coord2"] = OrNull(cell->coord2);
    if (cell->flag) object["flag"] = *cell->flag;
  } else if (const auto* head = std::get_if<StoredBlock>(&fields)) {
    object["version"] = head->version;
    object["startTime"] = head->start.fields;
    object["endTime"] = head->end.fields;
    object["wellNumbers"] = head->wells;
    object["frames"] = head->frameCount;
  }
}

ordered_json recordJson(const FileRecord& record, CFile& file) {
  ordered_json object = {
      {"tag", ToUtf8(record.Tag())}, {"offset", record.offset}, {"length", record.length}};
  if (!IsKnownTag(record.Tag())) object["known"] = false;
  ordered_json value = std::visit(ValueJson(), ReadRecordValue(file, record));
  if (!value.is_null()) object["value"] = std::move(value);
  addFields(object, ReadRecordFields(file, record));
  return object;
}

bool canHoldRecords(const FileRecord& record) {
  const BodyLayout layout = record.kind->layout;
  return layout == BodyLayout::kList || layout == BodyLayout::kCell || layout == BodyLayout::kPlate;
}

class RecordList final : public RecordVisitor {
 public:
  void Begin(const FileRecord& record, CFile& file) override {
    ordered_json object = recordJson(record, file);
    if (!canHoldRecords(record)) return add(std::move(object));
    object["children"] = ordered_json::array();
    open_.push_back(std::move(object));
  }

  void End(const FileRecord& record) override {
    if (canHoldRecords(record)) close();
  }

  ordered_json Finish() {
    // If the walk stopped within lists, they are still open.
    while (!open_.empty()) close();
    return std::move(records_);
  }

 private:
  void add(ordered_json object) {
    (open_.empty() ? records_ : open_.back()["children"]).push_back(std::move(object));
  }

  void close() {
    ordered_json object = std::move(open_.back());
    open_.pop_back();
    add(std::move(object));
  }

  ordered_json records_ = ordered_json::array();
  std::vector<ordered_json> open_;  // each object is in the one before it
};

}  // namespace

JsonTree::JsonTree(std::ostream& out, int depth) : out_(out), depth_(depth) {}

void JsonTree::Begin(const FileRecord& record, CFile& file) {
  begin();
  out_ << (isFirst_ ? "\n" : ",\n") << indent(record.depth);
  std::string text = recordJson(record, file).dump();
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
  // If the walk stopped within lists, they are still open.
  while (open_ > 0) close(open_);
  out_ << "\n]}\n";
}

bool JsonTree::holdsRecords(const FileRecord& record) const {
  return record.depth < depth_ && canHoldRecords(record);
}

// Writes the beginning of the object. Called with the first record, so that nothing is written if
// an error occurs before it.
void JsonTree::begin() {
  if (!hasBegun_) out_ << "{\"version\":" << kJsonVersion << ",\"records\":[";
  hasBegun_ = true;
}

void JsonTree::close(int depth) {
  out_ << (isFirst_ ? "]}" : "\n" + indent(depth) + "]}");
  isFirst_ = false;
  --open_;
}

ordered_json RecordsJson(CFile& file, const Document::Plate& plate) {
  RecordList list;
  const TreeSelection all;
  SelectedRecords records(plate, all, list);
  static_cast<void>(WalkRecords(file, records));
  return list.Finish();
}

}  // namespace vex2::lab
