#pragma once

#include <cstdint>
#include <utility>
#include <vector>

namespace vex2 {

/// The files to which the disk failed to store a change. The system may have dropped the bytes that
/// it could not store, and a later sync would not report this. So nothing more is written to such a
/// file until it is replaced as a whole.
class FailedSyncs {
 public:
  /// The device and the number of a file.
  using File = std::pair<std::uint64_t, std::uint64_t>;

  /// Makes room for one more file, so that `Add` cannot run out of memory. Throws `std::bad_alloc`.
  void Reserve() { files_.reserve(files_.size() + 1); }
  /// Adds a file. Does nothing if the file is in the list.
  void Add(const File& file);
  void Remove(const File& file) noexcept;
  bool Contains(const File& file) const;
  /// Notes that the user was informed about the file. Returns whether that had been noted before.
  bool ExchangeTold(const File& file);

 private:
  struct Entry {
    File file;
    bool isTold;
  };

  std::vector<Entry> files_;
};

}  // namespace vex2
