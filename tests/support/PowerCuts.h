#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "tests/support/MemoryDisk.h"

namespace vex2::test {

/// The contents that a file may have on the disk after a power cut, at every point of a log.
/// Everything that was synced is on the disk. Of the rest, any part may be: each 512-byte sector of
/// a write, each change of the length, each name. A sector after the synced length may also hold
/// zeros or random bytes, and the length may end within a sector. Assumptions: a sector before the
/// synced length is written completely or not at all, and a sync that returned is effective.
class PowerCuts {
 public:
  /// Receives the content of the file, nothing if there is no file, and the number of operations of
  /// the test that had returned before the power cut.
  using Visitor = std::function<void(const std::optional<Bytes>& content, int returned)>;

  PowerCuts(const std::vector<DiskStep>& log, std::string path)
      : log_(log), path_(std::move(path)) {}

  /// If a point has more states than this for one length, visits this many random ones.
  void SetMostStates(std::uint64_t count) { mostStates_ = count; }
  /// Makes the disk ignore the barrier with the index `number` (from 0) of each operation,
  /// beginning with operation `operation`. Syncs of the folder count as barriers.
  void IgnoreBarrier(int number, int operation) {
    ignored_ = number;
    ignoredFrom_ = operation;
  }

  /// Visits all states of all points, beginning with the empty disk.
  void Visit(const Visitor& visitor);

  std::uint64_t PointCount() const { return points_; }
  std::uint64_t StateCount() const { return states_; }

 private:
  static constexpr std::uint64_t kSector = 512;

  /// A part of a write that reaches the disk completely or not at all.
  struct Piece {
    std::uint64_t offset;
    std::uint64_t count;
    const std::uint8_t* bytes;
    bool isNew;  ///< after the synced length
  };

  void apply(const DiskStep& step);
  bool isIgnored();
  void settle(int node);
  void visitPoint();
  void visitFile(int node);
  void visitLength(const Bytes& synced, const std::vector<Piece>& pieces, std::uint64_t length);
  std::vector<Piece> piecesOf(int node) const;
  std::set<std::uint64_t> lengthsOf(int node) const;
  void put(Bytes& content, const Piece& piece, unsigned outcome);
  void tell(const std::optional<Bytes>& content);

  const std::vector<DiskStep>& log_;
  std::string path_;
  std::uint64_t mostStates_ = 1000;
  int ignored_ = -1;
  int ignoredFrom_ = 0;

  std::map<int, Bytes> synced_;
  std::map<int, std::vector<const DiskStep*>> unsynced_;
  int syncedName_ = 0;
  std::vector<int> unsyncedNames_;
  int returned_ = 0;
  int barriers_ = 0;  // since the last operation returned
  const Visitor* visitor_ = nullptr;
  std::mt19937_64 random_{1};
  std::uint64_t points_ = 0;
  std::uint64_t states_ = 0;
};

}  // namespace vex2::test
