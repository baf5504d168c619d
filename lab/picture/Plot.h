#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/model/RunReader.h"
#include "vex2/framework/Export.h"

/// Pictures of runs.
namespace vex2::lab {

/// What a picture shows.
enum class PlotKind {
  kAmplification,  ///< the readings above the baseline, by cycles
  kMelt,           ///< the negative derivative of the melting curves, by temperature
  kSpectrum,       ///< the calibration spectra, by filters
  kPlate,          ///< the wells of the plate
  kStandard,       ///< the quantification cycles of the standards, by quantity
};

/// What wells and curves are coloured by.
enum class ColourBy {
  kDetector,  ///< the detector
  kSample,    ///< the sample
  kTask,      ///< the task, such as standard or unknown
  kCq,        ///< the quantification cycle, on a scale
};

/// What a picture is to show of a run.
struct PlotOptions {
  PlotKind kind = PlotKind::kAmplification;  ///< what it shows
  /// Wells and rectangles of wells, as "A1:C6,D4"; all where it is empty.
  std::string wells;
  bool isLog = false;                       ///< whether the axis of readings is logarithmic
  ColourBy colourBy = ColourBy::kDetector;  ///< what the colours mean
};

/// The picture of `run` as SVG, 960 by 600 units. A study's plates are in one picture. Throws
/// `Error` of class `kDocument` when the document has nothing of the kind to show, of class
/// `kUsage` for wells that the plate does not have, and as `RunReader::Readings` does.
VEX2_API std::string PlotSvg(const RunReader& run, const PlotOptions& options);

/// The formats of `ImageOf`.
enum class ImageFormat {
  kPng,  ///< pixels, two for each unit of the SVG
  kPdf,  ///< a page of the size of the SVG, a unit being 1/96 inch
};

/// The bytes of an SVG of `PlotSvg` in another format. The drawing is done by a module that is
/// loaded when it is first needed. Throws `Error` of class `kSystem` that says what to install when
/// the module, or a library that it needs, is missing.
VEX2_API std::string ImageOf(std::string_view svg, ImageFormat format);

}  // namespace vex2::lab
