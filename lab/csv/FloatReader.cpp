#include "lab/csv/FloatReader.h"

#include <fmt/core.h>

#include "lab/Text.h"
#include "lab/model/Value.h"

namespace vex2::lab {

float FloatReader::Keep(const CsvRow& row, std::string_view what, const std::string& text,
                        double number) {
  // Convert the text directly: going through a double would round twice. A number that is too small
  // for a float becomes zero.
  const float kept = NumberIn<float>(text).value_or(static_cast<float>(number));
  const double change = ChangeOf(text, kept);
  if (change == 0) return kept;
  if (isExact_) {
    row.Refuse(fmt::format("the {} {} would be rounded to {}", what, text, ValueText(kept)),
               ErrorRemedy::kAllowRounding);
  }
  rounded_.Add(change);
  return kept;
}

}  // namespace vex2::lab
