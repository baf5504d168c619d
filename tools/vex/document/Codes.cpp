#include "tools/vex/document/Codes.h"

#include <array>

#include "tools/vex/Errors.h"
#include "tools/vex/document/HeaderFields.h"
#include "tools/vex/text/Text.h"

namespace vex2::tool {

namespace {

struct Code {
  CodeField field;
  std::string_view code;
  std::string_view meaning;
};

// The types of plates are not here: `WellsOfType` knows them.
constexpr auto kCodes = std::to_array<Code>({
    {CodeField::kAssay, "BGND", "background"},
    {CodeField::kAssay, "PDye", "spectra of pure dyes"},
    {CodeField::kAssay, "AbsQ", "absolute quantification"},
    {CodeField::kAssay, "RelQ", "relative quantification"},
    {CodeField::kAssay, "RQSt", "relative quantification study"},
    {CodeField::kAssay, "AllD", "plate read"},
    {CodeField::kAssay, "+/-", "plate read"},
    {CodeField::kKind, "Kest", "a document of the second instrument kind"},
    {CodeField::kKind, "Blue", "a blue-light special document"},
    {CodeField::kStatus, "ZERO", "no acquisition yet"},
    {CodeField::kStatus, "PROG", "acquisition in progress"},
    {CodeField::kStatus, "DONE", "acquisition finished"},
});

constexpr std::size_t kCodeLength = 4;

}  // namespace

std::string CodeMeaning(CodeField field, std::string_view code) {
  if (field == CodeField::kPlateType) {
    const auto wells = WellsOfType(PadRight(std::string(code), kCodeLength));
    return wells ? Counted(*wells, "well") : "";
  }
  const std::string_view bare = code.substr(0, code.find_last_not_of(' ') + 1);
  for (const Code& known : kCodes) {
    if (known.field == field && known.code == bare) return std::string(known.meaning);
  }
  return {};
}

std::string ExplainedCode(CodeField field, std::string_view code) {
  const std::string meaning = CodeMeaning(field, code);
  return Printable(code) + (meaning.empty() ? "" : ": " + meaning);
}

}  // namespace vex2::tool
