#include "vex2/setup/CColorComp.h"

#include "vex2/format/RecordKinds.h"

CColorComp::CColorComp() : CColorComp({0, 0, 0}) {}

CColorComp::CColorComp(const std::array<std::uint8_t, 3>& color)
    : ScalarComponent(vex2::TagOf(vex2::Kind::kColor), color) {}
