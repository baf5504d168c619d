#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "lab/model/FileContent.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/manager/Vex2FileManager.h"
#include "vex2/run/SkipsFrames.h"

namespace vex2::lab {

/// A manager whose errors have the system's reasons. It also makes some operations public that a
/// manager offers only to derived classes.
class DocumentFile : public Vex2FileManager {
 public:
  DocumentFile() = default;
  /// Makes a separate document from a plate of a study, record for record. If the raw readings were
  /// the last record before the study added the plate's name and date, they become the last one
  /// again.
  explicit DocumentFile(const Vex2FileManager& plate);

  using Vex2FileManager::GetIdentity;

  /// Opens the document at `path` for reading. Throws an error if the system refuses, or if it is
  /// not a document.
  void OpenDocument(const std::string& path);

  /// Notes the state of the document at `path`, which is to be changed. After this, a save fails if
  /// the file has changed.
  void ExpectUnchanged(const std::string& path);
  /// Throws an error if the file that `ExpectUnchanged` noted has changed.
  void RequireUnchanged() const;
  /// Fails if the file to replace has changed since `ExpectUnchanged`. The library holds the file's
  /// lock during this call, so no other program that uses the library can change the file before it
  /// is replaced.
  int WriteComponentFile(CFile* file) override;

  /// Whether a save writes the component: a study leaves out most of its own components.
  bool IsWritten(const CComponent& component) const { return isWritten(component); }
  /// Calls `change`, which may append components. If the raw readings were the last component
  /// before, they become the last one again, so that frames can be appended to them.
  template <typename Change>
  void KeepingRawDataLast(const Change& change) {
    const bool wasLast = hasRawDataLast();
    change();
    if (wasLast && !hasRawDataLast()) moveToEnd(includesComponent(TagOf(Kind::kRawData)));
  }

  /// Reads frame `index`, from 0, of the block whose record begins at `blockOffset` of the open
  /// file. Returns the library's status; if there is no such frame, `frame` is unchanged.
  int ReadFrameAt(int index, Vex2FrameData& frame, std::uint64_t blockOffset);

 private:
  bool hasRawDataLast() const;
  void moveToEnd(CComponent* component);
  bool isUnchanged() const;

  std::string expectedPath_;  ///< empty if no file is expected to be unchanged
  FileState expected_;
};

/// A document that is read without its frames, see `SkipsFrames`. It cannot be saved.
class HeadsFile final : public DocumentFile, public SkipsFrames {
 public:
  int WriteComponentFile(CFile* file) override;
};

}  // namespace vex2::lab
