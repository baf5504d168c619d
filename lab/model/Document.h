#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "lab/model/DocumentFile.h"
#include "lab/model/RecordWalk.h"
#include "vex2/framework/CTime.h"

namespace vex2::lab {

/// A document that was read for a command: what the reader kept of it, and what it did not.
class Document {
 public:
  /// A record of the document itself, as it is in the file.
  struct Record {
    std::string tag;
    std::uint64_t offset = 0;
    std::uint32_t length = 0;
    bool known = false;  ///< to the library, which drops others
  };
  /// One plate's worth of a document: the document itself, or a plate that a study holds.
  struct Plate {
    bool isEmbedded = false;             ///< in a study, which knows it by name and date
    std::string name;                    ///< characters of Latin-1, as is the date
    std::string date;                    ///< when the plate's own file was last changed
    Vex2FileManager* content = nullptr;  ///< owned by the document
    std::uint64_t offset = 0;            ///< in the file: of the plate's record, or 0
    std::uint64_t end = 0;               ///< in the file: after it
    std::vector<Record> records;         ///< its own
  };
  enum class Purpose {
    kRead,
    kReadHeads,  ///< all but the frames of data blocks, so that the run's length costs nothing
    kChange,     ///< a save refuses when another program has changed the document since it was read
  };
  /// What saving the document would not bring back.
  struct Loss {
    std::uint64_t offset = 0;
    std::string what;
    bool wasRead = false;  ///< the document in memory has it
  };

  /// Reads the document at `path`. Throws an error when it cannot be opened or is none; a document
  /// that could be read in part is no error yet.
  explicit Document(std::string path, Purpose purpose = Purpose::kRead);

  const std::string& Path() const { return path_; }
  DocumentFile& Content() { return *content_; }
  const DocumentFile& Content() const { return *content_; }
  std::uint64_t Size() const { return size_; }
  /// The records in the file, in their order, as far as they could be followed.
  const std::vector<Record>& Records() const { return records_; }
  /// The document itself as a plate. Valid as long as the document is.
  Plate Itself() const;
  /// The plates in it, in their order; none where it is no study.
  const std::vector<Plate>& Plates() const { return plates_; }
  /// Whether it is a document for the sake of the plates in it.
  bool IsStudy() const { return content_->IsRQS(); }
  /// When the file was last changed.
  CTime Modified() const { return modified_; }
  /// Where the bytes begin that are no records any more; the file's size when there are none.
  std::uint64_t RecordsEnd() const { return recordsEnd_; }
  /// Why the document could not be read whole; nothing if it was.
  const std::optional<FileFault>& Fault() const { return fault_; }
  /// What a save would drop or empty although the document was read whole, in the file's order.
  const std::vector<Loss>& Losses() const { return losses_; }

  /// Throws an error that says what was lost, unless the document was read whole. `purpose`
  /// completes "..., so it is not ", and nothing is said when it is empty.
  void RequireWhole(std::string_view purpose) const;
  /// Throws an error when a run is being recorded into it.
  void RequireAtRest() const;

 private:
  struct Surveyor;

  void survey();
  void requireReadable() const;
  std::optional<FileFault> headerFault() const;
  std::optional<FileFault> recordFault(int status, const WalkEnd& end) const;
  bool beginsUncommittedBytes(std::uint64_t offset) const;
  void findRecordsEnd(std::uint64_t walkEnd);
  void noteStudyLosses();
  void linkPlates();

  std::string path_;
  std::unique_ptr<DocumentFile> content_;
  std::uint64_t size_ = 0;
  std::uint64_t recordsEnd_ = 0;
  CTime modified_;
  std::vector<Record> records_;
  std::vector<Plate> plates_;
  std::vector<Loss> losses_;
  std::optional<FileFault> fault_;
};

/// Throws an error when the file at `path` is a document whose run is being recorded. A path that
/// leads to no document passes.
void RequireNoRunAt(const std::string& path);

/// The note that `what` was made of the document at `path` while its run is in progress.
std::string RunInProgressText(const std::string& path, std::string_view what);
/// That note, or an empty text when the file at `path` is not a document or its run is not in
/// progress.
std::string NoteOnRunAt(const std::string& path, std::string_view what);

}  // namespace vex2::lab
