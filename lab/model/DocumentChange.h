#pragma once

#include <string>

#include "lab/model/Document.h"
#include "lab/model/DocumentLock.h"
#include "lab/model/SaveRules.h"

namespace vex2::lab {

/// A document that is changed in place: it is read, changed in memory, and saved completely or not
/// at all. No recorder, editor or command can change it during the lifetime of this object.
class DocumentChange {
 public:
  /// Locks and reads the document at `path`. Throws an error if it is being recorded, could not be
  /// read completely, or cannot be saved without a loss that `rules` do not allow.
  DocumentChange(const std::string& path, const SaveRules& rules);

  const Document& Read() const { return document_; }
  /// Calls `work` with the document, to change its content in memory. If the raw readings are the
  /// last record, they remain the last one, so that frames can be appended to them.
  template <typename Work>
  void Change(const Work& work) {
    document_.Content().KeepingRawDataLast([&] { work(document_); });
  }

  /// Saves the document. Throws an error if that fails, or if another program has changed the file
  /// since it was read; the file is then unchanged.
  void Save();

 private:
  DocumentLock lock_;
  Document document_;
};

}  // namespace vex2::lab
