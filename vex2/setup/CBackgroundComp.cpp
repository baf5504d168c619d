#include "vex2/setup/CBackgroundComp.h"

#include "vex2/format/RecordKinds.h"

const std::string_view CBackgroundComp::kTag = vex2::TagOf(vex2::Kind::kBackground);
