#include "lab/model/DocumentPlates.h"

#include <fmt/core.h>

#include <algorithm>

#include "lab/Error.h"
#include "lab/Text.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::lab {

namespace {

std::string whyNoPlate(const Document& document, std::string_view name) {
  constexpr std::size_t kMost = 8;
  const auto& plates = document.Plates();
  if (!plates.empty()) {
    std::string names;
    for (std::size_t i = 0; i < plates.size() && i < kMost; ++i) {
      names += fmt::format("{}'{}'", i == 0 ? "" : ", ", ToUtf8(plates[i].name));
    }
    if (plates.size() > kMost) names += " and others";
    return fmt::format("it has no plate '{}'; its plates are {}", name, names);
  }
  return document.IsStudy() ? fmt::format("it has no plate '{}', nor any other", name)
                            : fmt::format("it has no plate '{}': it is not a study", name);
}

}  // namespace

bool IsPlateCalled(std::string_view stored, std::string_view name) {
  // The name of a plate comes from its file. If the file's name was not Latin-1, the document
  // stores its bytes unchanged.
  return ToUtf8(stored) == name || stored == name;
}

const Document::Plate* FindPlate(const Document& document, std::string_view name) {
  const auto& plates = document.Plates();
  const auto found = std::find_if(plates.begin(), plates.end(), [&](const Document::Plate& plate) {
    return IsPlateCalled(plate.name, name);
  });
  return found != plates.end() ? &*found : nullptr;
}

void RefusePlateName(const Document& document, std::string_view name) {
  document.RequireWhole("");
  throw Error(ErrorCode::kNoSuchPlate, document.Path(), whyNoPlate(document, name));
}

const AcquisitionDataComp* FindBlock(const Document::Plate& plate, std::string_view tag) {
  for (int i = 0; i < plate.content->GetAllComponentCount(); ++i) {
    const CComponent* component = plate.content->GetComponent(i);
    if (component->GetTag() == tag) return dynamic_cast<const AcquisitionDataComp*>(component);
  }
  return nullptr;
}

}  // namespace vex2::lab
