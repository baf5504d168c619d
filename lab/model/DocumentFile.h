#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "lab/model/FileContent.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/manager/Vex2FileManager.h"
#include "vex2/run/SkipsFrames.h"

namespace vex2::lab {

/// The manager as the tools need it: with the system's reasons, and with what a manager keeps to
/// those who derive from it.
class DocumentFile : public Vex2FileManager {
 public:
  DocumentFile() = default;
  /// A document of its own of a plate from a study, record for record; raw data that were the last
  /// ones, before the plate was given its name and date, are that again.
  explicit DocumentFile(const Vex2FileManager& plate);

  using Vex2FileManager::GetIdentity;

  /// Opens the document at `path` for reading. Throws an error when the system refuses, or when it
  /// is no document.
  void OpenDocument(const std::string& path);

  /// Notes what the document at `path`, which is to be changed, holds now. From here on a save to
  /// a file that holds something else fails.
  void ExpectUnchanged(const std::string& path);
  /// Throws an error when that file holds something else now.
  void RequireUnchanged() const;
  /// Fails where the file to replace is not as it was noted. Its lock is held here, so that no
  /// other program that uses the library changes it before it is replaced.
  int WriteComponentFile(CFile* file) override;

  /// Whether saving the document would write the component: a study leaves most of its own out.
  bool IsWritten(const CComponent& component) const { return isWritten(component); }
  /// Moves the component at the end of the document to the end again after `change` has appended
  /// others, where it is the data block that frames are appended to.
  template <typename Change>
  void KeepingRawDataLast(const Change& change) {
    const bool wasLast = hasRawDataLast();
    change();
    if (wasLast && !hasRawDataLast()) moveToEnd(includesComponent(TagOf(Kind::kRawData)));
  }

  /// Reads one frame of the block whose record begins at `blockOffset` of the open file. Returns
  /// the library's status; `frame` keeps what it held when there is no such frame.
  int ReadFrameAt(int index, Vex2FrameData& frame, std::uint64_t blockOffset);

 private:
  bool hasRawDataLast() const;
  void moveToEnd(CComponent* component);
  bool isUnchanged() const;

  std::string expectedPath_;  ///< empty when no file is expected to be unchanged
  FileState expected_;
};

/// A document that is read without its frames, see `SkipsFrames`. It refuses to be saved.
class HeadsFile final : public DocumentFile, public SkipsFrames {
 public:
  int WriteComponentFile(CFile* file) override;
};

}  // namespace vex2::lab
