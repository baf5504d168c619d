#pragma once

#include <string>
#include <vector>

#include "lab/model/DocumentOverview.h"
#include "tools/vex/Lab.h"

namespace vex2::tool {

/// Prints a document, or a plate of it, on a person's screen.
void PrintOverview(const DocumentOverview& overview);

/// Many documents, a line for each.
class OverviewListing {
 public:
  void Add(const DocumentOverview& overview);
  void Print() const;

 private:
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace vex2::tool
