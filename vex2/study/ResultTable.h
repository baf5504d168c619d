#pragma once

#include "vex2/framework/CPtrArray.h"

namespace vex2 {

/// The results of one kind, one entry for each well, with indexes from 0. Its destructor destroys
/// the results that it still holds.
template <class Result>
class ResultTable {
 public:
  /// Makes a table with an empty entry for each of `wellCount` wells.
  explicit ResultTable(int wellCount) { entries_.SetSize(wellCount); }
  ~ResultTable() {
    for (int index = 0; index < entries_.GetSize(); ++index) delete GetAt(index);
  }
  ResultTable(const ResultTable&) = delete;
  ResultTable& operator=(const ResultTable&) = delete;

  /// The result at `index`; null if there is none, and for an index out of range.
  Result* GetAt(int index) const { return static_cast<Result*>(entries_.GetAt(index)); }
  /// Stores `result`, which may be null, at `index`; does nothing for an index out of range. Does
  /// not destroy the old result: a caller that replaces a result owns the old one again.
  void SetAt(int index, Result* result) { entries_.SetAt(index, result); }
  /// Destroys the result at `index`. Returns false if there was none.
  bool RemoveAt(int index) {
    Result* result = GetAt(index);
    SetAt(index, nullptr);
    delete result;
    return result != nullptr;
  }

 private:
  CPtrArray entries_;
};

}  // namespace vex2
