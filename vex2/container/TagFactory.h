#pragma once

#include <memory>
#include <string_view>

#include "vex2/container/CComponent.h"
#include "vex2/framework/Export.h"

/// Makes an empty component of the class that stands for `tag`. 1 when the tag is known. For any
/// other tag `out` receives a placeholder that can skip the record, and the answer is 0.
VEX2_API int CreateComponent(std::string_view tag, std::unique_ptr<CComponent>& out);

/// Puts a copy of `source` into `target`, which loses what it held. 1 when the tag of `source` is
/// known; otherwise `target` receives an empty placeholder, and the answer is 0.
VEX2_API int CloneComponent(const CComponent& source, std::unique_ptr<CComponent>& target);

namespace vex2 {

/// Looks at the tag at the file's position and makes the component that can read the record there.
/// The position stays on the tag. False when the file ends before the tag does; the bytes that
/// were left are then consumed.
bool CreateNextComponent(CFile& file, std::unique_ptr<CComponent>& out);

}  // namespace vex2
