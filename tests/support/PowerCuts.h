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

/// What a disk may hold of a file after the power went, at every point of a log.
///
/// All that was synced is there. Of what was not, any part may be: each 512-byte sector of a write
/// on its own, each step that changed the length, each name. A sector behind the length that was
/// synced may also be zeros or garbage, and the length may end between sectors. What is assumed of
/// the disk: a sector that lies before that length is written as a whole or not at all, and a sync
/// that returned holds.
class PowerCuts {
 public:
  /// Gets what the file holds, nothing where there is no file, and how many operations of the test
  /// had returned before the power went.
  using Visitor = std::function<void(const std::optional<Bytes>& content, int returned)>;

  PowerCuts(const std::vector<DiskStep>& log, std::string path)
      : log_(log), path_(std::move(path)) {}

  /// Where a point leaves more states for one length than this, so many are drawn by lot.
  void SetMostStates(std::uint64_t count) { mostStates_ = count; }
  /// Lets the disk ignore the barrier that is number `number`, from 0, in each operation from
  /// number `operation` on, syncs of the folder counted in.
  void IgnoreBarrier(int number, int operation) {
    ignored_ = number;
    ignoredFrom_ = operation;
  }

  /// Visits all states of all points, from the empty disk on.
  void Visit(const Visitor& visitor);

  std::uint64_t PointCount() const { return points_; }
  std::uint64_t StateCount() const { return states_; }

 private:
  static constexpr std::uint64_t kSector = 512;

  /// A part of a write that gets to the disk as a whole or not.
  struct Piece {
    std::uint64_t offset;
    std::uint64_t count;
    const std::uint8_t* bytes;
    bool isNew;  ///< behind the length that was synced
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
  int barriers_ = 0;  // since an operation returned
  const Visitor* visitor_ = nullptr;
  std::mt19937_64 random_{1};
  std::uint64_t points_ = 0;
  std::uint64_t states_ = 0;
};

}  // namespace vex2::test
