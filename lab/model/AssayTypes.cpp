#include "lab/model/AssayTypes.h"

#include <algorithm>
#include <array>

#include "lab/model/Codes.h"
#include "vex2/format/HeaderLayout.h"

namespace vex2::lab {

namespace {

// The code of studies is not in this list: a plate with that code would be read as a study.
constexpr std::array<std::string_view, 6> kPlateCodes = {
    Assay::kAbsolute.code,  Assay::kRelativePlate.code, Assay::kAllelic.code,
    Assay::kPlusMinus.code, Assay::kBackground.code,    Assay::kPureSpectra.code};

std::string_view withoutBlanks(std::string_view text) {
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

}  // namespace

std::optional<std::string> PlateAssayCode(std::string_view text) {
  const auto* const found = std::find_if(
      kPlateCodes.begin(), kPlateCodes.end(),
      [&](std::string_view code) { return withoutBlanks(code) == withoutBlanks(text); });
  if (found == kPlateCodes.end()) return std::nullopt;
  return std::string(*found);
}

std::string PlateAssayList() {
  std::string list;
  for (const std::string_view code : kPlateCodes) {
    if (!list.empty()) list += ", ";
    list.append(withoutBlanks(code)).append(" (");
    list.append(CodeMeaning(CodeField::kAssay, code)).append(")");
  }
  return list;
}

std::string PlateAssayTable() {
  std::string table = "Assays:";
  for (const std::string_view code : kPlateCodes) {
    table.append("\n  ").append(code).append("  ").append(CodeMeaning(CodeField::kAssay, code));
  }
  return table;
}

}  // namespace vex2::lab
