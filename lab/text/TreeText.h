#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include "lab/model/DocumentWalk.h"
#include "lab/text/TextForm.h"

namespace vex2::lab {

/// Writes a line for each record that it visits, indented by its depth.
class TreeText final : public RecordVisitor {
 public:
  /// `end` is the offset at which the readable records end. All arguments must outlive the visitor.
  TreeText(std::ostream& out, std::uint64_t end, const TextForm& form)
      : out_(out), form_(form), end_(end) {}

  void Begin(const FileRecord& record, CFile& file) override;
  /// Writes a line about the bytes after the last record, up to `size`.
  void Finish(std::uint64_t size);

 private:
  void writeHead();
  std::string described(const FileRecord& record, CFile& file, std::size_t taken) const;

  std::ostream& out_;
  const TextForm& form_;
  std::uint64_t end_;
  bool hasHead_ = false;
};

}  // namespace vex2::lab
