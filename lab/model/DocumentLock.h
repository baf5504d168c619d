#pragma once

#include <filesystem>
#include <string>

namespace vex2::lab {

/// The one path of the document that `path` leads to, whatever links and detours it goes through,
/// and whether or not the document exists yet. Throws an error when its folder does not.
std::filesystem::path ResolveDocument(const std::string& path);

/// Keeps recorders and commands that change a document apart, for as long as it lives. A document's
/// own lock is free between two frames, so this lock is on a file beside it, `.NAME.recording`. Its
/// holder removes that file at the end; a killed holder leaves the file, but not the lock.
class DocumentLock {
 public:
  enum class Holder { kRecorder, kCommand };

  /// Locks the document that `path` leads to; it need not exist yet. Throws an error when a
  /// recorder has it. Waits for a command that has it, and throws when that takes too long.
  ///
  /// A recorder without the lock is an error. A command does without where the folder takes no new
  /// file: no recorder can hold a lock there, either.
  DocumentLock(const std::string& path, Holder holder);
  ~DocumentLock();
  DocumentLock(const DocumentLock&) = delete;
  DocumentLock& operator=(const DocumentLock&) = delete;

  /// The one path that the given one leads to.
  const std::filesystem::path& Document() const { return document_; }

 private:
  bool tryToLock(Holder holder);
  bool open(Holder holder);
  bool isStillThere() const;
  std::string holderNote() const;
  void refuse() const;
  [[noreturn]] void refuseFolder(int error) const;

  std::string given_;
  std::filesystem::path document_;
  std::filesystem::path path_;
  int handle_ = -1;
};

}  // namespace vex2::lab
