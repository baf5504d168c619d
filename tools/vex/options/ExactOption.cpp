#include "tools/vex/options/ExactOption.h"

#include <fmt/core.h>

#include "lab/Text.h"
#include "tools/vex/Errors.h"
#include "tools/vex/options/Options.h"

namespace vex2::tool {

void ExactOption::AddOption(Options& options) {
  options.AddFlag("--exact", isExact_, "Refuse numbers that would be rounded to 32 bits");
}

void ExactOption::Tell(const std::string& source, const RoundedNumbers& rounded,
                       std::string_view one, std::string_view many) {
  if (rounded.count == 0) return;
  PrintLine(fmt::format("{}: {}", Printable(source), RoundedText(rounded, one, many, "32 bits")));
}

std::string RoundedText(const RoundedNumbers& rounded, std::string_view one, std::string_view many,
                        std::string_view to) {
  return fmt::format("{} rounded to {}, largest change {:.2g}", Counted(rounded.count, one, many),
                     to, rounded.largestChange);
}

}  // namespace vex2::tool
