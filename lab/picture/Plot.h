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
  kAmplification,  ///< the readings minus the baseline, by cycle
  kMelt,           ///< the negative derivative of the melting curves, by temperature
  kSpectrum,       ///< the calibration spectra, by filter
  kPlate,          ///< the wells of the plate
  kStandard,       ///< the quantification cycles of the standards, by quantity
};

/// The value that determines the colours of wells and curves.
enum class ColourBy {
  kDetector,  ///< the detector
  kSample,    ///< the sample
  kTask,      ///< the task, such as standard or unknown
  kCq,        ///< the quantification cycle, on a scale
};

/// What a picture shows of a run.
struct PlotOptions {
  PlotKind kind = PlotKind::kAmplification;  ///< the kind of picture
  /// Wells and rectangles of wells, such as "A1:C6,D4"; if empty, all wells.
  std::string wells;
  bool isLog = false;                       ///< whether the axis of readings is logarithmic
  ColourBy colourBy = ColourBy::kDetector;  ///< the value that determines the colours
};

/// Draws the picture of `run` as SVG, 960 by 600 units. The plates of a study are in one picture.
/// Throws `Error` of class `kDocument` if the document has nothing of this kind to show, and of
/// class `kUsage` for wells that the plate does not have. Also throws the errors of
/// `RunReader::Readings`.
VEX2_API std::string PlotSvg(const RunReader& run, const PlotOptions& options);

/// The formats of `ImageOf`.
enum class ImageFormat {
  kPng,  ///< pixels, two for each unit of the SVG
  kPdf,  ///< a page of the size of the SVG, with 1/96 inch per unit
};

/// Converts an SVG of `PlotSvg` to another format, and returns its bytes. A module does the
/// drawing; it is loaded when it is first needed. If the module or a library that it needs is
/// missing, throws `Error` of class `kSystem` that says what to install.
VEX2_API std::string ImageOf(std::string_view svg, ImageFormat format);

}  // namespace vex2::lab
