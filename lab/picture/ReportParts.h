#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "lab/model/RunReader.h"

/// Functions that make the data of a report. Each returns one value of the JSON that docs/report.md
/// describes.
namespace vex2::lab {

/// Of a plate: the readings, packed, with the axis.
nlohmann::ordered_json PackedReadingsJson(const RunReader& plate);
/// Of a plate: what it holds, but for the readings.
nlohmann::ordered_json PlateJson(const RunReader& plate);
/// Of a plate: what the MIQE guidelines ask for, and what of it the plate says.
nlohmann::ordered_json MiqeJson(const RunReader& plate);
/// Of the document at `path`: its records, nested as in the file. Throws an error when the file
/// cannot be read.
nlohmann::ordered_json OutlineJson(const std::string& path);
/// Of a document, or of all plates of a study: what the analysis finds, as the keys of an object.
nlohmann::ordered_json AnalysisJson(const RunReader& run);

}  // namespace vex2::lab
