#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "lab/model/DocumentOverview.h"
#include "lab/text/TextForm.h"

namespace vex2::lab {

/// A document, or a plate of it, as a person reads it. `whole` tells where to read a value of which
/// only the begin fits on a screen: "'vex get' prints it".
std::string OverviewText(const DocumentOverview& overview, const TextForm& form,
                         std::string_view whole = {});

/// Many documents, a line for each.
class OverviewListing {
 public:
  explicit OverviewListing(const TextForm& form) : form_(form) {}

  void Add(const DocumentOverview& overview);
  /// Empty when there is none.
  std::string Text() const;

 private:
  const TextForm& form_;
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace vex2::lab
