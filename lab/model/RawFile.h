#pragma once

#include <optional>
#include <string>

#include "lab/Error.h"
#include "vex2/framework/CFile.h"
#include "vex2/framework/FileError.h"

namespace vex2::lab {

/// Throws an error if the file at `path` cannot be read like a document: if `path` is empty, a
/// folder, or a pipe or device, which cannot be read twice. Does nothing if the file does not
/// exist.
void RequireReadable(const std::string& path);

/// Opens the file at `path`, whatever its content. Throws an error with the system's reason.
void OpenToRead(CFile& file, const std::string& path);

/// The error that explains why an operation of the library on the file at `path` failed. `error` is
/// the error that the manager keeps.
Error FileFailure(const std::string& path, const FileError& error);

/// Why a file is not a plate document; the text follows "this is not a plate document: ".
struct NoDocument {
  std::string text;
  ErrorRemedy remedy = ErrorRemedy::kNone;
};

/// Why the open file is not a plate document, judged by its first bytes. Returns nothing if it
/// begins like one.
std::optional<NoDocument> WhyNoDocument(CFile& file);

/// A new file that replaces the file at a path once it is complete and on the disk; until then the
/// old file is unchanged. It is open for writing, and throws errors with the system's reason.
class NewFile final : public CFile {
 public:
  explicit NewFile(const std::string& path);
  void PutInPlace();

 private:
  std::string path_;
};

}  // namespace vex2::lab
