#pragma once

#include <string_view>

#include "vex2/framework/CFileException.h"
#include "vex2/framework/FileError.h"

namespace vex2 {

/// The first failure in the last operation that touched a file.
class LastFileError {
 public:
  /// An object of this class marks an operation, from its construction to its destruction. It
  /// clears the failure of the previous operation, unless it is part of another one that still
  /// runs.
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

  // These keep a failure, unless an earlier one of the same operation is kept. They never throw.
  void Note(const CFileException& failure) noexcept;
  void NoteNoMemory() noexcept;
  void Note(FileErrorReason reason, FileOperation operation, const CString& path) noexcept;

 private:
  void keep(const FileError& error, std::string_view path) noexcept;

  FileError error_;
  int depth_ = 0;
};

}  // namespace vex2
