#include "tools/vex/PlateChoice.h"

#include "tools/vex/Errors.h"
#include "tools/vex/Terminal.h"
#include "tools/vex/Text.h"
#include "vex2/study/CMultiPlateComp.h"
#include "vex2/study/CRQPlateComp.h"

namespace vex2::tool {

namespace {

const CMultiPlateComp* platesIn(const Vex2FileManager& document) {
  for (int index = 0; index < document.GetAllComponentCount(); ++index) {
    const auto* plates = dynamic_cast<const CMultiPlateComp*>(document.GetComponent(index));
    if (plates != nullptr) return plates;
  }
  return nullptr;
}

}  // namespace

bool IsStudy(const Vex2FileManager& document) {
  return platesIn(document) != nullptr;
}

std::vector<Plate> PlatesOf(const Vex2FileManager& study) {
  std::vector<Plate> plates;
  const CMultiPlateComp* list = platesIn(study);
  for (int index = 0; list != nullptr && index < list->GetChildCount(); ++index) {
    const CRQPlateComp* plate = list->GetPlateAt(index);
    if (plate == nullptr || plate->GetPlate() == nullptr) continue;
    plates.push_back({std::string(plate->GetPlateName().View()), plate->GetPlate()});
  }
  return plates;
}

void PlateChoice::AddOption(CLI::App& app) {
  option_.AddTo(app);
}

bool PlateChoice::IsAll(const Document& document) const {
  return !option_.IsGiven() && IsStudy(document.Content());
}

std::vector<Plate> PlateChoice::Of(Document& document) const {
  std::vector<Plate> plates = PlatesOf(document.Content());
  if (option_.IsGiven()) return {plates.at(option_.FindIndex(document))};
  if (!IsStudy(document.Content())) return {{"", &document.Content()}};
  return plates;
}

Plate PlateChoice::One(Document& document) const {
  if (IsAll(document)) {
    throw Error(ExitCode::kUsage, document.Path(),
                "it is a study: name the plate to change with --plate");
  }
  return Of(document).front();
}

std::string PlateChoice::shownName(const Plate& plate) {
  return ToUtf8(plate.name);
}

std::string PlateChoice::title(const Plate& plate) {
  return Terminal::Out().Styled("plate " + Shown(plate.name, Terminal::Out().TextWidth()),
                                Terminal::Style::kBold);
}

}  // namespace vex2::tool
