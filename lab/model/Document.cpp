#include "lab/model/Document.h"

#include <fmt/core.h>

#include <algorithm>
#include <filesystem>

#include "lab/SystemError.h"
#include "lab/Text.h"
#include "lab/model/BigEndian.h"
#include "lab/model/RawFile.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/framework/CFileStatus.h"
#include "vex2/manager/Vex2FileManagerComponent.h"
#include "vex2/study/CMultiPlateComp.h"
#include "vex2/study/CRQPlateComp.h"

namespace vex2::lab {

namespace {

constexpr std::string_view kPlates = TagOf(Kind::kPlates);

std::string inQuotes(std::string_view tag) {
  return std::string("\"").append(ToUtf8(tag)).append("\"");
}

[[noreturn]] void refuseRun(const std::string& path) {
  throw Error(ErrorCode::kDocument, path, "its run is in progress, and saving would break it",
              std::nullopt, ErrorRemedy::kEndRun);
}

bool hasRunAt(const std::string& path) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) return false;
  Vex2FileManager file;
  return file.SafeOpen(path.c_str(), 0, 0) != 0 && file.ReadHeaderData(nullptr) == kSuccess &&
         file.IsAcquisitionProg();
}

std::unique_ptr<DocumentFile> fileFor(Document::Purpose purpose) {
  if (purpose == Document::Purpose::kReadHeads) return std::make_unique<HeadsFile>();
  return std::make_unique<DocumentFile>();
}

}  // namespace

// Collects the records of the document and of its plates, and the bytes that a save would lose
// because the library does not know them.
struct Document::Surveyor final : RecordVisitor {
  explicit Surveyor(Document& survey) : document(survey) {}

  void Begin(const FileRecord& record, CFile& /*file*/) override {
    const Record noted{std::string(record.Tag()), record.offset, record.length,
                       IsKnownTag(record.Tag())};
    if (record.depth == 1) {
      beginOwn(noted);
    } else if (topKnown && !noted.known && record.length > 0) {
      document.losses_.push_back(
          {record.offset, fmt::format("the bytes of the record {} within another, of no known kind",
                                      inQuotes(noted.tag))});
    }
    if (!isPlates) return;
    if (record.depth == 2) {
      document.plates_.emplace_back();
      document.plates_.back().offset = record.offset;
      document.plates_.back().isEmbedded = true;
    } else if (record.depth == 3) {
      document.plates_.back().records.push_back(noted);
    }
  }

  void End(const FileRecord& record) override {
    if (isPlates && record.depth == 2)
      document.plates_.back().end = document.content_->GetPosition();
  }

  void Pass(std::uint64_t offset) override {
    constexpr std::uint64_t kPassed = 4;
    if (passedEnd != offset) {
      document.losses_.push_back({offset, "bytes in a plate that are no record"});
    }
    passedEnd = offset + kPassed;
  }

  void beginOwn(const Record& record) {
    topKnown = record.known;
    // The library keeps only the first list of plates.
    isPlates = record.tag == kPlates && !hadPlates;
    hadPlates = hadPlates || isPlates;
    document.records_.push_back(record);
    if (record.known) return;
    document.losses_.push_back(
        {record.offset, fmt::format("the record {} of {}, which is of no known kind",
                                    inQuotes(record.tag), Counted(record.length, "byte"))});
  }

  Document& document;
  bool topKnown = false;
  bool hadPlates = false;
  bool isPlates = false;  // the walk is within the list of plates
  std::uint64_t passedEnd = 0;
};

Document::Document(std::string path, Purpose purpose)
    : path_(std::move(path)), content_(fileFor(purpose)) {
  content_->OpenDocument(path_);
  if (purpose == Purpose::kChange) content_->ExpectUnchanged(path_);
  size_ = content_->GetLength();
  CFileStatus status;
  if (content_->GetStatus(status)) modified_ = status.modificationTime;
  survey();
  content_->Abort();
}

void Document::survey() {
  const int status = content_->ReadComponentFile(nullptr);
  requireReadable();
  fault_ = headerFault();
  recordsEnd_ = size_;
  if (fault_) return;
  Surveyor surveyor(*this);
  const WalkEnd end = WalkRecords(*content_, surveyor);
  fault_ = recordFault(status, end);
  linkPlates();
  if (fault_) return;
  findRecordsEnd(end.offset);
  noteStudyLosses();
}

// If the system refused to read, the document is not at fault.
void Document::requireReadable() const {
  const FileError& error = content_->GetLastFileError();
  if (error.reason == FileErrorReason::kSystem || error.reason == FileErrorReason::kNoMemory) {
    throw FileFailure(path_, error);
  }
}

std::optional<FileFault> Document::headerFault() const {
  const std::uint64_t needed =
      HeaderLayout::RecordsOffset(static_cast<std::uint32_t>(content_->GetHeaderRows()));
  if (size_ >= needed) return std::nullopt;
  return FileFault{size_, fmt::format("the header is cut short: {} of {} are there", size_,
                                      Counted(needed, "byte"))};
}

