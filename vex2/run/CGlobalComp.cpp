#include "vex2/run/CGlobalComp.h"

#include <string_view>

#include "vex2/container/CBlockValueComp.h"
#include "vex2/container/CByteValueComp.h"
#include "vex2/container/CLongValueComp.h"
#include "vex2/container/CShortValueComp.h"
#include "vex2/format/RecordKinds.h"

using vex2::Kind;
using vex2::TagOf;

namespace {

void addBlock(CContainerComp& list, std::string_view tag, const std::uint8_t* data,
              std::uint32_t length) {
  if (length != 0 && data != nullptr) {
    list.AddChild(std::make_unique<CBlockValueComp>(tag, length, data));
  }
}

void addLowByte(CContainerComp& list, std::string_view tag, std::int32_t value) {
  const auto low = static_cast<std::uint8_t>(static_cast<std::uint32_t>(value) & 0xFFU);
  list.AddChild(std::make_unique<CByteValueComp>(tag, low));
}

bool copyNumber(std::string_view tag, const CComponent& child, Vex2GlobalComplex& info) {
  if (const auto* number = dynamic_cast<const CLongValueComp*>(&child)) {
    if (tag == TagOf(Kind::kVersion)) info.version = number->GetValue();
    return true;
  }
  if (const auto* number = dynamic_cast<const CShortValueComp*>(&child)) {
    if (tag == TagOf(Kind::kSampleVolume)) info.sampleVolume = number->GetValue();
    if (tag == TagOf(Kind::kUnitCode)) info.unitCode = number->GetValue();
    return true;
  }
  if (const auto* number = dynamic_cast<const CByteValueComp*>(&child)) {
    const std::int32_t value = static_cast<std::int8_t>(number->GetValue());
    if (tag == TagOf(Kind::kFtrd)) info.ftrd = value;
    if (tag == TagOf(Kind::kDrks)) info.drks = value;
    if (tag == TagOf(Kind::kPreFlag)) info.preFlag = value;
    if (tag == TagOf(Kind::kPostFlag)) info.postFlag = value;
    return true;
  }
  return false;
}

}  // namespace

CGlobalComp::CGlobalComp() : CContainerComp(TagOf(Kind::kGlobal)) {}

CGlobalComp::CGlobalComp(const Vex2GlobalComplex& info) : CGlobalComp() {
  AddChild(std::make_unique<CLongValueComp>(TagOf(Kind::kVersion), info.version));
  addBlock(*this, TagOf(Kind::kComment), info.commentData, info.commentLength);
  AddChild(std::make_unique<CShortValueComp>(TagOf(Kind::kSampleVolume), info.sampleVolume));
  addBlock(*this, TagOf(Kind::kPassiveReference), info.passiveReferenceData,
           info.passiveReferenceLength);
  AddChild(std::make_unique<CShortValueComp>(TagOf(Kind::kUnitCode), info.unitCode));
  addLowByte(*this, TagOf(Kind::kFtrd), info.ftrd);
  addLowByte(*this, TagOf(Kind::kDrks), info.drks);
  addLowByte(*this, TagOf(Kind::kPreFlag), info.preFlag);
  addLowByte(*this, TagOf(Kind::kPostFlag), info.postFlag);
  addBlock(*this, TagOf(Kind::kLog), info.logData, info.logLength);
}

void CGlobalComp::CopyTo(Vex2GlobalComplex& info) const {
  for (int index = 0; index < GetChildCount(); ++index) {
    const CComponent& child = *GetChild(index);
    const std::string_view tag = child.GetTag();
    if (copyNumber(tag, child, info)) continue;
    const auto* block = dynamic_cast<const CBlockValueComp*>(&child);
    if (block == nullptr) continue;
    if (tag == TagOf(Kind::kComment)) info.SetComment(block->GetData(), block->GetLength());
    if (tag == TagOf(Kind::kPassiveReference))
      info.SetPassiveReference(block->GetData(), block->GetLength());
    if (tag == TagOf(Kind::kLog)) info.SetLog(block->GetData(), block->GetLength());
  }
}
