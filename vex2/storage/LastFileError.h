#pragma once

#include <string_view>

#include "vex2/framework/CFileException.h"
#include "vex2/framework/FileError.h"

namespace vex2 {

/// The first failure of the last operation that touched a file.
class LastFileError {
 public:
  /// An operation, for as long as the object lives. It forgets the failure of the one before,
  /// unless it is itself a part of one that goes on.
  class Operation {
   public:
    explicit Operation(LastFileError& last);
    ~Operation() { --last_.depth_; }
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

   private:
    LastFileError& last_;
  };

  const FileError& Get() const { return error_; }

  // Keep a failure unless there is one. None throws.
  void Note(const CFileException& failure) noexcept;
  void NoteNoMemory() noexcept;
  void Note(FileErrorReason reason, FileOperation operation, const CString& path) noexcept;

 private:
  void keep(const FileError& error, std::string_view path) noexcept;

  FileError error_;
  int depth_ = 0;
};

}  // namespace vex2
