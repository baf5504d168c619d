#pragma once

#include <memory>
#include <string_view>

#include "vex2/container/CComponent.h"
#include "vex2/framework/Export.h"

/// Puts an empty component of the class for `tag` into `out` and returns 1. For an unknown tag
/// `out` receives a placeholder that can skip the record, and the result is 0. The caller owns the
/// component.
VEX2_API int CreateComponent(std::string_view tag, std::unique_ptr<CComponent>& out);

/// Replaces `target` by a copy of `source` and returns 1. If the tag of `source` is unknown,
/// `target` receives an empty placeholder, and the result is 0. The caller owns the component.
VEX2_API int CloneComponent(const CComponent& source, std::unique_ptr<CComponent>& target);

namespace vex2 {

/// Peeks at the tag at the file position and puts a component that can read the record into `out`.
/// The file position stays at the tag. Returns false if fewer bytes than a tag are left; they are
/// then consumed.
bool CreateNextComponent(CFile& file, std::unique_ptr<CComponent>& out);

}  // namespace vex2
