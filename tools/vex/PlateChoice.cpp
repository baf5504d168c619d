#include "tools/vex/PlateChoice.h"

#include <algorithm>

#include "tools/vex/Errors.h"
#include "tools/vex/Terminal.h"
#include "tools/vex/Text.h"
#include "vex2/study/CMultiPlateComp.h"
#include "vex2/study/CRQPlateComp.h"

namespace vex2::tool {

namespace {

constexpr std::size_t kMostNamesInErrors = 5;

const CMultiPlateComp* platesIn(const Vex2FileManager& document) {
  for (int index = 0; index < document.GetAllComponentCount(); ++index) {
    const auto* plates = dynamic_cast<const CMultiPlateComp*>(document.GetComponent(index));
    if (plates != nullptr) return plates;
  }
  return nullptr;
}

std::string nameList(const std::vector<Plate>& plates) {
  std::string names;
  for (std::size_t i = 0; i < plates.size() && i < kMostNamesInErrors; ++i) {
    names += (i > 0 ? ", '" : "'") + ToUtf8(plates[i].name) + "'";
  }
  return names + (plates.size() > kMostNamesInErrors ? " and more" : "");
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
  app.add_option("--plate", name_, "The plate of a study; all plates if none is named")
      ->type_name("NAME");
}

bool PlateChoice::IsAll(const Document& document) const {
  return name_.empty() && IsStudy(document.Content());
}

std::vector<Plate> PlateChoice::Of(Document& document) const {
  const bool isStudy = IsStudy(document.Content());
  if (!isStudy && !name_.empty()) {
    throw Error(ExitCode::kUsage, document.Path(), "it is no study, so --plate has no meaning");
  }
  if (!isStudy) return {{"", &document.Content()}};
  std::vector<Plate> plates = PlatesOf(document.Content());
  if (name_.empty()) return plates;
  const auto wanted = ToLatin1(name_);
  const auto found = std::find_if(plates.begin(), plates.end(), [&](const Plate& plate) {
    return wanted && plate.name == *wanted;
  });
  if (found != plates.end()) return {*found};
  throw Error(ExitCode::kUsage, document.Path(),
              "it has no plate '" + name_ + "'" +
                  (plates.empty() ? ", nor any other" : "; its plates are " + nameList(plates)));
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
