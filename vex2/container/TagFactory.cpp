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
#include "vex2/container/TagTable.h"
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

namespace {

using Creator = std::unique_ptr<CComponent> (*)(std::string_view tag);

// A component of the family: it has its tag from the table.
template <typename Component>
std::unique_ptr<CComponent> tagged(std::string_view tag) {
  return std::make_unique<Component>(tag);
}

// A component with a class of its own, which knows its tag.
template <typename Component>
std::unique_ptr<CComponent> own(std::string_view /*tag*/) {
  return std::make_unique<Component>();
}

// Who makes a row's component; null where no class stands for it.
constexpr auto makeCreators() {
  std::array<Creator, vex2::kTagRowCount> creators{};
  for (const int row : {2, 3, 7, 8, 17, 18, 25, 39, 61, 62}) {
    creators.at(static_cast<std::size_t>(row)) = tagged<CByteValueComp>;
  }
  for (const int row : {6, 9, 23, 24, 28, 32, 58, 59, 63, 76}) {
    creators.at(static_cast<std::size_t>(row)) = tagged<CShortValueComp>;
  }
  for (const int row : {1, 13, 15, 33, 54, 55, 72, 73}) {
    creators.at(static_cast<std::size_t>(row)) = tagged<CLongValueComp>;
  }
  for (const int row : {31, 38, 60, 66}) {
    creators.at(static_cast<std::size_t>(row)) = tagged<CFloatValueComp>;
  }
  for (const int row :
       {4, 5, 16, 26, 27, 36, 37, 41, 48, 49, 50, 51, 52, 56, 57, 65, 70, 71, 74, 75}) {
    creators.at(static_cast<std::size_t>(row)) = tagged<CBlockValueComp>;
  }
  for (const int row : {12, 20, 29, 30, 35}) {
    creators.at(static_cast<std::size_t>(row)) = tagged<CContainerComp>;
  }
  for (const int row : {34, 42, 43, 44, 45}) {
    creators.at(static_cast<std::size_t>(row)) = tagged<AcquisitionDataComp>;
  }
  creators[0] = own<CGlobalComp>;
  creators[10] = own<CPureDyeComp>;
  creators[11] = own<CBackgroundComp>;
  creators[14] = own<ThermocycleProgramComp>;
  creators[19] = own<CSpectrumChannelComp>;
  creators[21] = own<CPlateSetupComp>;
  creators[22] = own<CCellComp>;
  creators[40] = own<CCalibrationComp>;
  creators[46] = own<CDetectorListComp>;
  creators[47] = own<CDetectorExtensionComp>;
  creators[53] = own<CColorComp>;
  creators[64] = own<CRequiredDyesComp>;
  creators[68] = own<CMultiPlateComp>;
  creators[69] = own<CRQPlateComp>;
  return creators;
}

constexpr auto kCreators = makeCreators();

// Row 67, "MDPW", never had a class: documents that hold one are read as if they did not.
static_assert(kCreators[67] == nullptr);

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
