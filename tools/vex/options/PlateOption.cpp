#include "tools/vex/options/PlateOption.h"

#include "lab/model/DataBlock.h"
#include "tools/vex/Terminal.h"
#include "tools/vex/options/Options.h"

namespace vex2::tool {

void PlateOption::AddTo(Options& options) {
  options.Add("--plate", name_, "Only this plate of a study; all plates if not given").Show("NAME");
}

std::vector<Document::Plate> PlateOption::Choose(const Document& document) const {
  if (name_) {
    return {document.Plates()[FindIndex(document)]};
  }
  std::vector<Document::Plate> plates = {document.Itself()};
  if (document.IsStudy()) {
    plates.insert(plates.end(), document.Plates().begin(), document.Plates().end());
  }
  return plates;
}

std::vector<Document::Plate> PlateOption::ChoosePlates(const Document& document) const {
  return IsAll(document) ? document.Plates() : Choose(document);
}

Document::Plate PlateOption::One(const Document& document) const {
  if (IsAll(document)) {
    throw Error(ErrorCode::kUsage, document.Path(),
                "it is a study: name the plate to change with --plate");
  }
  return Choose(document).front();
}

std::string PlateTitle(const Document::Plate& plate) {
  const Terminal& terminal = Terminal::Out();
  constexpr std::size_t kLongestName = 2000;  // a longer name would fill the screen
  const std::string title =
      plate.isEmbedded ? "plate " + terminal.Shown(plate.name, kLongestName) : "study";
  return terminal.Styled(title, Terminal::Style::kBold);
}

std::size_t PlateOption::FindIndex(const Document& document) const {
  const Document::Plate* plate = FindPlate(document, name_.value_or(""));
  if (plate == nullptr) RefusePlateName(document, name_.value_or(""));
  return static_cast<std::size_t>(plate - document.Plates().data());
}

void AddBlockOption(Options& options, std::string& tag) {
  tag = TagOf(Kind::kRawData);
  options.Add("--block", tag, "Data block; RAWa by default")
      .AllowOnly({kDataBlockTags.begin(), kDataBlockTags.end()})
      .Show("TAG");
}

}  // namespace vex2::tool
