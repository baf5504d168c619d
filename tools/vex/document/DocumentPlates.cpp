#include "tools/vex/document/DocumentPlates.h"

#include <algorithm>

#include "tools/vex/Errors.h"
#include "tools/vex/Options.h"
#include "tools/vex/text/Terminal.h"
#include "tools/vex/text/Text.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::tool {

void PlateOption::AddTo(Options& options) {
  options.Add("--plate", name_, "Of a study: this plate alone; all if none").Show("NAME");
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
    throw Error(ExitCode::kUsage, document.Path(),
                "it is a study: name the plate to change with --plate");
  }
  return Choose(document).front();
}

std::string PlateTitle(const Document::Plate& plate) {
  const Terminal& terminal = Terminal::Out();
  constexpr std::size_t kLongestName = 2000;  // a longer one fills the screen with nothing else
  const std::string title = plate.isEmbedded ? "plate " + Shown(plate.name, kLongestName) : "study";
  return terminal.Styled(title, Terminal::Style::kBold);
}

std::size_t PlateOption::FindIndex(const Document& document) const {
  const Document::Plate* plate = FindPlate(document, name_.value_or(""));
  if (plate == nullptr) RefusePlateName(document, name_.value_or(""));
  return static_cast<std::size_t>(plate - document.Plates().data());
}

const Document::Plate* FindPlate(const Document& document, std::string_view name) {
  const auto& plates = document.Plates();
  // A name that is no Latin-1 stands in the document as the bytes that its file's name had.
  const auto found = std::find_if(plates.begin(), plates.end(), [&](const Document::Plate& plate) {
    return ToUtf8(plate.name) == name || plate.name == name;
  });
  return found != plates.end() ? &*found : nullptr;
}

void RefusePlateName(const Document& document, std::string_view name) {
  constexpr std::size_t kMost = 8;
  document.RequireWhole("");
  const auto& plates = document.Plates();
  std::string what = "it has no plate '" + std::string(name) + "'";
  if (plates.empty()) what += document.IsStudy() ? ", nor any other" : ", for it is no study";
  for (std::size_t i = 0; i < plates.size() && i < kMost; ++i) {
    what += (i == 0 ? "; its plates are '" : "', '") + ToUtf8(plates[i].name);
  }
  if (!plates.empty()) what += plates.size() > kMost ? "' and others" : "'";
  throw Error(ErrorCode::kNoSuchPlate, document.Path(), what);
}

const AcquisitionDataComp* FindBlock(const Document::Plate& plate, std::string_view tag) {
  for (int i = 0; i < plate.content->GetAllComponentCount(); ++i) {
    const CComponent* component = plate.content->GetComponent(i);
    if (component->GetTag() == tag) return dynamic_cast<const AcquisitionDataComp*>(component);
  }
  return nullptr;
}

}  // namespace vex2::tool
