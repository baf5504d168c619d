#include <utility>
#include <vector>

#include "lab/Text.h"
#include "lab/json/Json.h"
#include "lab/model/Document.h"
#include "lab/model/RecordValue.h"
#include "lab/picture/ReportParts.h"

namespace vex2::lab {

namespace {

using nlohmann::ordered_json;

// A page with more records would be too long to read.
constexpr std::size_t kMostRecords = 20'000;
constexpr std::size_t kMostText = 200;

// The value of a record as a short text.
struct Words {
  std::string operator()(std::monostate /*none*/) const { return ""; }
  std::string operator()(std::uint32_t number) const { return std::to_string(number); }
  std::string operator()(float number) const { return ValueText(number); }
  std::string operator()(const RecordColour& colour) const {
    return std::to_string(colour[0]) + " " + std::to_string(colour[1]) + " " +
           std::to_string(colour[2]);
  }
  std::string operator()(const std::string& text) const {
    if (text.size() <= kMostText) return '"' + text + '"';
    return '"' + text.substr(0, kMostText) + "…\"";
  }
  std::string operator()(const RecordBytes& value) const {
    return Counted(value.bytes.size(), "byte");
  }
};

std::string wordsOf(const FileRecord& record, CFile& file) {
  const RecordFields fields = ReadRecordFields(file, record);
  if (const auto* block = std::get_if<StoredBlock>(&fields)) {
    return Counted(block->frameCount, "frame") + " of " + Counted(block->wells.size(), "well");
  }
  return std::visit(Words(), ReadRecordValue(file, record));
}

class Outline final : public RecordVisitor {
 public:
  void Begin(const FileRecord& record, CFile& file) override {
    if (++count_ > kMostRecords) return;
    ordered_json object = {
        {"tag", ToUtf8(record.Tag())}, {"offset", record.offset}, {"length", record.length}};
    std::string words = wordsOf(record, file);
    if (!words.empty()) object["value"] = std::move(words);
    if (!IsKnownTag(record.Tag())) object["known"] = false;
    closeTo(record.depth - 1);
    open_.push_back(std::move(object));
  }

  ordered_json Finish() {
    closeTo(0);
    return {{"list", std::move(records_)},
            {"leftOut", count_ > kMostRecords ? count_ - kMostRecords : 0}};
  }

 private:
  // Closes the open records that are deeper than `depth`. A record ends where the next one at the
  // same or a higher level begins, even if it could not be read completely.
  void closeTo(int depth) {
    while (open_.size() > static_cast<std::size_t>(std::max(depth, 0))) {
      ordered_json object = std::move(open_.back());
      open_.pop_back();
      (open_.empty() ? records_ : open_.back()["records"]).push_back(std::move(object));
    }
  }

  ordered_json records_ = ordered_json::array();
  std::vector<ordered_json> open_;  // each object is in the one before it
  std::size_t count_ = 0;
};

}  // namespace

ordered_json OutlineJson(const std::string& path) {
  DocumentFile file;
  file.OpenDocument(path);
  Outline outline;
  static_cast<void>(WalkRecords(file, outline));
  return outline.Finish();
}

}  // namespace vex2::lab
