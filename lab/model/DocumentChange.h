#pragma once

#include <string>

#include "lab/model/Document.h"
#include "lab/model/DocumentLock.h"
#include "lab/model/SaveRules.h"

namespace vex2::lab {

/// A document that is changed in place: read, changed in memory, and saved as a whole or not at
/// all. No recorder, editor or command changes it while this lives.
class DocumentChange {
 public:
  /// Locks and reads the document at `path`. Throws an error when it is being recorded, was not
  /// read whole, or cannot be saved without a loss that `rules` do not allow.
  DocumentChange(const std::string& path, const SaveRules& rules);

  const Document& Read() const { return document_; }
  /// Calls `work` with the document, to change what it holds in memory. Raw readings that are its
  /// last record stay the last one, as frames are appended to them.
  template <typename Work>
  void Change(const Work& work) {
    document_.Content().KeepingRawDataLast([&] { work(document_); });
  }

  /// Saves the document. Throws an error when that fails, or another program has changed the file
  /// since it was read; the file is then as it was.
  void Save();

 private:
  DocumentLock lock_;
  Document document_;
};

}  // namespace vex2::lab
