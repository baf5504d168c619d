#pragma once

#include <filesystem>
#include <string>

namespace vex2::tool {

/// The one path of the document that `path` leads to, whatever links and detours it goes through,
/// and whether or not the document is there yet. Throws an error when its folder is not.
std::filesystem::path ResolveDocument(const std::string& path);

/// Keeps every other recorder away from a document for as long as it lives. A document's own lock
/// is free between two frames, so this one is on a file beside it, `.NAME.recording`, which goes
/// with the recorder; a killed recorder leaves the file, but not the lock.
class RecordingLock {
 public:
  /// `document` is a resolved path. Throws an error when another recorder has it.
  explicit RecordingLock(const std::filesystem::path& document);
  ~RecordingLock();
  RecordingLock(const RecordingLock&) = delete;
  RecordingLock& operator=(const RecordingLock&) = delete;

 private:
  bool open();
  bool isStillThere() const;
  [[noreturn]] void refuseFolder(int error) const;

  std::filesystem::path document_;
  std::filesystem::path path_;
  int handle_ = -1;
};

}  // namespace vex2::tool
