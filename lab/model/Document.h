#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "lab/model/DocumentFile.h"
#include "lab/model/DocumentWalk.h"
#include "vex2/framework/CTime.h"

namespace vex2::lab {

/// A document that was read for an operation: its content in memory, and what could not be read or
/// kept.
class Document {
 public:
  /// A record of the document itself, as it is in the file.
  struct Record {
    std::string tag;
    std::uint64_t offset = 0;
    std::uint32_t length = 0;
    bool known = false;  ///< the library knows the tag; it drops other records
  };
  /// One plate: the document itself, or a plate in a study.
  struct Plate {
    bool isEmbedded = false;  ///< it is a plate in a study, which stores its name and date
    std::string name;         ///< Latin-1, as the date
    std::string date;         ///< when the plate's own file was last changed
    Vex2FileManager* content = nullptr;  ///< owned by the document
    /// Offset of the plate's record in the file; 0 for the document itself.
    std::uint64_t offset = 0;
    std::uint64_t end = 0;        ///< offset of its end in the file
    std::vector<Record> records;  ///< top-level records of the plate
  };
  enum class Purpose {
    kRead,
    kReadHeads,  ///< read all but the frames of data blocks, so that the time does not depend on
                 ///< the length of the run
    kChange,  ///< read to change the document: a save fails if another program has changed it since
  };
  /// Content that a saved copy of the document would lack.
  struct Loss {
    std::uint64_t offset = 0;
    std::string what;
    bool wasRead = false;  ///< the document in memory still has this content
  };

  /// Reads the document at `path`. Throws an error if it cannot be opened or is not a document. If
  /// it can be read only in part, does not throw: see `Fault`.
  explicit Document(std::string path, Purpose purpose = Purpose::kRead);

  const std::string& Path() const { return path_; }
  DocumentFile& Content() { return *content_; }
  const DocumentFile& Content() const { return *content_; }
  std::uint64_t Size() const { return size_; }
  /// The top-level records in the file, in their order, as far as they could be read.
  const std::vector<Record>& Records() const { return records_; }
  /// The document itself as a plate. Valid as long as this object.
  Plate Itself() const;
  /// The plates in the document, in their order; empty if it holds no plates.
  const std::vector<Plate>& Plates() const { return plates_; }
  /// Whether the document is a study.
  bool IsStudy() const { return content_->IsRQS(); }
  /// The time at which the file was last changed.
  CTime Modified() const { return modified_; }
  /// The offset at which the records end. Other bytes may follow; if none do, it is the size of the
  /// file.
  std::uint64_t RecordsEnd() const { return recordsEnd_; }
  /// Why the document could not be read completely; nothing if it could.
  const std::optional<FileFault>& Fault() const { return fault_; }
  /// Content that a save would drop or replace by zeros, sorted by offset. Collected only for a
  /// document that could be read completely.
  const std::vector<Loss>& Losses() const { return losses_; }

  /// Throws an error that says what was lost, unless the document was read completely. `purpose`
  /// completes "..., so it is not " in the message; if it is empty, the message lacks that part.
  void RequireWhole(std::string_view purpose) const;
  /// Throws an error if the document's run is in progress.
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

/// Throws an error if the file at `path` is a document whose run is in progress. Does nothing if
/// `path` does not exist or is not a document.
void RequireNoRunAt(const std::string& path);

/// A note for the user: `what` was made from the document at `path` while its run was in progress.
std::string RunInProgressText(const std::string& path, std::string_view what);
/// The note `RunInProgressText(path, what)`; empty unless the file at `path` is a document whose
/// run is in progress.
std::string NoteOnRunAt(const std::string& path, std::string_view what);

}  // namespace vex2::lab
