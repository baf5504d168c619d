#include "vex2/setup/CDetectorExtensionComp.h"

#include <algorithm>

#include "vex2/container/CByteValueComp.h"
#include "vex2/container/CFloatValueComp.h"
#include "vex2/container/CLongValueComp.h"
#include "vex2/container/CShortValueComp.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/setup/CColorComp.h"
#include "vex2/setup/Parts.h"

using vex2::AddPart;
using vex2::Kind;
using vex2::PartAs;
using vex2::TagOf;

namespace {

using Color = std::array<std::uint8_t, 3>;

// Adds a child to a list for each field of a detector.
class FieldWriter {
 public:
  explicit FieldWriter(CContainerComp& list) : list_(list) {}

  void Text(std::string_view tag, const CString& text) {
    if (!text.IsEmpty()) AddPart<CBlockValueComp>(list_, tag, text);
  }
  void Color(const std::uint8_t (&bytes)[3]) {
    AddPart<CColorComp>(list_, ::Color{bytes[0], bytes[1], bytes[2]});
  }
  void Date(std::string_view tag, std::int32_t date) {
    if (date > 0) AddPart<CLongValueComp>(list_, tag, static_cast<std::uint32_t>(date));
  }
  void Number(std::string_view tag, std::uint16_t number) {
    AddPart<CShortValueComp>(list_, tag, number);
  }
  void Number(std::string_view tag, float number) { AddPart<CFloatValueComp>(list_, tag, number); }
  void LowByte(std::string_view tag, std::int32_t value) {
    const auto low = static_cast<std::uint8_t>(static_cast<std::uint32_t>(value) & 0xFFU);
    AddPart<CByteValueComp>(list_, tag, low);
  }

 private:
  CContainerComp& list_;
};

// Sets the field of a detector that one child holds.
class FieldReader {
 public:
  explicit FieldReader(const CComponent& child) : child_(child) {}

  void Text(std::string_view tag, CString& text) {
    if (const auto* block = holder<CBlockValueComp>(tag)) text = CString(vex2::PartText(*block));
  }
  void Color(std::uint8_t (&bytes)[3]) {
    if (const auto* color = holder<CColorComp>(TagOf(Kind::kColor))) {
      std::copy_n(color->GetValue().begin(), sizeof bytes, bytes);
    }
  }
  void Date(std::string_view tag, std::int32_t& date) {
    if (const auto* value = holder<CLongValueComp>(tag)) {
      date = static_cast<std::int32_t>(value->GetValue());
    }
  }
  void Number(std::string_view tag, std::uint16_t& number) {
    if (const auto* value = holder<CShortValueComp>(tag)) number = value->GetValue();
  }
  void Number(std::string_view tag, float& number) {
    if (const auto* value = holder<CFloatValueComp>(tag)) number = value->GetValue();
  }
  void LowByte(std::string_view tag, std::int32_t& value) {
    if (const auto* byte = holder<CByteValueComp>(tag)) {
      value = static_cast<std::int8_t>(byte->GetValue());
    }
  }

 private:
  template <typename Component>
  const Component* holder(std::string_view tag) const {
    return child_.GetTag() == tag ? PartAs<Component>(child_) : nullptr;
  }

  const CComponent& child_;
};

// Calls `fields` for each field, in the order of the format.
template <typename Fields, typename Detector>
void exchange(Fields& fields, Detector& detector) {
  fields.Text(TagOf(Kind::kDetectorName), detector.name);
  fields.Text(TagOf(Kind::kReporterDye), detector.reporterDye);
  fields.Text(TagOf(Kind::kQuencherDye), detector.quencherDye);
  fields.Text(TagOf(Kind::kDescription), detector.description);
  fields.Text(TagOf(Kind::kDetectorComment), detector.comment);
  fields.Color(detector.color);
  fields.Date(TagOf(Kind::kCreated), detector.dateCreated);
  fields.Date(TagOf(Kind::kModified), detector.dateModified);
  fields.Text(TagOf(Kind::kOwner), detector.owner);
  fields.Text(TagOf(Kind::kLocation), detector.location);
  fields.Number(TagOf(Kind::kBaselineStart), detector.baselineStart);
  fields.Number(TagOf(Kind::kBaselineEnd), detector.baselineEnd);
  fields.Number(TagOf(Kind::kThreshold), detector.threshold);
  fields.LowByte(TagOf(Kind::kAutoBaseline), detector.autoBaseline);
  fields.LowByte(TagOf(Kind::kAutoThreshold), detector.autoThreshold);
  fields.Number(TagOf(Kind::kAnalysisFlags), detector.analysisFlags);
}

}  // namespace

CDetectorExtensionComp::CDetectorExtensionComp() : CContainerComp(TagOf(Kind::kDetector)) {}

CDetectorExtensionComp::CDetectorExtensionComp(const Vex2Detector& detector)
    : CDetectorExtensionComp() {
  FieldWriter fields(*this);
  exchange(fields, detector);
}

void CDetectorExtensionComp::CopyTo(Vex2Detector& detector) const {
  detector.Clear();
  for (int index = 0; index < GetChildCount(); ++index) {
    FieldReader fields(*GetChild(index));
    exchange(fields, detector);
  }
}

std::string_view CDetectorExtensionComp::GetName() const {
  const CComponent* child = FindChild(TagOf(Kind::kDetectorName));
  const auto* block = child != nullptr ? PartAs<CBlockValueComp>(*child) : nullptr;
  return block != nullptr ? vex2::PartText(*block) : std::string_view();
}
