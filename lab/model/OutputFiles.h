#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lab/model/DocumentLock.h"

namespace vex2::lab {

/// The files that one piece of work reads and writes, and the rule for what it may replace:
///
/// - an existing file only when that was asked for;
/// - never one that the work reads, or another one that it writes, whatever the names;
/// - never a plate document by something else, nor one that is being recorded;
/// - never by a plate document a file that holds something else: a table whose name was given where
///   the document's belongs would be lost. Empty files pass, as scripts make them with mktemp, and
///   so do files named .vex, which may be damaged documents;
/// - never a file with several names (hard links), which cannot be exchanged in one step.
///
/// Pipes and devices are written to as they are and pass.
class OutputFiles {
 public:
  enum class Kind {
    kDocument,   ///< a plate document
    kTable,      ///< anything else
    kRecording,  ///< a document whose recorder checks and locks it itself
  };

  /// `mayReplace` is whether existing files may be replaced, `remedy` what the caller can do when
  /// one is in the way, for the message.
  OutputFiles(bool mayReplace, std::string remedy)
      : mayReplace_(mayReplace), remedy_(std::move(remedy)) {}

  OutputFiles& Read(const std::string& path);
  OutputFiles& Write(const std::string& path, Kind kind);
  /// Whether an output that was added holds this very content already. Such a one passes: it need
  /// not be written.
  bool IsThere(const std::string& path, const std::string& content);

  /// Applies the rule to all files, and locks the outputs until the end of this object. Throws an
  /// error that names the file; nothing has been opened for writing then.
  void Claim();

 private:
  using Identity = std::pair<dev_t, ino_t>;
  struct File {
    std::string path;
    std::filesystem::path resolved;    ///< of outputs
    std::optional<Identity> identity;  ///< nothing if it does not exist, or is no regular file
    Kind kind = Kind::kTable;
    bool isSame = false;  ///< it exists with the content that it is to have
  };

  static bool isSameFile(const File& one, const File& other);
  void checkDistinct() const;
  void checkExisting(const File& output) const;
  static void requireForDocuments(const File& output);

  bool mayReplace_;
  std::string remedy_;
  std::vector<File> inputs_;
  std::vector<File> outputs_;
  std::vector<std::unique_ptr<DocumentLock>> locks_;
};

}  // namespace vex2::lab
