#pragma once

#include <optional>
#include <string>

#include "lab/Error.h"
#include "vex2/framework/CFile.h"
#include "vex2/framework/FileError.h"

namespace vex2::lab {

/// Throws an error when `path` cannot be read as a document is: it is empty, leads to a folder, or
/// to a pipe, which can be read only once. A path that leads nowhere passes.
void RequireReadable(const std::string& path);

/// Opens the file at `path`, whatever is in it. Throws an error with the system's reason.
void OpenToRead(CFile& file, const std::string& path);

/// Why an operation of the library on the file at `path` failed, for `error` as its manager keeps
/// it.
Error FileFailure(const std::string& path, const FileError& error);

/// Why a file is not a plate document, to follow that it is none.
struct NoDocument {
  std::string text;
  ErrorRemedy remedy = ErrorRemedy::kNone;
};

/// Why the open file is not a plate document, going by its first bytes. Returns nothing if it
/// begins as one.
std::optional<NoDocument> WhyNoDocument(CFile& file);

/// Takes the place of the file at a path once it is complete and on the disk; until then that is
/// untouched. Open for writing, and throws errors with the system's reason.
class NewFile final : public CFile {
 public:
  explicit NewFile(const std::string& path);
  void PutInPlace();

 private:
  std::string path_;
};

}  // namespace vex2::lab
