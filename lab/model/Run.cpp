#include "lab/model/Run.h"

#include <algorithm>

namespace vex2::lab {

const Well* Plate::Find(std::uint16_t number) const {
  const auto found =
      std::lower_bound(wells.begin(), wells.end(), number,
                       [](const Well& well, std::uint16_t wanted) { return well.number < wanted; });
  return found != wells.end() && found->number == number ? &*found : nullptr;
}

const Well* Plate::Find(std::string_view name) const {
  const auto found =
      std::find_if(wells.begin(), wells.end(), [&](const Well& well) { return well.name == name; });
  return found != wells.end() ? &*found : nullptr;
}

}  // namespace vex2::lab
