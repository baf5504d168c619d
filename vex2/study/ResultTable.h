#pragma once

#include "vex2/framework/CPtrArray.h"

namespace vex2 {

/// The results of one kind, one place per well with indexes from 0. Owns what it holds when it is
/// destroyed.
template <class Result>
class ResultTable {
 public:
  explicit ResultTable(int wellCount) { entries_.SetSize(wellCount); }
  ~ResultTable() {
    for (int index = 0; index < entries_.GetSize(); ++index) delete GetAt(index);
  }
  ResultTable(const ResultTable&) = delete;
  ResultTable& operator=(const ResultTable&) = delete;

  /// The result at `index`; null where there is none and for an index out of range.
  Result* GetAt(int index) const { return static_cast<Result*>(entries_.GetAt(index)); }
  /// Stores `result`, which may be null. What stood there is not destroyed: whoever replaces a
  /// result has taken the old one back. An index out of range stores nothing.
  void SetAt(int index, Result* result) { entries_.SetAt(index, result); }
  /// Destroys the result at `index`. False when there was none.
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
