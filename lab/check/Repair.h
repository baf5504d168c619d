#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vex2::lab {

/// What can be repaired of a document in place without touching what it holds: words that lengths
/// and positions are, and the bytes behind what counts.
struct RepairPlan {
  struct Patch {
    std::uint64_t offset = 0;  ///< of a 32-bit word
    std::uint32_t before = 0;
    std::uint32_t after = 0;
    std::string what;  ///< for people

    friend bool operator==(const Patch&, const Patch&) = default;
  };

  std::uint64_t size = 0;  ///< the document's, as it is
  std::vector<Patch> patches;
  std::optional<std::uint64_t> newSize;  ///< where the file is to end; nothing to cut off otherwise
  std::string cut;                       ///< what is cut off, for people

  bool IsEmpty() const { return patches.empty() && !newSize; }
  friend bool operator==(const RepairPlan&, const RepairPlan&) = default;
};

/// What there is to repair of the document at `path`. Throws an error when it cannot be read or is
/// none.
RepairPlan PlanRepair(const std::string& path);

/// Copies the document at `path` to a file of its own beside it, durably: "PATH.backup", or with a
/// number behind it where there is one already. Returns its path. Throws an error, and then there
/// is no such file.
std::string BackUp(const std::string& path);

/// Puts what `plan` makes of `backup` in the place of the document at `path`. Throws an error, and
/// then the document is as it was; it is the old or the new one at every moment.
void ApplyRepair(const RepairPlan& plan, const std::string& backup, const std::string& path);

}  // namespace vex2::lab
