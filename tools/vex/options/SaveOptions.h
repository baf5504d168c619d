#pragma once

#include "lab/model/Saving.h"
#include "tools/vex/Lab.h"

namespace vex2::tool {

class Options;

/// The options of every command that reads a document and saves it. If a save to another file
/// leaves something out, this is reported on standard error.
class SaveOptions {
 public:
  SaveOptions();

  /// Adds the options that say what may be lost or changed.
  void AddOptions(Options& options);

  const SaveRules& Rules() const { return rules_; }

 private:
  SaveRules rules_;
};

}  // namespace vex2::tool
