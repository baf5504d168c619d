#include "vex2/storage/FailedSyncs.h"

#include <algorithm>

namespace vex2 {

void FailedSyncs::Add(const File& file) {
  if (!Contains(file)) files_.push_back({file, false});
}

void FailedSyncs::Remove(const File& file) noexcept {
  files_.erase(std::remove_if(files_.begin(), files_.end(),
                              [&file](const Entry& entry) { return entry.file == file; }),
               files_.end());
}

bool FailedSyncs::Contains(const File& file) const {
  return std::any_of(files_.begin(), files_.end(),
                     [&file](const Entry& entry) { return entry.file == file; });
}

bool FailedSyncs::ExchangeTold(const File& file) {
  for (Entry& entry : files_) {
    if (entry.file == file) return std::exchange(entry.isTold, true);
  }
  return false;
}

}  // namespace vex2
