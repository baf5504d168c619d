#include "lab/model/Codes.h"

#include <array>

#include "lab/Text.h"
#include "vex2/format/HeaderLayout.h"

namespace vex2::lab {

namespace {

struct Code {
  CodeField field;
  std::string_view code;
  std::string_view meaning;
};

// Plate types are not in this table: their meaning is their number of wells.
constexpr auto kCodes = std::to_array<Code>({
    {CodeField::kAssay, Assay::kBackground.code, "background"},
    {CodeField::kAssay, Assay::kPureSpectra.code, "spectra of pure dyes"},
    {CodeField::kAssay, Assay::kAbsolute.code, "absolute quantification"},
    {CodeField::kAssay, Assay::kRelativePlate.code, "relative quantification"},
    {CodeField::kAssay, Assay::kRelativeStudy.code, "relative quantification study"},
    {CodeField::kAssay, Assay::kAllelic.code, "plate read"},
    {CodeField::kAssay, Assay::kPlusMinus.code, "plate read"},
    {CodeField::kKind, KindMarker::kKestor, "a document of the second instrument kind"},
    {CodeField::kKind, KindMarker::kBlueLight, "a blue-light special document"},
    {CodeField::kStatus, RunStatus::kNotStarted, "no acquisition yet"},
    {CodeField::kStatus, RunStatus::kInProgress, "acquisition in progress"},
    {CodeField::kStatus, RunStatus::kDone, "acquisition finished"},
});

std::string filledUp(std::string_view code) {
  std::string whole(code);
  if (whole.size() < kCodeLength) whole.resize(kCodeLength, ' ');
  return whole;
}

}  // namespace

std::string CodeMeaning(CodeField field, std::string_view code) {
  if (field == CodeField::kPlateType) {
    const auto wells = WellsOfPlateType(filledUp(code));
    return wells != 0 ? Counted(wells, "well") : "";
  }
  // The code may lack its trailing spaces.
  const std::string whole = filledUp(code);
  for (const Code& known : kCodes) {
    if (known.field == field && known.code == whole) return std::string(known.meaning);
  }
  return {};
}

}  // namespace vex2::lab