// The uncommitted bytes of an interrupted commit look like a record without an end.
bool Document::beginsUncommittedBytes(std::uint64_t offset) const {
  if (records_.empty()) return false;
  const Record& last = records_.back();
  return last.offset == offset && !last.known && !IsPlain(last.tag);
}

std::optional<FileFault> Document::recordFault(int status, const WalkEnd& end) const {
  if (end.fault && !beginsUncommittedBytes(end.fault->offset)) return end.fault;
  // The reader keeps the known records in their order. So it stopped at the first known record in
  // `records_` that the reader does not have.
  int kept = content_->GetAllComponentCount();
  for (const Record& record : records_) {
    if (!record.known || kept-- > 0) continue;
    return FileFault{
        record.offset,
        fmt::format("the record {} could not be read, nor what follows it", inQuotes(record.tag))};
  }
  if (status == kSuccess) return std::nullopt;
  return FileFault{end.offset, "the document could not be read any further"};
}

// An uncommitted frame is not a record, but its bytes may look like records.
void Document::findRecordsEnd(std::uint64_t walkEnd) {
  recordsEnd_ = walkEnd;
  const auto lastKnown =
      std::find_if(records_.rbegin(), records_.rend(), [](const Record& r) { return r.known; });
  const auto uncommitted = std::find_if(lastKnown.base(), records_.end(),
                                        [](const Record& r) { return !IsPlain(r.tag); });
  if (uncommitted != records_.end()) {
    recordsEnd_ = uncommitted->offset;
    records_.erase(uncommitted, records_.end());
    std::erase_if(losses_, [this](const Loss& loss) { return loss.offset >= recordsEnd_; });
  }
  if (recordsEnd_ >= size_) return;
  const bool isInBlock = !records_.empty() && records_.back().tag == TagOf(Kind::kRawData);
  losses_.push_back({recordsEnd_, Counted(size_ - recordsEnd_, "byte") +
                                      (isInBlock ? " of a frame that was not committed"
                                                 : " at the end that are no record")});
}

// Joins the plates that the walk found with the plates that the reader kept. The reader has fewer
// only if it stopped within a plate.
void Document::linkPlates() {
  const CMultiPlateComp* kept = nullptr;
  for (int i = 0; i < content_->GetAllComponentCount() && kept == nullptr; ++i) {
    kept = dynamic_cast<const CMultiPlateComp*>(content_->GetComponent(i));
  }
  const auto count = static_cast<std::size_t>(kept != nullptr ? kept->GetChildCount() : 0);
  plates_.resize(std::min(plates_.size(), count));
  for (std::size_t i = 0; i < plates_.size(); ++i) {
    const CRQPlateComp* plate = kept->GetPlateAt(static_cast<int>(i));
    plates_[i].name = plate->GetPlateName().View();
    plates_[i].date = plate->GetLastModifiedDate().View();
    plates_[i].content = plate->GetPlate();
  }
  // A plate's record without a body has no content.
  std::erase_if(plates_, [](const Plate& plate) { return plate.content == nullptr; });
}

Document::Plate Document::Itself() const {
  Plate plate;
  plate.content = content_.get();
  plate.end = size_;
  plate.records = records_;
  return plate;
}

void Document::noteStudyLosses() {
  int index = 0;
  for (const Record& record : records_) {
    if (!record.known) continue;
    const CComponent* component = content_->GetComponent(index++);
    if (component == nullptr || content_->IsWritten(*component)) continue;
    // A saved study gets a new end record.
    if (record.tag == TagOf(Kind::kEndOfFile)) continue;
    losses_.push_back(
        {record.offset,
         fmt::format("the record {}, which a study does not keep", inQuotes(record.tag)), true});
  }
  std::stable_sort(losses_.begin(), losses_.end(),
                   [](const Loss& a, const Loss& b) { return a.offset < b.offset; });
}

void Document::RequireWhole(std::string_view purpose) const {
  if (fault_) {
    const std::string lost = Counted(size_ - std::min(size_, fault_->offset), "byte");
    throw Error(ErrorCode::kDocument, path_,
                purpose.empty()
                    ? fmt::format("{} ({} lost)", fault_->what, lost)
                    : fmt::format("{} ({} lost); it cannot be read whole, so it is not {}",
                                  fault_->what, lost, purpose),
                fault_->offset);
  }
  if (!purpose.empty() && content_->GetHeaderRows() > HeaderLayout::kMaxRows) {
    throw Error(ErrorCode::kDocument, path_,
                fmt::format("a plate of {} rows does not fit into a header that is saved",
                            content_->GetHeaderRows()),
                HeaderLayout::kSize);
  }
}

void Document::RequireAtRest() const {
  if (content_->IsAcquisitionProg()) refuseRun(path_);
}

void RequireNoRunAt(const std::string& path) {
  if (hasRunAt(path)) refuseRun(path);
}

std::string RunInProgressText(const std::string& path, std::string_view what) {
  return fmt::format("{}: its run is in progress; {} ends with the last frame committed so far",
                     Escaped(path), what);
}

std::string NoteOnRunAt(const std::string& path, std::string_view what) {
  return hasRunAt(path) ? RunInProgressText(path, what) : std::string();
}

}  // namespace vex2::lab
