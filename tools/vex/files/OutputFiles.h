#pragma once

#include <string>
#include <utility>
#include <vector>

#include "lab/model/OutputFiles.h"
#include "tools/vex/Errors.h"
#include "tools/vex/files/Output.h"

namespace vex2::tool {

/// A line that says which run or study a new document at `path` will replace. Empty if there is
/// none, or if `force` is false.
std::string ReplacedText(const std::string& path, bool force);

/// The files that one command reads and writes. An empty path or "-" means standard input or
/// standard output.
class OutputFiles : public lab::OutputFiles {
 public:
  /// `force` allows existing files to be replaced. If it is false, `remedy` is the advice in the
  /// error.
  explicit OutputFiles(bool force, std::string remedy = "use --force to overwrite it")
      : lab::OutputFiles(force, std::move(remedy)), force_(force) {}

  OutputFiles& Read(const std::string& path) {
    lab::OutputFiles::Read(path.empty() || path == "-" ? "/dev/stdin" : path);
    return *this;
  }
  OutputFiles& Write(const std::string& path, Kind kind) {
    if (IsStandardStream(path)) return *this;
    lab::OutputFiles::Write(path, kind);
    if (kind == Kind::kDocument) replaced_.push_back(ReplacedText(path, force_));
    return *this;
  }
  /// Prints which run or study the new document replaced. Call this at the end, when the document
  /// has been replaced.
  void TellReplaced() const {
    for (const std::string& text : replaced_) PrintIfAny(text);
  }

 private:
  bool force_;
  std::vector<std::string> replaced_;
};

}  // namespace vex2::tool
