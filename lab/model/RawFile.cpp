#include "lab/model/RawFile.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

#include "lab/SystemError.h"
#include "vex2/format/HeaderLayout.h"

namespace vex2::lab {

namespace {

// A text has no control characters except those that separate lines and fields.
bool isText(std::string_view bytes) {
  return !bytes.empty() && std::all_of(bytes.begin(), bytes.end(), [](char character) {
    const auto byte = static_cast<unsigned char>(character);
    return (byte >= 0x20 && byte != 0x7F) || (byte >= '\t' && byte <= '\r');
  });
}

}  // namespace

void RequireReadable(const std::string& path) {
  if (path.empty()) throw Error(ErrorCode::kUsage, "the name of the document is empty");
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) return;
  if (S_ISDIR(info.st_mode)) throw SystemError(path, EISDIR);
  if (S_ISFIFO(info.st_mode) || S_ISSOCK(info.st_mode) || S_ISCHR(info.st_mode)) {
    throw Error(ErrorCode::kUsage, path,
                "cannot be read as a document: it is a pipe or a device, and not seekable; save it "
                "to a file first");
  }
}

std::optional<NoDocument> WhyNoDocument(CFile& file) {
  std::array<char, 512> bytes{};
  file.SeekToBegin();
  const std::string_view begin(bytes.data(), file.Read(bytes.data(), bytes.size()));
  file.SeekToBegin();
  if (begin.starts_with(kMagic)) return std::nullopt;
  if (begin.empty()) return NoDocument{"it is empty"};
  if (isText(begin)) return NoDocument{"it is a text", ErrorRemedy::kImport};
  return NoDocument{"it does not begin with Vex2"};
}

Error FileFailure(const std::string& path, const FileError& error) {
  switch (error.reason) {
    case FileErrorReason::kSystem:
      return SystemError(
          path, error.systemError,
          error.operation == FileOperation::kRead ? std::optional(error.offset) : std::nullopt);
    case FileErrorReason::kLocked:
      return SystemError(path, EWOULDBLOCK);
    case FileErrorReason::kNoMemory:
      return SystemError(path, ENOMEM);
    case FileErrorReason::kNotADocument:
      return {ErrorCode::kNoDocument, path, "this is not a plate document"};
    case FileErrorReason::kFailedSyncBefore:
      return {ErrorCode::kSystem, path,
              "the disk failed to store an earlier change, so nothing more is written into this "
              "file; save the document under another name"};
    case FileErrorReason::kNone:
    case FileErrorReason::kNotOpen:
    case FileErrorReason::kNoPath:
      break;
  }
  return {ErrorCode::kSystem, path, "the library refused it and gave no reason"};
}

void OpenToRead(CFile& file, const std::string& path) {
  RequireReadable(path);
  CFileException reason;
  if (!file.Open(path.c_str(), CFile::modeRead | CFile::typeBinary, &reason)) {
    throw SystemError(path, reason.GetError());
  }
}

NewFile::NewFile(const std::string& path) : path_(path) {
  CFileException reason;
  if (!OpenReplacement(path.c_str(), &reason)) throw SystemError(path, reason.GetError());
}

// Errors name the path of the final file, not that of the temporary one.
void NewFile::PutInPlace() {
  try {
    CloseReplacement();
  } catch (const CFileException& error) {
    throw SystemError(path_, error.GetError());
  }
}

}  // namespace vex2::lab
