#pragma once

#include <nlohmann/json_fwd.hpp>
#include <ostream>

#include "lab/model/SelectedRecords.h"

namespace vex2::lab {

/// Writes a JSON object with a list "records" of all records that the document's reader would read.
/// Writes each record when the walk reaches it, so that the memory does not depend on the size of
/// the document.
class JsonTree final : public RecordVisitor {
 public:
  /// Records at `depth` are written without the records in them.
  JsonTree(std::ostream& out, int depth);

  void Begin(const FileRecord& record, CFile& file) override;
  void End(const FileRecord& record) override;
  /// Call it at the end of the walk.
  void Finish();

 private:
  bool holdsRecords(const FileRecord& record) const;
  void begin();
  void close(int depth);

  std::ostream& out_;
  int depth_;
  bool hasBegun_ = false;
  bool isFirst_ = true;
  int open_ = 0;
};

/// Makes the list of all records of the plate in the open `file`, in memory.
nlohmann::ordered_json RecordsJson(CFile& file, const Document::Plate& plate);

}  // namespace vex2::lab
