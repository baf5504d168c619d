#include "vex2/container/TagFactory.h"

#include <array>

#include "vex2/container/CBlockValueComp.h"
#include "vex2/container/CByteValueComp.h"
#include "vex2/container/CContainerComp.h"
#include "vex2/container/CFloatValueComp.h"
#include "vex2/container/CLongValueComp.h"
#include "vex2/container/CShortValueComp.h"
#include "vex2/container/CSkippedComp.h"
#include "vex2/container/CSpectrumChannelComp.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/run/AcquisitionDataComp.h"
#include "vex2/run/CGlobalComp.h"
#include "vex2/run/ThermocycleProgramComp.h"
#include "vex2/setup/CCalibrationComp.h"
#include "vex2/setup/CColorComp.h"
#include "vex2/setup/CDetectorExtensionComp.h"
#include "vex2/setup/CDetectorListComp.h"
#include "vex2/setup/CPlateSetupComp.h"
#include "vex2/setup/CRequiredDyesComp.h"
#include "vex2/study/CMultiPlateComp.h"
#include "vex2/study/CRQPlateComp.h"

using vex2::Kind;

namespace {

using Creator = std::unique_ptr<CComponent> (*)(std::string_view tag);

// Creates a component of a class that several tags share.
template <typename Component>
std::unique_ptr<CComponent> tagged(std::string_view tag) {
  return std::make_unique<Component>(tag);
}

// Creates a component of a class that serves a single tag.
template <typename Component>
std::unique_ptr<CComponent> own(std::string_view /*tag*/) {
  return std::make_unique<Component>();
}

// The creator for a body layout whose tags share a class; null for the other layouts, whose tags
// have classes of their own or none.
constexpr Creator creatorFor(vex2::BodyLayout layout) {
  switch (layout) {
    case vex2::BodyLayout::kByte:
      return tagged<CByteValueComp>;
    case vex2::BodyLayout::kShort:
      return tagged<CShortValueComp>;
    case vex2::BodyLayout::kLong:
      return tagged<CLongValueComp>;
    case vex2::BodyLayout::kFloat:
      return tagged<CFloatValueComp>;
    case vex2::BodyLayout::kText:
      return tagged<CBlockValueComp>;
    case vex2::BodyLayout::kList:
      return tagged<CContainerComp>;
    case vex2::BodyLayout::kData:
      return tagged<AcquisitionDataComp>;
    default:
      return nullptr;
  }
}

struct OwnClass {
  Kind kind;
  Creator creator;
};

constexpr auto kOwnClasses = std::to_array<OwnClass>({
    {Kind::kGlobal, own<CGlobalComp>},
    {Kind::kPureDye, own<CPureDyeComp>},
    {Kind::kBackground, own<CBackgroundComp>},
    {Kind::kProgram, own<ThermocycleProgramComp>},
    {Kind::kSpectrumChannel, own<CSpectrumChannelComp>},
    {Kind::kPlateSetup, own<CPlateSetupComp>},
    {Kind::kCell, own<CCellComp>},
    {Kind::kCalibration, own<CCalibrationComp>},
    {Kind::kDetectorList, own<CDetectorListComp>},
    {Kind::kDetector, own<CDetectorExtensionComp>},
    {Kind::kColor, own<CColorComp>},
    {Kind::kRequiredDyes, own<CRequiredDyesComp>},
    {Kind::kPlates, own<CMultiPlateComp>},
    {Kind::kPlate, own<CRQPlateComp>},
});

constexpr auto makeCreators() {
  std::array<Creator, vex2::kTagRowCount> creators{};
  for (const vex2::RecordKind& kind : vex2::kRecordKinds) {
    creators[static_cast<std::size_t>(kind.kind)] = creatorFor(kind.layout);
  }
  for (const OwnClass& each : kOwnClasses) {
    creators[static_cast<std::size_t>(each.kind)] = each.creator;
  }
  return creators;
}

constexpr auto kCreators = makeCreators();

// "MDPW" never had a class: readers skip such records.
static_assert(kCreators[static_cast<std::size_t>(Kind::kMaxDyesPerWell)] == nullptr);

}  // namespace

int CreateComponent(std::string_view tag, std::unique_ptr<CComponent>& out) {
  const int row = vex2::FindTagIndex(tag);
  const Creator creator = row >= 0 ? kCreators[static_cast<std::size_t>(row)] : nullptr;
  if (creator == nullptr) {
    out = std::make_unique<CSkippedComp>();
    return 0;
  }
  out = creator(tag);
  return 1;
}

int CloneComponent(const CComponent& source, std::unique_ptr<CComponent>& target) {
  target.reset();
  const int known = CreateComponent(source.GetTag(), target);
  if (known == 1) target->Assign(source);
  return known;
}

namespace vex2 {

bool CreateNextComponent(CFile& file, std::unique_ptr<CComponent>& out) {
  const auto bytes = file.Peek(kTagLength);
  if (bytes.size() < kTagLength) {
    file.Seek(static_cast<std::int64_t>(bytes.size()), CFile::current);
    return false;
  }
  CreateComponent({reinterpret_cast<const char*>(bytes.data()), kTagLength}, out);
  return true;
}

}  // namespace vex2
