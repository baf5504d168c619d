#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "lab/model/DocumentOverview.h"
#include "lab/text/TextForm.h"

namespace vex2::lab {

/// A summary of a document, or of a plate in it, as text for users. `whole` tells users how to
/// print a value that does not fit on a screen: "'vex get' prints it".
std::string OverviewText(const DocumentOverview& overview, const TextForm& form,
                         std::string_view whole = {});

/// A table of documents, one line for each.
class OverviewListing {
 public:
  explicit OverviewListing(const TextForm& form) : form_(form) {}

  void Add(const DocumentOverview& overview);
  /// The table; empty if there are no documents.
  std::string Text() const;

 private:
  const TextForm& form_;
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace vex2::lab
