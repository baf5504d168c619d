#pragma once

#include <filesystem>
#include <string>

namespace vex2::lab {

/// The absolute path of the document at `path`, without symbolic links, "." and "..". The document
/// need not exist. Throws an error if its folder does not exist.
std::filesystem::path ResolveDocument(const std::string& path);

/// Locks a document for the lifetime of this object, against recorders and commands that change it.
/// The document's own lock is free between two frames, so this lock is on a file beside it,
/// `.NAME.recording`. The holder removes that file at the end. A killed holder leaves the file but
/// loses the lock.
class DocumentLock {
 public:
  enum class Holder { kRecorder, kCommand };

  /// Locks the document at `path`, which need not exist yet. If a recorder holds the lock, throws
  /// an error. If a command holds it, waits, and throws an error if that takes too long.
  ///
  /// If the lock file cannot be created, a recorder gets an error. A command works without the lock
  /// if it may not create files in the folder: no recorder can hold a lock there either.
  DocumentLock(const std::string& path, Holder holder);
  ~DocumentLock();
  DocumentLock(const DocumentLock&) = delete;
  DocumentLock& operator=(const DocumentLock&) = delete;

  /// The path of the locked document, see `ResolveDocument`.
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
