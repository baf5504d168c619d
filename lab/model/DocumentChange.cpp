#include "lab/model/DocumentChange.h"

#include "lab/model/Saving.h"

namespace vex2::lab {

DocumentChange::DocumentChange(const std::string& path, const SaveRules& rules)
    : lock_(path, DocumentLock::Holder::kCommand), document_(path, Document::Purpose::kChange) {
  document_.RequireAtRest();
  PrepareToSave(document_, document_.Path(), rules);
}

void DocumentChange::Save() {
  DocumentFile& content = document_.Content();
  SaveDocument(content, document_.Path());
  content.ExpectUnchanged(document_.Path());
}

}  // namespace vex2::lab
