#pragma once

#include <nlohmann/json_fwd.hpp>
#include <ostream>

#include "lab/model/SelectedRecords.h"

namespace vex2::lab {

/// An object with a list of objects, "records", of everything that the document's reader would take
/// for a record. It is written as the records are met, so that a large document costs no more than
/// a small one.
class JsonTree final : public RecordVisitor {
 public:
  /// Records at `depth` are without the records in them.
  JsonTree(std::ostream& out, int depth);

  void Begin(const FileRecord& record, CFile& file) override;
  void End(const FileRecord& record) override;
  /// To be called at the end.
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

/// The same list in memory, of all records of the plate in the open `file`.
nlohmann::ordered_json RecordsJson(CFile& file, const Document::Plate& plate);

}  // namespace vex2::lab
