#include "vex2/setup/CDetectorListComp.h"

#include "vex2/format/RecordKinds.h"
#include "vex2/framework/Host.h"
#include "vex2/setup/CDetectorExtensionComp.h"
#include "vex2/setup/Parts.h"

using vex2::Kind;
using vex2::TagOf;

namespace {

std::string_view upToZero(std::string_view text) {
  return text.substr(0, text.find('\0'));
}

const CDetectorExtensionComp* detectorOf(const CComponent* child) {
  return child != nullptr ? vex2::PartAs<CDetectorExtensionComp>(*child) : nullptr;
}

}  // namespace

CDetectorListComp::CDetectorListComp() : CContainerComp(TagOf(Kind::kDetectorList)) {}

void CDetectorListComp::Add(const Vex2Detector& detector, bool replacing) {
  if (detector.name.IsEmpty()) {
    vex2::GetHost()->ShowMessage(
        "Cannot add a Detector Component if detector name is not specified");
    return;
  }
  auto added = std::make_unique<CDetectorExtensionComp>(detector);
  const int old = replacing ? Find(detector.name) : -1;
  if (!ReplaceChild(old, std::move(added))) throw std::length_error("there are too many detectors");
}

int CDetectorListComp::Find(const CString& name) const {
  if (name.IsEmpty()) return -1;
  const std::string_view wanted = upToZero(name.View());
  for (int index = 0; index < GetChildCount(); ++index) {
    const CDetectorExtensionComp* detector = detectorOf(GetChild(index));
    const std::string_view found = detector != nullptr ? detector->GetName() : std::string_view();
    if (upToZero(found) == wanted) return index;
  }
  return -1;
}

void CDetectorListComp::CopyTo(int index, Vex2Detector& detector) const {
  const CDetectorExtensionComp* found = detectorOf(GetChild(index));
  if (found != nullptr) {
    found->CopyTo(detector);
  } else {
    detector.Clear();
  }
}
