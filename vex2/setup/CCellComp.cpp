#include "vex2/setup/CCellComp.h"

#include "vex2/container/CByteValueComp.h"
#include "vex2/container/CFloatValueComp.h"
#include "vex2/container/Status.h"
#include "vex2/format/Encoding.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/setup/Parts.h"

using vex2::AddPart;
using vex2::Kind;
using vex2::kSuccess;
using vex2::PartAs;
using vex2::TagOf;

namespace {

constexpr std::uint16_t kFixedLength = 7;
constexpr std::size_t kTexts = 2;

void addText(CContainerComp& list, std::string_view tag, const char* text, std::int32_t length) {
  if (text == nullptr || text[0] == '\0' || length <= 0) return;
  AddPart<CBlockValueComp>(list, tag, static_cast<std::uint32_t>(length), text);
}

void addDetector(CContainerComp& cell, const Vex2WellDetector& detector) {
  auto list = std::make_unique<CContainerComp>(TagOf(Kind::kCellDetector));
  addText(*list, TagOf(Kind::kCellDetectorName), detector.detectorName,
          detector.detectorNameLength);
  addText(*list, TagOf(Kind::kTask), detector.task, detector.taskLength);
  AddPart<CFloatValueComp>(*list, TagOf(Kind::kQuantity), detector.quantity);
  AddPart<CByteValueComp>(*list, TagOf(Kind::kInUse),
                          static_cast<std::uint8_t>(detector.used ? 1 : 0));
  if (!cell.AddChild(std::move(list))) throw std::length_error("a well has too many detectors");
}

const char* charactersOf(const CBlockValueComp& block) {
  return reinterpret_cast<const char*>(block.GetData());
}

std::int32_t lengthOf(const CBlockValueComp& block) {
  return static_cast<std::int32_t>(block.GetLength());
}

void copyDetectorPart(const CComponent& part, Vex2WellDetector& detector) {
  const std::string_view tag = part.GetTag();
  if (const auto* block = PartAs<CBlockValueComp>(part)) {
    if (tag == TagOf(Kind::kCellDetectorName))
      detector.SetDetectorName(charactersOf(*block), lengthOf(*block));
    if (tag == TagOf(Kind::kTask)) detector.SetTask(charactersOf(*block), lengthOf(*block));
  } else if (const auto* number = PartAs<CFloatValueComp>(part)) {
    if (tag == TagOf(Kind::kQuantity)) detector.quantity = number->GetValue();
  } else if (const auto* byte = PartAs<CByteValueComp>(part)) {
    if (tag == TagOf(Kind::kInUse)) detector.used = byte->GetValue() != 0;
  }
}

void copyDetector(const CContainerComp& list, Vex2WellSetup& well) {
  auto detector = std::make_unique<Vex2WellDetector>();
  for (int index = 0; index < list.GetChildCount(); ++index) {
    copyDetectorPart(*list.GetChild(index), *detector);
  }
  well.detectors.AddTail(detector.get());
  static_cast<void>(detector.release());
}

}  // namespace

CCellComp::CCellComp() : CContainerComp(TagOf(Kind::kCell), kFixedLength) {}

CCellComp::CCellComp(const Vex2WellSetup& well) : CCellComp() {
  coord1_ = well.coord1;
  coord2_ = well.coord2;
  flag_ = well.flag ? 1 : 0;
  reserveChildren(kTexts + static_cast<std::size_t>(well.detectors.GetCount()));
  addText(*this, TagOf(Kind::kName), well.name, well.nameLength);
  addText(*this, TagOf(Kind::kCellDescription), well.description, well.descriptionLength);
  for (POSITION at = well.detectors.GetHeadPosition(); at != nullptr;) {
    const Vex2WellDetector* detector = well.detectors.GetNext(at);
    if (detector != nullptr) addDetector(*this, *detector);
  }
}

void CCellComp::CopyTo(Vex2WellSetup& well) const {
  well.flag = flag_ != 0;
  well.coord2 = coord2_;
  well.coord1 = coord1_;
  for (int index = 0; index < GetChildCount(); ++index) {
    const CComponent& child = *GetChild(index);
    if (const auto* list = PartAs<CContainerComp>(child)) {
      if (child.GetTag() == TagOf(Kind::kCellDetector)) copyDetector(*list, well);
    } else if (const auto* block = PartAs<CBlockValueComp>(child)) {
      if (child.GetTag() == TagOf(Kind::kName))
        well.SetName(charactersOf(*block), lengthOf(*block));
    }
  }
}

CComponent& CCellComp::Assign(const CComponent& source) {
  CContainerComp::Assign(source);
  if (const auto* same = PartAs<CCellComp>(source)) {
    coord1_ = same->coord1_;
    coord2_ = same->coord2_;
    flag_ = same->flag_;
  }
  return *this;
}

int CCellComp::WriteBody(CFile* file) {
  if (file == nullptr) return vex2::kWriteFailed;
  vex2::WriteField(*file, GetCount());
  vex2::WriteField(*file, coord1_);
  vex2::WriteField(*file, coord2_);
  vex2::WriteField(*file, flag_);
  return WriteChildren(file);
}

int CCellComp::ReadBody(CFile* file) {
  if (file == nullptr) return vex2::kReadFailed;
  FreeBody();
  std::uint16_t count = 0;
  const bool hasCount = vex2::ReadField(*file, count);
  setCount(count);
  const bool isRead = hasCount && vex2::ReadField(*file, coord1_) &&
                      vex2::ReadField(*file, coord2_) && vex2::ReadField(*file, flag_);
  return isRead ? ReadChildren(file) : vex2::kReadFailed;
}
