#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "vex2/framework/Export.h"

namespace vex2::lab {

/// What can be repaired in place without touching what the document holds: 32-bit words that are
/// lengths and offsets, and the uncommitted bytes at the end.
struct RepairPlan {
  /// A word of the document that a repair overwrites.
  struct Patch {
    std::uint64_t offset = 0;  ///< of a 32-bit word, in bytes from the start of the file
    std::uint32_t before = 0;  ///< the word in the document
    std::uint32_t after = 0;   ///< the word after the repair
    std::string what;          ///< for people

    /// Whether all fields are equal.
    friend bool operator==(const Patch&, const Patch&) = default;
  };

  std::uint64_t size = 0;                ///< the document's, as it is
  std::vector<Patch> patches;            ///< the words to overwrite, by offset
  std::optional<std::uint64_t> newSize;  ///< where the file is to end; nothing to cut off otherwise
  std::string cut;                       ///< what is cut off, for people

  /// Whether there is nothing to repair.
  bool IsEmpty() const { return patches.empty() && !newSize; }
  /// Whether all fields are equal.
  friend bool operator==(const RepairPlan&, const RepairPlan&) = default;
};

/// How a document is repaired.
struct RepairOptions {
  bool dryRun = false;  ///< only say what would be repaired
  /// Called with the plan before anything is changed; false leaves the document as it is.
  std::function<bool(const RepairPlan& plan)> confirm = {};
};

/// What a repair found, and what it did.
struct RepairReport {
  RepairPlan plan;               ///< empty where nothing can be repaired
  bool isRepaired = false;       ///< the plan was carried out
  std::filesystem::path backup;  ///< the document as it was; empty unless `isRepaired`
};

/// Repairs the document at `path`, after a copy was put beside it: "PATH.backup", or with a number
/// after that if it exists already. What is wrong and cannot be repaired stays; `Check` finds it.
///
/// Throws `Error` when the document cannot be read or is none, when it is being recorded or
/// changed, when another program changes it meanwhile, or when the system refuses. The document is
/// then as it was; it is the old or the new one at every moment.
VEX2_API RepairReport Repair(const std::filesystem::path& path, const RepairOptions& options = {});

}  // namespace vex2::lab
