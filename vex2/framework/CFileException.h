#pragma once

#include <cstdint>
#include <exception>
#include <string>

#include "vex2/framework/Export.h"
#include "vex2/framework/FileError.h"

/// Thrown by a file operation that the system refuses. The manager catches all of these exceptions.
class VEX2_API CFileException : public std::exception {
 public:
  CFileException() = default;
  /// `error` is the system's error number, `offset` the offset in the file, `operation` the
  /// operation that the system refused.
  CFileException(int error, std::string path, std::uint64_t offset,
                 vex2::FileOperation operation = vex2::FileOperation::kNone);

  /// One line: the path, the offset and the system's message.
  const char* what() const noexcept override;
  /// The system's error number (`errno`); 0 if there is none.
  int GetError() const { return error_; }
  /// The path of the file.
  const std::string& GetPath() const { return path_; }
  /// The offset in the file, in bytes, at which the operation failed.
  std::uint64_t GetOffset() const { return offset_; }
  /// The operation that the system refused.
  vex2::FileOperation GetOperation() const { return operation_; }

 private:
  int error_ = 0;
  vex2::FileOperation operation_ = vex2::FileOperation::kNone;
  std::uint64_t offset_ = 0;
  std::string path_;
  std::string text_;
};
