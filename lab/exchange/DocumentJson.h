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

/// Documents, and what is known of them, as JSON objects. `PrintJson` adds the version.
namespace vex2::lab {

class RunFollower;

/// What is known of a document, or of a plate in it, at a glance.
nlohmann::ordered_json ToJson(const DocumentOverview& overview);

/// The plate's rows and columns, and in "wells" the sample and detectors of each well in the setup.
nlohmann::ordered_json DescribeWells(const Vex2FileManager& document);

/// A list of the plate's detectors, each with all its fields.
nlohmann::ordered_json DescribeDetectors(const Vex2FileManager& plate);

/// A list of the names of the dyes that the plate requires.
nlohmann::ordered_json DescribeDyes(const Vex2FileManager& plate);

/// Both parts of a calibration with their heads and spectra, null for one that is lacking.
nlohmann::ordered_json ToJson(const Calibration& calibration);

/// A list of the plates of a study.
nlohmann::ordered_json ToJson(const std::vector<StudyPlate>& plates);

/// A frame of the document at `path`: of each well what is stored, and what it was read as where
/// vex recorded it.
nlohmann::ordered_json DescribeFrame(const FrameView& view, const std::string& path,
                                     const std::string& block);

/// A frame that `follower` handed out, whole: what it was read as, or what is stored where the
/// meaning is not known.
nlohmann::ordered_json DescribeFollowed(const Frame& frame, const RunFollower& follower);

/// The readings of one well in frame `frame`, from 0, of the document at `path`, and the rates of a
/// background.
nlohmann::ordered_json DescribeSpectrum(const WellSpectrum& spectrum, const std::string& path,
                                        const std::string& well, std::int64_t frame);

/// What `describe` says of the plates: an object, and when they are `all` of a study an object for
/// each in the list "plates", with its name.
nlohmann::ordered_json DescribePlates(
    const std::vector<Document::Plate>& plates, bool all,
    const std::function<nlohmann::ordered_json(const Vex2FileManager&)>& describe);

}  // namespace vex2::lab
