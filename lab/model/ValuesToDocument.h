#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "lab/model/PlateContents.h"
#include "lab/model/Run.h"
#include "vex2/manager/Vex2FileManager.h"

/// Converts values of the public types in Run.h to those in a document. All functions throw an
/// error that names the value if a document cannot hold it.
namespace vex2::lab {

/// Converts `text` from UTF-8 to Latin-1. `what` names the value in the error.
std::string StoredText(std::string_view text, const std::string& what);

/// Converts the content of the wells of `plate`; the rows are sorted by well number. A target
/// without a reporter gets the reporter of its detector in `detectors`.
PlateContents StoredContents(const Plate& plate, std::span<const Detector> detectors);

Vex2Detector StoredDetector(const Detector& detector);

/// Stores the setting in the document.
void StoreSetting(Vex2FileManager& document, const SettingValue& setting);

/// Stores the bytes as the document's thermal cycling program.
void StoreProgram(Vex2FileManager& document, std::span<const std::uint8_t> program);

}  // namespace vex2::lab
