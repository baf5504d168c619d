#pragma once

#include <string>
#include <utility>

#include "lab/model/OutputFiles.h"
#include "tools/vex/files/Output.h"

namespace vex2::tool {

/// The files that one command reads and writes. Paths that are empty or "-" stand for standard
/// input and output.
class OutputFiles : public lab::OutputFiles {
 public:
  /// `force` is whether existing files may be replaced, `remedy` what is said when not.
  explicit OutputFiles(bool force, std::string remedy = "use --force to overwrite it")
      : lab::OutputFiles(force, std::move(remedy)) {}

  OutputFiles& Read(const std::string& path) {
    lab::OutputFiles::Read(path.empty() || path == "-" ? "/dev/stdin" : path);
    return *this;
  }
  OutputFiles& Write(const std::string& path, Kind kind) {
    if (!IsStandardStream(path)) lab::OutputFiles::Write(path, kind);
    return *this;
  }
};

}  // namespace vex2::tool
