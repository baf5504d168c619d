#include "lab/model/DocumentPlates.h"

#include <algorithm>

#include "lab/Error.h"
#include "lab/Text.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::lab {

bool IsPlateCalled(std::string_view stored, std::string_view name) {
  // A name that is no Latin-1 stands in the document as the bytes that its file's name had.
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

}  // namespace vex2::lab
