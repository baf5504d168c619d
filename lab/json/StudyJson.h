#pragma once

#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "lab/model/Document.h"
#include "lab/model/Study.h"

namespace vex2::lab {

/// A list of the plates of a study.
nlohmann::ordered_json ToJson(const std::vector<StudyPlate>& plates);

/// Describes plates by calling `describe` for each. For a single plate, returns the object of that
/// call. If they are `all` plates of a study, returns an object with the list "plates", which has
/// such an object with the plate's name for each.
nlohmann::ordered_json DescribePlates(
    const std::vector<Document::Plate>& plates, bool all,
    const std::function<nlohmann::ordered_json(const Vex2FileManager&)>& describe);

}  // namespace vex2::lab
