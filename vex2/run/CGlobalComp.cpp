#include "vex2/run/CGlobalComp.h"

#include <string_view>

#include "vex2/container/CBlockValueComp.h"
#include "vex2/container/CByteValueComp.h"
#include "vex2/container/CLongValueComp.h"
#include "vex2/container/CShortValueComp.h"

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
    if (tag == "VERS") info.version = number->GetValue();
    return true;
  }
  if (const auto* number = dynamic_cast<const CShortValueComp*>(&child)) {
    if (tag == "PCRV") info.sampleVolume = number->GetValue();
    if (tag == "UOMC") info.unitCode = number->GetValue();
    return true;
  }
  if (const auto* number = dynamic_cast<const CByteValueComp*>(&child)) {
    const std::int32_t value = static_cast<std::int8_t>(number->GetValue());
    if (tag == "FTRD") info.ftrd = value;
    if (tag == "DRKS") info.drks = value;
    if (tag == "PRER") info.preFlag = value;
    if (tag == "POSR") info.postFlag = value;
    return true;
  }
  return false;
}

}  // namespace

CGlobalComp::CGlobalComp() : CContainerComp("GLBL") {}

CGlobalComp::CGlobalComp(const Vex2GlobalComplex& info) : CGlobalComp() {
  AddChild(std::make_unique<CLongValueComp>("VERS", info.version));
  addBlock(*this, "COMM", info.commentData, info.commentLength);
  AddChild(std::make_unique<CShortValueComp>("PCRV", info.sampleVolume));
  addBlock(*this, "RefN", info.passiveReferenceData, info.passiveReferenceLength);
  AddChild(std::make_unique<CShortValueComp>("UOMC", info.unitCode));
  addLowByte(*this, "FTRD", info.ftrd);
  addLowByte(*this, "DRKS", info.drks);
  addLowByte(*this, "PRER", info.preFlag);
  addLowByte(*this, "POSR", info.postFlag);
  addBlock(*this, "LOGT", info.logData, info.logLength);
}

void CGlobalComp::CopyTo(Vex2GlobalComplex& info) const {
  for (int index = 0; index < GetChildCount(); ++index) {
    const CComponent& child = *GetChild(index);
    const std::string_view tag = child.GetTag();
    if (copyNumber(tag, child, info)) continue;
    const auto* block = dynamic_cast<const CBlockValueComp*>(&child);
    if (block == nullptr) continue;
    if (tag == "COMM") info.SetComment(block->GetData(), block->GetLength());
    if (tag == "RefN") info.SetPassiveReference(block->GetData(), block->GetLength());
    if (tag == "LOGT") info.SetLog(block->GetData(), block->GetLength());
  }
}
