#include "tests/tools/DocumentIndex.h"

#include <algorithm>
#include <functional>
#include <string_view>

#include "lab/model/DataBlock.h"
#include "lab/model/DocumentWalk.h"

namespace vex2::test {

namespace {

using vex2::FileRecord;

class Indexer final : public vex2::RecordVisitor {
 public:
  Indexer(CFile& file, DocumentIndex& index) : file_(file), index_(index) {}

  void Begin(const FileRecord& record, CFile& /*file*/) override {
    DocumentIndex::Part part;
    part.begin = record.offset;
    part.tag = record.Tag();
    part.around = open_.empty() ? "" : index_.parts[open_.back()].tag;
    part.isKnown = vex2::IsKnownTag(record.Tag());
    part.content = hash(record.Tag());
    open_.push_back(index_.parts.size());
    index_.parts.push_back(part);
    if (record.length > 0) take(record);
  }

  void End(const FileRecord& record) override {
    DocumentIndex::Part& part = index_.parts[open_.back()];
    part.end = record.end;
    if (isLeaf(record) && record.length > 0) {
      add(part.content, bytesAt(record.BodyOffset(), part.end));
    }
    open_.pop_back();
    if (!open_.empty()) mix(index_.parts[open_.back()].content, part.content);
  }

 private:
  static std::size_t hash(std::string_view text) { return std::hash<std::string_view>()(text); }
  static void mix(std::size_t& content, std::size_t more) { content = content * 1000003U + more; }
  static void add(std::size_t& content, const std::string& bytes) { mix(content, hash(bytes)); }

  static bool isLeaf(const FileRecord& record) {
    const BodyLayout layout = record.kind->layout;
    return layout != BodyLayout::kList && layout != BodyLayout::kCell &&
           layout != BodyLayout::kPlate && layout != BodyLayout::kData;
  }

  std::string bytesAt(std::uint64_t begin, std::uint64_t end) {
    std::string bytes(end - std::min(begin, end), '\0');
    file_.Seek(static_cast<std::int64_t>(begin), CFile::begin);
    bytes.resize(file_.Read(bytes.data(), bytes.size()));
    return bytes;
  }

  // Takes the fields of a record that holds other records.
  void take(const FileRecord& record) {
    constexpr std::uint64_t kCount = 2;
    constexpr std::uint64_t kCellFields = 7;
    constexpr std::uint64_t kHeader = 1024;
    const std::uint64_t body = record.BodyOffset();
    std::size_t& content = index_.parts.back().content;
    switch (record.kind->layout) {
      case BodyLayout::kCell:
        return add(content, bytesAt(body + kCount, body + kCellFields));
      case BodyLayout::kPlate:
        return add(content, bytesAt(body + kCount, body + kCount + kHeader));
      case BodyLayout::kData:
        return takeFrames(record);
      default:
        return;
    }
  }

  void takeFrames(const FileRecord& record) {
    const auto head = lab::ReadStoredBlock(file_, record);
    if (!head) return;
    const std::size_t block = index_.parts.size() - 1;
    add(index_.parts[block].content, bytesAt(record.BodyOffset(), head->firstFrame));
    for (std::uint64_t i = 0; i < head->frameCount; ++i) {
      DocumentIndex::Part frame;
      frame.begin = head->firstFrame + i * head->frameSize;
      frame.end = frame.begin + head->frameSize;
      const std::string bytes = bytesAt(frame.begin, frame.end);
      if (bytes.size() != head->frameSize) return;
      frame.tag = record.Tag();
      frame.around = index_.parts[block].around;
      frame.isFrame = true;
      frame.content = hash(bytes);
      mix(index_.parts[block].content, frame.content);
      index_.parts.push_back(frame);
    }
  }

  CFile& file_;
  DocumentIndex& index_;
  std::vector<std::size_t> open_;
};

}  // namespace

DocumentIndex IndexDocument(CFile& file) {
  DocumentIndex index;
  Indexer indexer(file, index);
  const lab::WalkEnd end = lab::WalkRecords(file, indexer);
  // Leave out the records whose end was not reached.
  std::erase_if(index.parts, [](const DocumentIndex::Part& part) { return part.end == 0; });
  index.end = end.offset;
  if (end.fault) index.fault = end.fault->what;
  return index;
}

}  // namespace vex2::test
