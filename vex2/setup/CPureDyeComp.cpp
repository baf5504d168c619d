#include "vex2/setup/CPureDyeComp.h"

#include "vex2/format/RecordKinds.h"

const std::string_view CPureDyeComp::kTag = vex2::TagOf(vex2::Kind::kPureDye);
