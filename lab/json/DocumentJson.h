#pragma once

#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "lab/model/Calibration.h"
#include "lab/model/Document.h"
#include "lab/model/DocumentOverview.h"
#include "lab/model/FrameView.h"
#include "lab/model/Readings.h"
#include "lab/model/Study.h"
#include "lab/model/WellSpectrum.h"

/// Converts documents and their content to JSON objects. `PrintJson` adds the key "version".
namespace vex2::lab {

class RunFollower;

/// A summary of a document, or of a plate in it.
nlohmann::ordered_json ToJson(const DocumentOverview& overview);

/// The plate's rows and columns, and in "wells" the sample and detectors of each well in the setup.
nlohmann::ordered_json DescribeWells(const Vex2FileManager& document);

/// A list of the plate's detectors, each with all its fields.
nlohmann::ordered_json DescribeDetectors(const Vex2FileManager& plate);

/// A list of the names of the dyes that the plate requires.
nlohmann::ordered_json DescribeDyes(const Vex2FileManager& plate);

/// Both parts of a calibration with their heads and spectra; null for a missing part.
nlohmann::ordered_json ToJson(const Calibration& calibration);

/// A list of the plates of a study.
nlohmann::ordered_json ToJson(const std::vector<StudyPlate>& plates);

/// A frame of the document at `path`: the stored values of each well. If vex recorded the run, also
/// the readings.
nlohmann::ordered_json DescribeFrame(const FrameView& view, const std::string& path,
                                     const std::string& block);

/// A whole frame that `follower` returned: its readings. If their meaning is not known, the stored
/// values instead.
nlohmann::ordered_json DescribeFollowed(const Frame& frame, const RunFollower& follower);

/// The readings of one well in frame `frame`, from 0, of the document at `path`. For a background,
/// also the rates.
nlohmann::ordered_json DescribeSpectrum(const WellSpectrum& spectrum, const std::string& path,
                                        const std::string& well, std::int64_t frame);

/// Calls `describe` for each of the plates. For a single plate, returns the result. If the plates
/// are `all` plates of a study, returns an object whose list "plates" has the result and the name
/// of each plate.
nlohmann::ordered_json DescribePlates(
    const std::vector<Document::Plate>& plates, bool all,
    const std::function<nlohmann::ordered_json(const Vex2FileManager&)>& describe);

}  // namespace vex2::lab
