#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "vex2/framework/Export.h"

namespace vex2::lab {

/// What a repair changes in place: 32-bit lengths and offsets, and uncommitted bytes at the end,
/// which it cuts off. It does not change the content of the document.
struct RepairPlan {
  /// A word of the document that a repair overwrites.
  struct Patch {
    std::uint64_t offset = 0;  ///< offset of a 32-bit word, in bytes from the start of the file
    std::uint32_t before = 0;  ///< the word in the document
    std::uint32_t after = 0;   ///< the word after the repair
    std::string what;          ///< a name of the word, as a text for the user

    /// Whether all fields are equal.
    friend bool operator==(const Patch&, const Patch&) = default;
  };

  std::uint64_t size = 0;      ///< the size of the document before the repair, in bytes
  std::vector<Patch> patches;  ///< the words to overwrite, by offset
  /// The size of the file after the repair; nothing if nothing is cut off.
  std::optional<std::uint64_t> newSize;
  std::string cut;  ///< what is cut off, as a text for the user

  /// Whether there is nothing to repair.
  bool IsEmpty() const { return patches.empty() && !newSize; }
  /// Whether all fields are equal.
  friend bool operator==(const RepairPlan&, const RepairPlan&) = default;
};

/// How a document is repaired.
struct RepairOptions {
  bool dryRun = false;  ///< only report what would be repaired
  /// Called with the plan before anything is changed. If it returns false, the document stays as it
  /// is.
  std::function<bool(const RepairPlan& plan)> confirm = {};
};

/// What a repair found, and what it did.
struct RepairReport {
  RepairPlan plan;               ///< what to repair; empty if nothing can be repaired
  bool isRepaired = false;       ///< the plan was carried out
  std::filesystem::path backup;  ///< path of a copy of the old document; empty unless `isRepaired`
};

/// Repairs the document at `path`. First copies it to a backup beside it: "PATH.backup", or that
/// name with a number if it exists already. Damage that cannot be repaired remains; `Check` finds
/// it.
///
/// Throws `Error` if the document cannot be read or is not a document, if it is being recorded or
/// changed, if another program changes it during the repair, or if the system refuses. The document
/// is then unchanged. At every moment the path holds either the old document or the repaired one.
VEX2_API RepairReport Repair(const std::filesystem::path& path, const RepairOptions& options = {});

}  // namespace vex2::lab
