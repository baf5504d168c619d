#pragma once

#include "lab/model/Saving.h"
#include "tools/vex/Lab.h"

namespace vex2::tool {

class Options;

/// The options of every command that saves a document it has read. What a save elsewhere leaves out
/// is told on standard error.
class Rewriting {
 public:
  Rewriting();

  /// Adds the options that say what may be lost or changed.
  void AddOptions(Options& options);

  const SaveRules& Rules() const { return rules_; }

 private:
  SaveRules rules_;
};

}  // namespace vex2::tool
