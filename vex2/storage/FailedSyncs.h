#pragma once

#include <cstdint>
#include <utility>
#include <vector>

namespace vex2 {

/// The files of which the disk failed to store a change. The system may have dropped what it could
/// not store, and a later sync would not report it, so nothing more is written into such a file
/// until it is replaced as a whole.
class FailedSyncs {
 public:
  /// Device and number of a file.
  using File = std::pair<std::uint64_t, std::uint64_t>;

  /// Makes room for one more file, so that `Add` cannot run out of memory. Throws `std::bad_alloc`.
  void Reserve() { files_.reserve(files_.size() + 1); }
  /// Does nothing for a file that is in the list.
  void Add(const File& file);
  void Remove(const File& file) noexcept;
  bool Contains(const File& file) const;
  /// Whether the user was told about the file before; from now on this returns true.
  bool ExchangeTold(const File& file);

 private:
  struct Entry {
    File file;
    bool isTold;
  };

  std::vector<Entry> files_;
};

}  // namespace vex2
