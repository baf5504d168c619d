#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "lab/model/RunReader.h"

/// Functions that make the data of a report. Each returns one value of the JSON that docs/report.md
/// describes.
namespace vex2::lab {

/// For a plate: its packed readings with their axis.
nlohmann::ordered_json PackedReadingsJson(const RunReader& plate);
/// For a plate: its content except the readings.
nlohmann::ordered_json PlateJson(const RunReader& plate);
/// For a plate: the items of the MIQE guidelines, and what the plate says about them.
nlohmann::ordered_json MiqeJson(const RunReader& plate);
/// For the document at `path`: its records, nested as in the file. Throws an error if the file
/// cannot be read.
nlohmann::ordered_json OutlineJson(const std::string& path);
/// For a document, or for all plates of a study: the results of the analysis, as the keys of an
/// object.
nlohmann::ordered_json AnalysisJson(const RunReader& run);

}  // namespace vex2::lab
