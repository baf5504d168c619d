#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "lab/model/PlateContents.h"
#include "lab/model/Run.h"
#include "vex2/manager/Vex2FileManager.h"

/// Values of the interface for programs as documents store them. All throw an error that says which
/// value it is when a document cannot hold it.
namespace vex2::lab {

/// `text`, which is UTF-8, as documents store it. `what` names it in the error.
std::string StoredText(std::string_view text, const std::string& what);

/// The content of the wells of `plate`, ascending by wells. A target without a reporter has that of
/// its detector in `detectors`.
PlateContents StoredContents(const Plate& plate, std::span<const Detector> detectors);

Vex2Detector StoredDetector(const Detector& detector);

/// Makes the setting the document's.
void StoreSetting(Vex2FileManager& document, const SettingValue& setting);

/// Makes the bytes the document's thermal cycling program.
void StoreProgram(Vex2FileManager& document, std::span<const std::uint8_t> program);

}  // namespace vex2::lab
