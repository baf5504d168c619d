#pragma once

#include <string>

#include "vex2/framework/CFile.h"

namespace vex2::tool {

/// Opens the file at `path`, whatever is in it. Throws an error with the system's reason.
void OpenToRead(CFile& file, const std::string& path);

/// Takes the place of the file at a path once it is complete and on the disk; until then that is
/// untouched. Open for writing, and throws errors with the system's reason.
class NewFile final : public CFile {
 public:
  explicit NewFile(const std::string& path);
  void PutInPlace();

 private:
  std::string path_;
};

}  // namespace vex2::tool
