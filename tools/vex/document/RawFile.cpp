#include "tools/vex/document/RawFile.h"

#include "tools/vex/Errors.h"

namespace vex2::tool {

void OpenToRead(CFile& file, const std::string& path) {
  CFileException reason;
  if (!file.Open(path.c_str(), CFile::modeRead | CFile::typeBinary, &reason)) {
    throw SystemError(path, reason.GetError());
  }
}

NewFile::NewFile(const std::string& path) : path_(path) {
  CFileException reason;
  if (!OpenReplacement(path.c_str(), &reason)) throw SystemError(path, reason.GetError());
}

// What cannot be written is the new file's fault, whatever it is called until it is complete.
void NewFile::PutInPlace() {
  try {
    CloseReplacement();
  } catch (const CFileException& error) {
    throw SystemError(path_, error.GetError());
  }
}

}  // namespace vex2::tool
