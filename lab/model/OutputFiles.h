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

/// The files that an operation reads and writes, and the rules for replacing existing files:
///
/// - An existing file is replaced only if the caller allows it.
/// - A file that the operation reads is never an output, and no two outputs are the same file,
///   whatever their names are.
/// - A plate document is replaced only by another document, and never while it is being recorded.
/// - A plate document never replaces a file that holds something else, so that a table is not lost
///   if its name is given by mistake. Empty files may be replaced, since scripts create them with
///   mktemp, and so may files named .vex, which may be damaged documents.
/// - A file with several names (hard links) is never replaced, because that cannot be done in one
///   step.
///
/// The rules do not apply to pipes and devices, which are written to directly.
class OutputFiles {
 public:
  enum class Kind {
    kDocument,   ///< a plate document
    kTable,      ///< anything else
    kRecording,  ///< a document that its recorder checks and locks itself
  };

  /// `mayReplace` allows existing files to be replaced. If it is false, `remedy` is the advice in
  /// the error about an existing file.
  OutputFiles(bool mayReplace, std::string remedy)
      : mayReplace_(mayReplace), remedy_(std::move(remedy)) {}

  OutputFiles& Read(const std::string& path);
  OutputFiles& Write(const std::string& path, Kind kind);
  /// Whether the output at `path` exists with exactly this content. If so, the rules do not apply
  /// to it, since it need not be written.
  bool IsThere(const std::string& path, const std::string& content);

  /// Applies the rules to all files, and locks the outputs for the lifetime of this object. Throws
  /// an error that names the file. Does not open any file for writing.
  void Claim();

 private:
  using Identity = std::pair<dev_t, ino_t>;
  struct File {
    std::string path;
    std::filesystem::path resolved;    ///< only for outputs
    std::optional<Identity> identity;  ///< nothing if it does not exist, or is not a regular file
    Kind kind = Kind::kTable;
    bool isSame = false;  ///< it exists with the content that would be written
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
